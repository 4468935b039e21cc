// The trim asks for the user's records with the action's own container: what that holds narrows
// what is counted. And a count that cannot be had never trims.
#include "recording/ReplayLog.h"

#include "tests/dispatch/DispatchFixture.h"
#include "tests/dispatch/StoreDispatchFixture.h"

namespace tsl::test {

class ReplayTrimRange : public DispatchTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(DispatchTest::SetUp());
        MakeTables();
    }
};

TEST_F(ReplayTrimRange, CountsRecordsInTheTimesThatTheActionNames) {
    Fill(kReplayRows, {.count = 1000, .time = 45000.0});
    ContainerBuilder action = Action(300, L"playItem");
    EXPECT_EQ(S_OK, Report(action.Date(kKeyStartTime, 45001.0)));
    EXPECT_EQ(1001, CountRowsOf(kReplayRows));
    EXPECT_EQ(S_OK, Report(action.Ui4(kKeyRecordId, 400).Date(kKeyStartTime, 45000.0)));
    EXPECT_EQ("400", IdsIn(kReplayRows)) << "all go, also those outside the times";
}

TEST_F(ReplayTrimRange, DoesNotCountTimesBeforeTheDefaultStart) {
    Fill(kReplayRows, {.count = 1000, .time = -1.0});
    EXPECT_EQ(S_OK, Report(Action(300, L"playItem")));
    EXPECT_EQ(1001, CountRowsOf(kReplayRows));
}

TEST_F(ReplayTrimRange, CountsTheIdsThatTheActionNamesOfItsLogKind) {
    Fill(kReplayRows, {.firstId = 1001, .count = 1000});
    Fill(kReplayRows, {.firstId = 5001, .count = 1000, .logKind = 8});
    ContainerBuilder action = Action(300, L"playItem");
    EXPECT_EQ(S_OK, Report(action.Ui4(kKeyFirstRecordId, 1002)));
    EXPECT_EQ(2001, CountRowsOf(kReplayRows)) << "999 records from the first id on";
    EXPECT_EQ(S_OK, Report(action.Ui4(kKeyRecordId, 400).Ui4(kKeyFirstRecordId, 1001)));
    EXPECT_EQ(1, CountRowsWhere(kReplayRows, "LogKind = 1"));
    EXPECT_EQ(1000, CountRowsWhere(kReplayRows, "LogKind = 8"));
}

// The copy that a delete action leaves in the logs lacks the times; the host's container counts.
TEST_F(ReplayTrimRange, OfADeleteActionIsThatOfTheHostsContainer) {
    Fill(kReplayRows, {.count = 1000, .time = 45000.0});
    EXPECT_EQ(S_OK, Report(Action(300, L"deleteItem").Date(kKeyStartTime, 45001.0)));
    EXPECT_EQ(1001, CountRowsOf(kReplayRows));
}

TEST_F(ReplayTrimRange, IsNotMadeWhenAnEndCannotBeRead) {
    Fill(kReplayRows, {.count = 1000});
    ScriptedContainer action(Action(300, L"playItem").Get());
    action.getResults[kKeyEndTime] = E_ACCESSDENIED;
    EXPECT_EQ(S_OK, Report(&action));
    EXPECT_EQ(1u, action.References());
    EXPECT_EQ(1001, CountRowsOf(kReplayRows));
}

class ReplayTrimFailure : public StoreDispatchTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreDispatchTest::SetUp());
        MakeTables();
        Fill(kReplayRows, {.count = 1000});
    }
};

TEST_F(ReplayTrimFailure, OfTheContainerClassLeavesTheRecordsAndAddsTheAction) {
    RevokeContainerClass();
    EXPECT_EQ(S_OK, Dispatch(Action(300, L"playItem")));
    EXPECT_EQ(1001, CountRowsOf(kReplayRows));
}

// Only the reset asks for a container; the records are counted without.
TEST_F(ReplayTrimFailure, OfTheResetLeavesTheRecordsAndAddsTheAction) {
    EXPECT_EQ(S_OK, Dispatch(Action(300, L"playItem")));
    EXPECT_EQ("300", IdsIn(kReplayRows));
    EXPECT_EQ(1, Containers().created);
    const int steps = Containers().steps;
    EmptyTables();
    Fill(kReplayRows, {.count = 1000});
    Containers().Restart({{steps, E_ACCESSDENIED}});
    EXPECT_EQ(S_OK, Dispatch(Action(400, L"playItem")));
    EXPECT_EQ(steps, Containers().steps);
    EXPECT_EQ(1001, CountRowsOf(kReplayRows));
}

TEST_F(ReplayTrimFailure, HoldsNoContainerAfterwards) {
    EXPECT_EQ(S_OK, Dispatch(Action(300, L"playItem")));
    EXPECT_EQ(1, Containers().created);
    EXPECT_EQ(0, Containers().live);
}

class ReplayRecord : public StoreDispatchTest {};

TEST_F(ReplayRecord, IsTheCopyWhereThereIsOne) {
    const ContainerBuilder action = Action(5, L"action");
    const ContainerBuilder copy = Action(6, L"copy");
    EXPECT_EQ(S_OK,
              WriteReplayRecord(Store(), /*logKind=*/1, *action.Get().Get(), *copy.Get().Get()));
    EXPECT_EQ("6", IdsIn(kReplayRows));
    EXPECT_FALSE(std::filesystem::exists(ActionLogPath()));
}

TEST_F(ReplayRecord, ThatFailsTellsWhy) {
    std::filesystem::create_directories(ReplayPath());
    const ContainerBuilder action = Action(100, L"playItem");
    EXPECT_EQ(static_cast<HRESULT>(0x8004160D),
              WriteReplayRecord(Store(), /*logKind=*/1, *action.Get().Get(), *action.Get().Get()));
}

} // namespace tsl::test
