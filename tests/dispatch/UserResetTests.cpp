// The reset: it empties the action log of its user's records of the log kind, and of nothing else.
#include "tests/dispatch/DispatchFixture.h"

namespace tsl::test {

class UserReset : public DispatchTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(DispatchTest::SetUp());
        MakeTables();
    }
    // Three records, 11 to 13, in each table.
    static void FillAll(INT64 user = 7) {
        for (const char* const table : {kActionLogRows, kTakenRows, kReplayRows}) {
            Fill(table, {.firstId = 11, .count = 3, .user = user});
        }
    }
};

TEST_F(UserReset, InAnyCaseEmptiesTheActionLogThenIsRecordedItself) {
    UINT32 id = 20;
    for (const wchar_t* const name :
         {L"veSettingReset", L"vesettingreset", L"VESETTINGRESET", L"VeSettingReset"}) {
        SCOPED_TRACE(name);
        EmptyTables();
        FillAll();
        EXPECT_EQ(S_OK, Report(Action(++id, name)));
        EXPECT_EQ(std::to_string(id), IdsIn(kActionLogRows));
        EXPECT_EQ("11 12 13 " + std::to_string(id), IdsIn(kReplayRows));
        EXPECT_EQ("11 12 13", IdsIn(kTakenRows));
        const std::wstring sent = name;
        EXPECT_EQ(std::string(sent.begin(), sent.end()),
                  FileDatabase(ActionLogPath()).Value("SELECT ActionName FROM TslIf_DbActionLog"));
    }
}

TEST_F(UserReset, IsNotMadeByAnythingLikeItsName) {
    FillAll();
    UINT32 id = 20;
    for (const wchar_t* const name :
         {L"veSettingReset ", L" veSettingReset", L"veSettingRese", L"veSettingResets"}) {
        EXPECT_EQ(S_OK, Report(Action(++id, name)));
    }
    EXPECT_EQ("11 12 13 21 22 23 24", IdsIn(kActionLogRows));
}

TEST_F(UserReset, LeavesOtherUsersAlone) {
    FillAll();
    Fill(kActionLogRows, {.firstId = 31, .count = 2, .user = 8});
    Fill(kActionLogRows, {.firstId = 41, .count = 1, .user = 0});
    Fill(kActionLogRows, {.firstId = 51, .count = 1, .user = 0x100000007});
    EXPECT_EQ(S_OK, Report(Action(60, L"veSettingReset")));
    EXPECT_EQ("31 32 41 51 60", IdsIn(kActionLogRows));
}

TEST_F(UserReset, LeavesOtherLogKindsAlone) {
    FillAll();
    Fill(kActionLogRows, {.firstId = 31, .count = 2, .logKind = 2});
    Fill(kActionLogRows, {.firstId = 41, .count = 1, .logKind = 0});
    EXPECT_EQ(S_OK, Report(Action(60, L"veSettingReset")));
    EXPECT_EQ("31 32 41 60", IdsIn(kActionLogRows));
    SetLogKind(2);
    EXPECT_EQ(S_OK, Report(Action(61, L"veSettingReset")));
    EXPECT_EQ("41 60 61", IdsIn(kActionLogRows));
    SetLogKind(0);
    EXPECT_EQ(S_OK, Report(Action(62, L"veSettingReset")));
    EXPECT_EQ("60 61 62", IdsIn(kActionLogRows));
}

TEST_F(UserReset, WidensTheLogKindAsItIsStored) {
    SetLogKind(0xFFFFFFFF);
    EXPECT_EQ(S_OK, Report(Action(11, L"playItem")));
    Fill(kActionLogRows, {.firstId = 12, .count = 1, .logKind = -1});
    EXPECT_EQ(S_OK, Report(Action(20, L"veSettingReset")));
    EXPECT_EQ("12 20", IdsIn(kActionLogRows));
}

