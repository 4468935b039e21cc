// The ids of a user's records in a range of record ids.
#include <gmock/gmock.h>

#include "tests/query/QueryFixture.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;

} // namespace

class IdRange : public QueryTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(QueryTest::SetUp());
        StoreLog({{.id = 1},
                  {.id = 2},
                  {.id = 3, .user = 8},
                  {.id = 4, .logKind = 16},
                  {.id = 5},
                  {.id = 0},
                  {.id = 0xFFFFFFFF}});
    }
};

TEST_F(IdRange, IncludesItsBounds) {
    ExpectIds({2, 5}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 2).Ui4(kLast, 5));
    ExpectIds({5}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 5).Ui4(kLast, 5));
}

TEST_F(IdRange, WithoutFirstIdRunsFromOne) {
    ExpectIds({1, 2}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kLast, 4));
}

TEST_F(IdRange, WithoutLastIdRunsToTheHighestId) {
    ExpectIds({2, 5, 0xFFFFFFFF}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 2));
}

TEST_F(IdRange, HoldsRecordsOfItsUserOnly) {
    ExpectIds({3}, kAskForIds, ContainerBuilder().Ui4(kUser, 8).Ui4(kFirst, 1));
}

TEST_F(IdRange, HoldsRecordsOfTheObjectsLogKindOnly) {
    MakeCounterFile();
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(16));
    ExpectIds({4}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 1));
}

TEST_F(IdRange, IsChosenByEitherKeyAndSetsTheTimesAside) {
    const double late = 5000.0; // later than every record
    ExpectIds({1, 2, 5, 0xFFFFFFFF}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 1).Date(kStart, late));
    ExpectIds({1, 2, 5}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).Ui4(kLast, 9).Date(kStart, late));
}

TEST_F(IdRange, IsChosenByTheKeyListWhateverTheTypeOfTheBound) {
    // A bound of another type counts as absent, and the log kind filters.
    ExpectIds({1, 2, 5, 0xFFFFFFFF}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).I4(kFirst, 5));
    ExpectIds({1, 2, 5, 0xFFFFFFFF}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).Text(kLast, L"2"));
}

TEST_F(IdRange, IsNotChosenWhenTheKeysCannotBeListed) {
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 5).Get());
    request.getKeysResult = E_FAIL;
    ExpectIds({1, 2, 4, 5, 0, 0xFFFFFFFF}, kAskForIds, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(IdRange, IsNotChosenByASimilarKey) {
    ExpectIds({1, 2, 4, 5, 0, 0xFFFFFFFF}, kAskForIds,
              ContainerBuilder().Ui4(kUser, 7).I4(0x0200001800000003, 5));
}

TEST_F(IdRange, ThatHoldsNothingIsAnInvalidArgument) {
    ExpectNoAnswer(E_INVALIDARG, kAskForIds,
                   ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 3).Ui4(kLast, 4));
}

TEST_F(IdRange, WithoutUserIsNoAnswer) {
    ExpectNoAnswer(S_OK, kAskForIds, ContainerBuilder().Ui4(kFirst, 1));
    ExpectNoAnswer(S_OK, kAskForIds, ContainerBuilder().Ui4(kFirst, 1).I4(kUser, 7));
}

TEST_F(IdRange, WhoseUserCannotBeReadReportsThat) {
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 1).Get());
    request.getResults[kUser] = E_ACCESSDENIED;
    ExpectNoAnswer(E_ACCESSDENIED, kAskForIds, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(IdRange, WhoseFirstIdCannotBeReadRunsFromOne) {
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 5).Get());
    request.getResults[kFirst] = E_ACCESSDENIED;
    ExpectIds({1, 2, 5, 0xFFFFFFFF}, kAskForIds, &request);
}

TEST_F(IdRange, WhoseLastIdCannotBeReadReportsThat) {
    ScriptedContainer request(ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 1).Get());
    request.getResults[kLast] = E_ACCESSDENIED;
    ExpectNoAnswer(E_ACCESSDENIED, kAskForIds, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(IdRange, WaitsForTheDatabaseLockAndGoesOnWithoutIt) {
    const MutexHolder holder(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
    ExpectIds({1, 2}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kLast, 4));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
    EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "the other process still holds it";
}

// A range with a bound of 0 goes by ids, whichever bound is the higher.
TEST_F(IdRange, FromZeroIsNotWrapped) {
    ExpectIds({1, 2, 0}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 0).Ui4(kLast, 2));
    ExpectIds({0}, kAskForIds, ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 0).Ui4(kLast, 0));
}

