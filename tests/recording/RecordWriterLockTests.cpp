// The lock of the databases around a write: taken, waited for no longer than it may, given back.
#include "recording/RecordWriter.h"

#include <gmock/gmock.h>

#include "tests/recording/RecordStore.h"
#include "tests/support/Containers.h"
#include "tests/support/LockWatchingContainer.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

using ::testing::_;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;

class RecordWriterLock : public RecordStoreTest {};

TEST_F(RecordWriterLock, IsHeldWhileARecordIsWritten) {
    LockWatchingContainer action(Action(5, L"playItem").Get());
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), &action));
    EXPECT_THAT(action.lockWasFree, Not(AnyOf(IsEmpty(), Contains(Pair(_, true)))));
    EXPECT_EQ("1", RowCount());
}

TEST_F(RecordWriterLock, IsFreeAfterwards) {
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), Action(5, L"playItem")));
    EXPECT_FALSE(Store().SqliteAccessLock().IsHeld());
    EXPECT_TRUE(MutexIsFree(kSqliteAccessMutexName));
}

TEST_F(RecordWriterLock, ThatAnotherProcessHoldsDelaysTheWriteThreeSecondsOnly) {
    const MutexHolder other(kSqliteAccessMutexName);
    const StopWatch watch;
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), Action(5, L"playItem")));
    EXPECT_GE(watch.Seconds(), 2.9);
    EXPECT_LT(watch.Seconds(), 6.0);
    EXPECT_EQ("1", RowCount());
    EXPECT_FALSE(Store().SqliteAccessLock().IsHeld());
    EXPECT_FALSE(MutexIsFree(kSqliteAccessMutexName)) << "what was not taken is not given back";
}

TEST_F(RecordWriterLock, ThatTimedOutDoesNotChangeAFailure) {
    const MutexHolder other(kSqliteAccessMutexName);
    ScriptedContainer action(Action(5, L"playItem").Get());
    action.getResults[kKeyUserId] = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, WriteActionRecord(Store(), &action));
    EXPECT_EQ("0", RowCount());
}

TEST_F(RecordWriterLock, ThatComesFreeInTimeIsTaken) {
    auto other = std::make_unique<MutexHolder>(kSqliteAccessMutexName);
    std::thread release([&] {
        Sleep(300);
        other.reset();
    });
    LockWatchingContainer action(Action(5, L"playItem").Get());
    const StopWatch watch;
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), &action));
    const double seconds = watch.Seconds();
    release.join();
    EXPECT_GE(seconds, 0.2);
    EXPECT_LT(seconds, 2.9);
    EXPECT_THAT(action.lockWasFree, Not(AnyOf(IsEmpty(), Contains(Pair(_, true)))));
    EXPECT_EQ("1", RowCount());
}

TEST_F(RecordWriterLock, ThatWasAbandonedDoesNotStopTheWrite) {
    MutexHolder other(kSqliteAccessMutexName);
    other.Kill();
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), Action(5, L"playItem")));
    EXPECT_EQ("1", RowCount());
}

TEST_F(RecordWriterLock, ThatTheStoreHoldsAlreadyIsNotWaitedForAndGivenBack) {
    Store().SqliteAccessLock().Acquire(kSqliteAccessTimeoutMilliseconds);
    ASSERT_TRUE(Store().SqliteAccessLock().IsHeld());
    const StopWatch watch;
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), Action(5, L"playItem")));
    EXPECT_LT(watch.Seconds(), 2.5);
    EXPECT_EQ("1", RowCount());
    EXPECT_FALSE(Store().SqliteAccessLock().IsHeld());
    EXPECT_TRUE(MutexIsFree(kSqliteAccessMutexName));
}

} // namespace tsl::test