TEST_F(UserReset, OfALargeUserNumberFindsTheRecordsOfThatUser) {
    Fill(kActionLogRows, {.firstId = 11, .count = 2, .user = 0xFFFFFFFF});
    Fill(kActionLogRows, {.firstId = 21, .count = 1, .user = -1});
    EXPECT_EQ(S_OK, Report(Action(30, L"veSettingReset").Ui4(kKeyUserId, 0xFFFFFFFF)));
    EXPECT_EQ("21 30", IdsIn(kActionLogRows));
}

TEST_F(UserReset, TakesEveryRecordIdAtAnyTime) {
    Fill(kActionLogRows, {.firstId = 0, .count = 2});
    Fill(kActionLogRows, {.firstId = 0xFFFFFFFE, .count = 2});
    Fill(kActionLogRows, {.firstId = 11, .count = 1, .time = -5.0});
    Fill(kActionLogRows, {.firstId = 12, .count = 1, .time = 5e9});
    EXPECT_EQ(S_OK, Report(Action(30, L"veSettingReset")));
    EXPECT_EQ("30", IdsIn(kActionLogRows));
}

TEST_F(UserReset, IsBoundedByNothingThatTheActionHolds) {
    FillAll();
    ContainerBuilder action = Action(30, L"veSettingReset");
    action.Ui4(kKeyFirstRecordId, 12).Ui4(kKeyLastRecordId, 12);
    action.Ui8(kKeyRecordToTake, 11).Date(kKeyStartTime, 50000.0);
    EXPECT_EQ(S_OK, Report(action));
    EXPECT_EQ("30", IdsIn(kActionLogRows));
}

TEST_F(UserReset, WithoutAUserLeavesAllAndIsNotRecorded) {
    FillAll();
    Fill(kActionLogRows, {.firstId = 21, .count = 1, .user = 0});
    const ContainerBuilder action = Action(30, L"veSettingReset");
    action.Get()->RemoveValue(kKeyUserId);
    EXPECT_EQ(S_OK, Report(action));
    EXPECT_EQ("11 12 13 21", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13", IdsIn(kReplayRows));
}

TEST_F(UserReset, OfUserZeroLeavesAllAndIsRecorded) {
    FillAll(/*user=*/0);
    EXPECT_EQ(S_OK, Report(Action(30, L"veSettingReset").Ui4(kKeyUserId, 0)));
    EXPECT_EQ("11 12 13 30", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13 30", IdsIn(kReplayRows));
}

TEST_F(UserReset, OfAUserOfAnotherTypeLeavesAllAndIsNotRecorded) {
    FillAll();
    ContainerBuilder action = Action(30, L"veSettingReset");
    EXPECT_EQ(S_OK, Report(action.I4(kKeyUserId, 7)));
    EXPECT_EQ(S_OK, Report(action.Text(kKeyUserId, L"7")));
    EXPECT_EQ(S_OK, Report(action.Ui8(kKeyUserId, 7)));
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13", IdsIn(kReplayRows));
}

TEST_F(UserReset, WhoseUserCannotBeReadLeavesAllAndTellsWhy) {
    FillAll();
    ScriptedContainer action(Action(30, L"veSettingReset").Get());
    action.getResults[kKeyUserId] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, Report(&action));
    EXPECT_EQ(1u, action.References());
    EXPECT_EQ("11 12 13", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13", IdsIn(kReplayRows));
}

TEST_F(UserReset, IsMadeThoughTheActionItselfCannotBeRecorded) {
    FillAll();
    EXPECT_EQ(S_OK, Report(Action(0, L"veSettingReset")));
    EXPECT_EQ("", IdsIn(kActionLogRows));
    EXPECT_EQ("11 12 13", IdsIn(kReplayRows));
}

TEST_F(UserReset, FindsTheRecordsOfTheNamedUserUnderKindTwoToo) {
    SetLogKind(2);
    Fill(kActionLogRows, {.firstId = 11, .count = 2, .user = 7, .logKind = 2});
    Fill(kActionLogRows, {.firstId = 21, .count = 2, .user = 1, .logKind = 2});
    EXPECT_EQ(S_OK, Report(Action(30, L"veSettingReset")));
    EXPECT_EQ("21 22 30", IdsIn(kActionLogRows));
}

} // namespace tsl::test
