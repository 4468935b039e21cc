// The ids of a user's records in a range of times.
#include <gmock/gmock.h>

#include "tests/query/QueryFixture.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::IsEmpty;

} // namespace

class TimeRange : public QueryTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(QueryTest::SetUp());
        StoreLog({{.id = 1, .time = 0.0},
                  {.id = 2, .time = 10.0},
                  {.id = 3, .time = 20.5},
                  {.id = 4, .time = 4294967295.0},
                  {.id = 5, .user = 8, .time = 10.0},
                  {.id = 6, .time = -1.0},
                  {.id = 7, .time = 4294967296.0}});
    }
};

TEST_F(TimeRange, IncludesItsBounds) {
    ExpectIds({2, 3}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).Date(kStart, 10.0).Date(kEnd, 20.5));
}

TEST_F(TimeRange, LeavesOutWhatIsJustBeyondItsBounds) {
    ExpectIds({3}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).Date(kStart, 10.001).Date(kEnd, 20.5));
    ExpectIds({2}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).Date(kStart, 10.0).Date(kEnd, 20.499));
}

TEST_F(TimeRange, WithoutEndRunsToTheLatestTime) {
    ExpectIds({2, 3, 4}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Date(kStart, 10.0));
}

TEST_F(TimeRange, WithoutStartRunsFromTimeZero) {
    ExpectIds({1, 2}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Date(kEnd, 10.0));
}

TEST_F(TimeRange, WithoutBoundsIsEveryRecordBetweenTheDefaults) {
    ExpectIds({1, 2, 3, 4}, kAskForIds, ContainerBuilder().Ui4(kUser, 7));
}

TEST_F(TimeRange, HoldsRecordsOfItsUserOnly) {
    ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 8));
}

TEST_F(TimeRange, IsNotFilteredByLogKind) {
    StoreLog({{.id = 11, .user = 9, .logKind = 2}, {.id = 12, .user = 9, .logKind = 16}});
    ExpectIds({11, 12}, kAskForIds, ContainerBuilder().Ui4(kUser, 9));
}

TEST_F(TimeRange, IsNotTheTimeOfTheApplication) {
    StoreLog({{.id = 11, .user = 9, .time = 30.0, .appTime = 60.0}});
    ExpectIds({11}, kAskForIds, ContainerBuilder().Ui4(kUser, 9).Date(kEnd, 40.0));
    ExpectNoAnswer(E_INVALIDARG, kAskForIds, ContainerBuilder().Ui4(kUser, 9).Date(kStart, 50.0));
}

TEST_F(TimeRange, OfAUserAboveTheSignedNumbersIsFound) {
    StoreLog({{.id = 0xFFFFFFFF, .user = 0xFFFFFFFE}});
    ExpectIds({0xFFFFFFFF}, kAskForIds, ContainerBuilder().Ui4(kUser, 0xFFFFFFFE));
}

TEST_F(TimeRange, ThatHoldsNothingIsAnInvalidArgument) {
    ExpectNoAnswer(E_INVALIDARG, kAskForIds,
                   ContainerBuilder().Ui4(kUser, 7).Date(kStart, 11.0).Date(kEnd, 12.0));
    ExpectNoAnswer(E_INVALIDARG, kAskForIds,
                   ContainerBuilder().Ui4(kUser, 7).Date(kStart, 20.5).Date(kEnd, 10.0));
}

TEST_F(TimeRange, WithoutUserIsNoAnswer) {
    ExpectNoAnswer(S_OK, kAskForIds, ContainerBuilder().Date(kStart, 0.0));
}

TEST_F(TimeRange, WithAUserOfAnotherTypeIsNoAnswer) {
    ExpectNoAnswer(S_OK, kAskForIds, ContainerBuilder().I4(kUser, 7));
    ExpectNoAnswer(S_OK, kAskForIds, ContainerBuilder().Ui8(kUser, 7));
    ExpectNoAnswer(S_OK, kAskForIds, ContainerBuilder().Text(kUser, L"7"));
}

TEST_F(TimeRange, WhoseUserCannotBeReadIsNoAnswer) {
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Get());
    request.getResults[kUser] = E_ACCESSDENIED;
    ExpectNoAnswer(S_OK, kAskForIds, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(TimeRange, WhoseStartCannotBeReadRunsFromTimeZero) {
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Date(kStart, 20.0).Get());
    request.getResults[kStart] = E_ACCESSDENIED;
    ExpectIds({1, 2, 3, 4}, kAskForIds, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(TimeRange, WhoseEndCannotBeReadIsNoAnswer) {
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Get());
    request.getResults[kEnd] = E_ACCESSDENIED;
    ExpectNoAnswer(S_OK, kAskForIds, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(TimeRange, WithBoundsOfAnotherTypeTakesTheDefaults) {
    ExpectIds({1, 2, 3, 4}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).I4(kStart, 15).Text(kEnd, L"16"));
}

TEST_F(TimeRange, IsAnsweredAtOnceWhileAnotherProcessHoldsTheDatabaseLock) {
    const MutexHolder holder(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 8));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), IsEmpty());
    EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "the other process held it all along";
}

TEST_F(TimeRange, NeitherReadsNorMakesTheCounterFile) {
    ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 8));
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
}

} // namespace tsl::test
