// The locks around a conversion: taken in their order, waited for no longer than they may, given
// back.
#include <gmock/gmock.h>

#include <memory>
#include <thread>

#include "tests/maintenance/OldStore.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MaintenanceLock : public OldStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore("complete.sql");
        before = ReadActionLog();
    }

    StoreImage before;
};

TEST_F(MaintenanceLock, OfTheDatabasesThatAnotherProcessHoldsDelaysThreeSecondsOnly) {
    {
        const MutexHolder other(kSqliteAccessLock);
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
        EXPECT_EQ(S_OK, Maintain());
        EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "what was not taken is not given back";
    }
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, OfTheDatabasesDelaysTheSwitchNoLonger) {
    {
        const MutexHolder other(kSqliteAccessLock);
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce, kComponentLibrary);
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
        EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
    }
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, ThatComesFreeInTimeIsTaken) {
    auto other = std::make_unique<MutexHolder>(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreWaitedFor);
    std::jthread release([&] {
        EXPECT_TRUE(waits.SeesWaitFor(kSqliteAccessLock));
        EXPECT_EQ(before, ReadActionLog()) << "converted without the lock";
        other.reset();
    });
    EXPECT_EQ(S_OK, Maintain());
    release.join();
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, ThatWasAbandonedDoesNotStopTheConversion) {
    MutexHolder other(kSqliteAccessLock);
    other.Kill();
    std::thread([&] {
        const LockWaits waits(HeldLocks::AreWaitedFor);
        EXPECT_EQ(S_OK, Maintain());
        EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "it stays with this thread";
    }).join();
    ExpectCompleteStoreIsConverted(before);
    ReleasePlugin(); // the abandoned mutex goes with its last handle
}

TEST_F(MaintenanceLock, OfTheCounterThatAnotherProcessHoldsDelaysTenSecondsOnly) {
    {
        const MutexHolder other(kLogIdLock);
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
        EXPECT_EQ(S_OK, Maintain());
        EXPECT_THAT(waits.TimeOuts(kLogIdLock), ElementsAre(10000));
        EXPECT_FALSE(MutexIsFree(kLogIdLock)) << "what was not taken is not given back";
    }
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, OfTheCounterIsTakenInsideThatOfTheDatabases) {
    auto other = std::make_unique<MutexHolder>(kLogIdLock);
    {
        const LockWaits waits(HeldLocks::AreWaitedFor);
        std::jthread maintenance([] { EXPECT_EQ(S_OK, Maintain()); });
        EXPECT_TRUE(waits.SeesWaitFor(kLogIdLock));
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock));
        EXPECT_FALSE(std::filesystem::exists(CounterPath()));
        EXPECT_EQ(1, CountRows(ActionLogPath(), kIdTable)) << "not dropped before the counter";
        other.reset();
    }
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, OfTheCounterIsNotTakenWithoutALastId) {
    std::filesystem::remove(ActionLogPath());
    const MutexHolder other(kLogIdLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    EXPECT_EQ(kEngineError, Maintain()) << "no database";
    MakeOldStore("no-last-id.sql");
    EXPECT_EQ(kEngineNoRow, Maintain());
    EXPECT_THAT(waits.TimeOuts(kLogIdLock), IsEmpty());
}

TEST_F(MaintenanceLock, IsFreeAfterEveryExample) {
    for (const auto& entry : std::filesystem::directory_iterator(OldStoreFolder())) {
        SCOPED_TRACE(entry.path().filename().string());
        std::filesystem::remove(ActionLogPath());
        std::filesystem::remove(CounterPath());
        MakeOldStore(entry.path().filename().string());
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        EXPECT_TRUE(MutexExists(kSqliteAccessLock));
        EXPECT_TRUE(MutexExists(kLogIdLock));
        ExpectLocksAreFree();
        EXPECT_TRUE(NobodyHasOpen(ActionLogPath()));
    }
}

} // namespace tsl::test
