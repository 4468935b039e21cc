// The reset as a function: the request it makes, the table it works on, and its failures.
#include "recording/UserReset.h"

#include "tests/dispatch/StoreDispatchFixture.h"

namespace tsl::test {

class UserResetRequest : public StoreDispatchTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreDispatchTest::SetUp());
        MakeTables();
        for (const char* const table : {kActionLogRows, kTakenRows, kReplayRows}) {
            Fill(table, {.firstId = 11, .count = 3});
        }
    }
    HRESULT Reset(ITslParamContainer* container, const Target& target = {.logKind = 1}) {
        return ResetUserRecords(Store(), target, container);
    }
    static ContainerBuilder OfUser(UINT32 user = 7) {
        return ContainerBuilder().Ui4(kKeyUserId, user);
    }
};

TEST_F(UserResetRequest, IsRefusedWithoutAContainer) {
    EXPECT_EQ(E_INVALIDARG, Reset(nullptr));
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
}

TEST_F(UserResetRequest, AsksForOneContainerWithTheUserAndAllIds) {
    EXPECT_EQ(S_OK, Reset(OfUser()));
    EXPECT_EQ(1, Containers().created);
    EXPECT_EQ((std::vector<UINT64>{0, 0x0200002100000013, 0x0200001800000013, 0x0200001900000013}),
              Containers().calls);
    EXPECT_EQ("", IdsIn(kActionLogRows));
}

TEST_F(UserResetRequest, NeedsNoMoreThanAUser) {
    EXPECT_EQ(S_OK, Reset(ContainerBuilder()));
    EXPECT_EQ(S_OK, Reset(OfUser(0)));
    EXPECT_EQ(S_OK, Reset(ContainerBuilder().I4(kKeyUserId, 7)));
    EXPECT_EQ(0, Containers().created) << "nothing is asked without a user";
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
}

TEST_F(UserResetRequest, WorksOnTheTableOfItsTarget) {
    EXPECT_EQ(S_OK, Reset(OfUser(), {kActionLogFileName, kContentDeleteTable, 1}));
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
    EXPECT_EQ("", IdsIn(kTakenRows));
    EXPECT_EQ("11 12 13", IdsIn(kReplayRows));
}

TEST_F(UserResetRequest, WorksOnTheFileOfItsTarget) {
    EXPECT_EQ(S_OK, Reset(OfUser(), {kReplayFileName, kReplayTable, 1}));
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13", IdsIn(kTakenRows));
    EXPECT_EQ("", IdsIn(kReplayRows));
}

TEST_F(UserResetRequest, WorksUnderTheLogKindOfItsTarget) {
    EXPECT_EQ(S_OK, Reset(OfUser(), {.logKind = 4}));
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
    EXPECT_EQ(S_OK, Reset(OfUser(), {.logKind = 1}));
    EXPECT_EQ("", IdsIn(kActionLogRows));
}

TEST_F(UserResetRequest, ReportsAClassThatIsNotThere) {
    RevokeContainerClass();
    EXPECT_EQ(REGDB_E_CLASSNOTREG, Reset(OfUser()));
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
}

TEST_F(UserResetRequest, ReportsTheStepThatFailsAndDeletesNothing) {
    // One creation, one stamping, three settings.
    for (int step = 1; step <= 5; ++step) {
        SCOPED_TRACE(step);
        Containers().Restart({{step, E_ACCESSDENIED}});
        EXPECT_EQ(E_ACCESSDENIED, Reset(OfUser()));
        EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
        EXPECT_EQ(0, Containers().live);
    }
    Containers().Restart({{6, E_ACCESSDENIED}});
    EXPECT_EQ(S_OK, Reset(OfUser())) << "there is no sixth step";
}

TEST_F(UserResetRequest, ReportsADeletionThatFails) {
    {
        const FileDatabase other(ActionLogPath());
        other.Query("BEGIN EXCLUSIVE");
        EXPECT_EQ(E_POINTER, Reset(OfUser()));
        other.Query("ROLLBACK");
    }
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
}

// The action goes its way whatever becomes of the reset.
TEST_F(UserResetRequest, ThatFailsDoesNotKeepTheActionFromBeingRecorded) {
    RevokeContainerClass();
    EXPECT_EQ(S_OK, Dispatch(Action(30, L"veSettingReset")));
    EXPECT_EQ("11 12 13 30", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13 30", IdsIn(kReplayRows));
}

} // namespace tsl::test