TEST_F(IdRange, DownToZeroIsNotWrappedAndHoldsNothing) {
    ExpectNoAnswer(E_INVALIDARG, kAskForIds,
                   ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, 5).Ui4(kLast, 0));
}

// A range whose first id is above its last one: times tell what lies between.
class WrappedRange : public QueryTest {
protected:
    ContainerBuilder Request(UINT32 first, UINT32 last) {
        return ContainerBuilder().Ui4(kUser, 7).Ui4(kFirst, first).Ui4(kLast, last);
    }
};

TEST_F(WrappedRange, GoesByTheTimesOfItsTwoRecords) {
    StoreLog({{.id = 4294967290, .time = 99.0},
              {.id = 4294967291, .time = 100.0},
              {.id = 4294967295, .time = 101.0},
              {.id = 1, .time = 102.0},
              {.id = 2, .time = 103.0},
              {.id = 3, .time = 104.0},
              {.id = 77, .time = 101.5},
              {.id = 5, .user = 8, .time = 101.0},
              {.id = 6, .time = 101.0, .logKind = 2}});
    ExpectIds({4294967291, 4294967295, 1, 2, 77}, kAskForIds, Request(4294967291, 2));
}

TEST_F(WrappedRange, WithoutItsFirstRecordStartsAtTimeZero) {
    StoreLog({{.id = 8, .time = -1.0},
              {.id = 1, .time = 0.0},
              {.id = 2, .time = 50.0},
              {.id = 3, .time = 60.0}});
    ExpectIds({1, 2}, kAskForIds, Request(100, 2));
}

TEST_F(WrappedRange, WithoutItsLastRecordRunsToTheLatestTime) {
    StoreLog({{.id = 99, .time = 50.0},
              {.id = 100, .time = 60.0},
              {.id = 3, .time = 4294967295.0},
              {.id = 4, .time = 4294967296.0}});
    ExpectIds({100, 3}, kAskForIds, Request(100, 2));
}

TEST_F(WrappedRange, WithoutBothItsRecordsIsEveryTime) {
    StoreLog({{.id = 50, .time = 0.0}, {.id = 500, .time = 4294967295.0}});
    ExpectIds({50, 500}, kAskForIds, Request(100, 2));
}

TEST_F(WrappedRange, TakesTheTimesOfItsRecordsWhoeverTheyBelongTo) {
    StoreLog({{.id = 100, .user = 8, .time = 10.0},
              {.id = 2, .user = 9, .time = 20.0, .logKind = 16},
              {.id = 50, .time = 15.0},
              {.id = 51, .time = 25.0}});
    ExpectIds({50}, kAskForIds, Request(100, 2));
}

TEST_F(WrappedRange, TakesTheLastRowOfARecordThatIsThereTwice) {
    StoreLog({{.id = 100, .time = 10.0},
              {.id = 100, .time = 30.0},
              {.id = 50, .time = 20.0},
              {.id = 51, .time = 35.0},
              {.id = 2, .time = 40.0}});
    ExpectIds({100, 51, 2}, kAskForIds, Request(100, 2));
}

TEST_F(WrappedRange, WhoseRecordsGoBackInTimeHoldsNothing) {
    StoreLog({{.id = 100, .time = 40.0}, {.id = 50, .time = 20.0}, {.id = 2, .time = 10.0}});
    ExpectNoAnswer(E_INVALIDARG, kAskForIds, Request(100, 2));
}

TEST_F(WrappedRange, RaisesTheCounterLikeAnyOther) {
    StoreLog({{.id = 100, .time = 10.0}, {.id = 2, .time = 20.0}});
    WriteBytes(CounterPath(), Utf16FileBytes(L"00000002\t\r\n"));
    ExpectIds({100, 2}, kAskForIds, Request(100, 2));
    EXPECT_EQ(Utf16FileBytes(L"00000099\t\r\n"), ReadBytes(CounterPath()));
}

} // namespace tsl::test
