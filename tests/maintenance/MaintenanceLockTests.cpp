// The locks around a conversion: taken in their order, waited for no longer than they may, given
// back.
#include <chrono>
#include <memory>
#include <thread>

#include "tests/maintenance/OldStore.h"
#include "tests/maintenance/WaitWatch.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

class MaintenanceLock : public OldStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore("complete.sql");
        before = ReadActionLog();
    }
    static double SecondsToMaintain(HRESULT answer = S_OK) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(answer, Maintain());
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    StoreImage before;
};

TEST_F(MaintenanceLock, OfTheDatabasesThatAnotherProcessHoldsDelaysThreeSecondsOnly) {
    {
        const MutexHolder other(kSqliteAccessLock);
        const double seconds = SecondsToMaintain();
        EXPECT_GE(seconds, 2.9);
        EXPECT_LT(seconds, 6.0);
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "what was not taken is not given back";
    }
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, OfTheDatabasesDelaysTheSwitchNoLonger) {
    {
        const MutexHolder other(kSqliteAccessLock);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));
        EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
    }
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, ThatComesFreeInTimeIsTaken) {
    auto other = std::make_unique<MutexHolder>(kSqliteAccessLock);
    std::jthread release([&] {
        Sleep(500);
        other.reset();
    });
    const double seconds = SecondsToMaintain();
    release.join();
    EXPECT_GE(seconds, 0.4);
    EXPECT_LT(seconds, 2.9);
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, ThatWasAbandonedDoesNotStopTheConversion) {
    MutexHolder other(kSqliteAccessLock);
    other.Kill();
    std::thread([&] {
        EXPECT_LT(SecondsToMaintain(), 2.5);
        EXPECT_FALSE(MutexIsFree(kSqliteAccessLock)) << "it stays with this thread";
    }).join();
    ExpectCompleteStoreIsConverted(before);
    ReleasePlugin(); // the abandoned mutex goes with its last handle
}

TEST_F(MaintenanceLock, OfTheCounterThatAnotherProcessHoldsDelaysTenSecondsOnly) {
    {
        const MutexHolder other(kLogIdLock);
        const double seconds = SecondsToMaintain();
        EXPECT_GE(seconds, 9.9);
        EXPECT_LT(seconds, 14.0);
        EXPECT_FALSE(MutexIsFree(kLogIdLock)) << "what was not taken is not given back";
    }
    ExpectCompleteStoreIsConverted(before);
}

TEST_F(MaintenanceLock, OfTheCounterIsTakenInsideThatOfTheDatabases) {
    auto other = std::make_unique<MutexHolder>(kLogIdLock);
    {
        const WaitWatch watch;
        std::jthread maintenance([] { EXPECT_EQ(S_OK, Maintain()); });
        EXPECT_TRUE(watch.SeesWaitForCounter());
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
    EXPECT_LT(SecondsToMaintain(kEngineError), 2.5) << "no database";
    MakeOldStore("no-last-id.sql");
    EXPECT_LT(SecondsToMaintain(kEngineNoRow), 2.5);
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
