// The lock of the databases around a write: taken, waited for no longer than it may, given back.
#include "recording/RecordWriter.h"

#include <gmock/gmock.h>

#include <memory>
#include <thread>

#include "tests/recording/RecordStore.h"
#include "tests/support/Containers.h"
#include "tests/support/EngineWrites.h"
#include "tests/support/LockWaits.h"
#include "tests/support/LockWatchingContainer.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

using ::testing::_;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;

class RecordWriterLock : public RecordStoreTest {};

TEST_F(RecordWriterLock, IsHeldWhileARecordIsWrittenAndFreeWhileItIsRead) {
    LockWatchingContainer action(Action(5, L"playItem").Get());
    const EngineWrites writes;
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, &action));
    EXPECT_TRUE(writes.WereUnderTheLock());
    EXPECT_THAT(action.lockWasFree, Not(AnyOf(IsEmpty(), Contains(Pair(_, false)))));
    EXPECT_EQ("1", RowCount());
}

TEST_F(RecordWriterLock, IsFreeAfterwards) {
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, Action(5, L"playItem")));
    EXPECT_TRUE(MutexIsFree(kSqliteAccessMutexName));
}

TEST_F(RecordWriterLock, ThatAnotherProcessHoldsDelaysTheWriteThreeSecondsOnly) {
    const MutexHolder other(kSqliteAccessMutexName);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, Action(5, L"playItem")));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessMutexName), ElementsAre(3000));
    EXPECT_EQ("1", RowCount());
    EXPECT_FALSE(MutexIsFree(kSqliteAccessMutexName)) << "what was not taken is not given back";
}

TEST_F(RecordWriterLock, ThatTimedOutDoesNotChangeAFailure) {
    const MutexHolder other(kSqliteAccessMutexName);
    ScriptedContainer action(Action(5, L"playItem").Get());
    action.getResults[kKeyUserId] = E_ACCESSDENIED;
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    EXPECT_EQ(E_ACCESSDENIED, WriteActionRecord(Store(), m_target, &action));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessMutexName), ElementsAre(3000));
    EXPECT_EQ("0", RowCount());
}

TEST_F(RecordWriterLock, ThatComesFreeInTimeIsTaken) {
    auto other = std::make_unique<MutexHolder>(kSqliteAccessMutexName);
    const LockWaits waits(HeldLocks::AreWaitedFor);
    std::jthread release([&] {
        EXPECT_TRUE(waits.SeesWaitFor(kSqliteAccessMutexName));
        other.reset();
    });
    const EngineWrites writes;
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, Action(5, L"playItem")));
    release.join();
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessMutexName), ElementsAre(3000));
    EXPECT_TRUE(writes.WereUnderTheLock());
    EXPECT_EQ("1", RowCount());
}

TEST_F(RecordWriterLock, ThatWasAbandonedDoesNotStopTheWrite) {
    MutexHolder other(kSqliteAccessMutexName);
    other.Kill();
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, Action(5, L"playItem")));
    EXPECT_EQ("1", RowCount());
}

TEST_F(RecordWriterLock, ThatItsThreadHoldsIsHadAtOnceAndStaysHeld) {
    {
        const CMutexGuard held(Store().SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
        ASSERT_TRUE(held.IsHeld());
        const EngineWrites writes;
        const ULONGLONG start = GetTickCount64();
        EXPECT_EQ(S_OK, WriteActionRecord(Store(), m_target, Action(5, L"playItem")));
        EXPECT_LT(GetTickCount64() - start, kSqliteAccessTimeoutMilliseconds);
        EXPECT_TRUE(writes.WereUnderTheLock());
        EXPECT_FALSE(MutexIsFree(kSqliteAccessMutexName));
    }
    EXPECT_TRUE(MutexIsFree(kSqliteAccessMutexName));
    EXPECT_EQ("1", RowCount());
}

} // namespace tsl::test
