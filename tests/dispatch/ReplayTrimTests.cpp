// The trim of the replay log: at every hundredth id, a user who has a thousand records starts
// afresh.
#include "tests/dispatch/DispatchFixture.h"

namespace tsl::test {

class ReplayTrim : public DispatchTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(DispatchTest::SetUp());
        MakeTables();
    }
    static int RowsOfUser(INT64 user) {
        return CountRowsWhere(kReplayRows, "UserId = " + std::to_string(user));
    }
};

TEST_F(ReplayTrim, EmptiesTheUsersRecordsAtAHundredthIdThenAddsTheAction) {
    Fill(kReplayRows, {.count = 1000});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ("300", IdsIn(kReplayRows));
}

TEST_F(ReplayTrim, WaitsForAHundredthId) {
    Fill(kReplayRows, {.count = 1000});
    for (const UINT32 id : {301u, 299u, 350u, 310u}) {
        EXPECT_EQ(S_OK, Report(Action(id, L"playItem")));
    }
    EXPECT_EQ(1004, CountRowsOf(kReplayRows));
}

TEST_F(ReplayTrim, WaitsForAThousandRecords) {
    Fill(kReplayRows, {.count = 999});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ(1000, CountRowsOf(kReplayRows));
    EXPECT_EQ(S_OK, Report(Action(400, L"playItem")));
    EXPECT_EQ("400", IdsIn(kReplayRows)) << "the record of the last trim's turn counts now";
}

TEST_F(ReplayTrim, KnowsHundredthIdsOfAnySize) {
    Fill(kReplayRows, {.count = 1000});
    EXPECT_EQ(S_OK, Report(Action(4294967200u, L"playItem")));
    EXPECT_EQ("4294967200", IdsIn(kReplayRows));
}

TEST_F(ReplayTrim, OfLargeTablesLeavesOneRecord) {
    Fill(kReplayRows, {.count = 5000});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ("300", IdsIn(kReplayRows));
}

TEST_F(ReplayTrim, LeavesTheRecordsOfOtherUsers) {
    Fill(kReplayRows, {.firstId = 10001, .count = 1500, .user = 8});
    Fill(kReplayRows, {.count = 1000});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ(1, RowsOfUser(7));
    EXPECT_EQ(1500, RowsOfUser(8));
}

TEST_F(ReplayTrim, CountsTheRecordsOfTheUserOnly) {
    Fill(kReplayRows, {.firstId = 10001, .count = 1500, .user = 8});
    Fill(kReplayRows, {.count = 500});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ(501, RowsOfUser(7));
    EXPECT_EQ(1500, RowsOfUser(8));
}

// Records of every log kind are counted, those of the object's own are deleted.
TEST_F(ReplayTrim, CountsAllLogKindsAndEmptiesItsOwn) {
    Fill(kReplayRows, {.count = 600});
    Fill(kReplayRows, {.firstId = 5001, .count = 400, .logKind = 8});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ(1, CountRowsWhere(kReplayRows, "LogKind = 1"));
    EXPECT_EQ(400, CountRowsWhere(kReplayRows, "LogKind = 8"));
}

TEST_F(ReplayTrim, LeavesAThousandRecordsOfAnotherLogKind) {
    Fill(kReplayRows, {.count = 1000, .logKind = 8});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ(1001, CountRowsOf(kReplayRows));
    SetLogKind(8);
    EXPECT_EQ(S_OK, Report(Action(400, L"openItem")));
    EXPECT_EQ("300 400", IdsIn(kReplayRows));
}

TEST_F(ReplayTrim, LeavesTheOtherTables) {
    for (const char* const table : {kActionLogRows, kTakenRows, kReplayRows}) {
        Fill(table, {.count = 1000});
    }
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ("300", IdsIn(kReplayRows));
    EXPECT_EQ(1001, CountRowsOf(kActionLogRows));
    EXPECT_EQ(1000, CountRowsOf(kTakenRows));
}

TEST_F(ReplayTrim, IsNotCausedByTheOtherTables) {
    Fill(kActionLogRows, {.count = 1500});
    Fill(kTakenRows, {.count = 1500});
    Fill(kReplayRows, {.count = 10});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ(11, CountRowsOf(kReplayRows));
}

TEST_F(ReplayTrim, IsMadeByActionsOfEveryRoad) {
    UINT32 id = 200;
    for (const wchar_t* const name :
         {L"showExternalLink", L"deleteItem", L"viaMoveContent", L"veSettingReset"}) {
        SCOPED_TRACE(name);
        EmptyTables();
        Fill(kReplayRows, {.count = 1000});
        EXPECT_EQ(S_OK, Report(Action(id += 100, name)));
        EXPECT_EQ(std::to_string(id), IdsIn(kReplayRows));
    }
}

TEST_F(ReplayTrim, IsMadeAtTheFirstHundredthIdOfAnEmptyStore) {
    std::filesystem::remove(ReplayPath());
    EXPECT_EQ(S_OK, Report(Action(100, L"playItem")));
    EXPECT_EQ("100", IdsIn(kReplayRows));
}

TEST_F(ReplayTrim, NeverEmptiesUserZero) {
    Fill(kReplayRows, {.count = 1000, .user = 0});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem").Ui4(kKeyUserId, 0)));
    EXPECT_EQ(1001, RowsOfUser(0));
}

TEST_F(ReplayTrim, NeedsAUserAndAnId) {
    Fill(kReplayRows, {.count = 1000});
    ContainerBuilder action = Action(300, L"playItem");
    EXPECT_EQ(S_OK, Report(action.I4(kKeyUserId, 7)));
    EXPECT_EQ(S_OK, Report(action.Ui4(kKeyUserId, 7).I4(kKeyRecordId, 300)));
    action.Get()->RemoveValue(kKeyRecordId);
    EXPECT_EQ(S_OK, Report(action));
    EXPECT_EQ(1000, CountRowsOf(kReplayRows));
}

// 0 is a whole multiple of 100 like any other; the record itself is skipped.
TEST_F(ReplayTrim, IsMadeAtIdZeroThoughNothingIsAdded) {
    Fill(kReplayRows, {.count = 1000});
    EXPECT_EQ(S_OK, Report(Action(0, L"playItem")));
    EXPECT_EQ("", IdsIn(kReplayRows));
}

// The trim does not ask for the name, which only the record needs.
TEST_F(ReplayTrim, IsMadeByAnActionWithoutAName) {
    Fill(kReplayRows, {.count = 1000});
    const ContainerBuilder action = Action(300, L"");
    action.Get()->RemoveValue(kKeyActionName);
    EXPECT_EQ(S_OK, Report(action));
    EXPECT_EQ("", IdsIn(kReplayRows));
}

} // namespace tsl::test
