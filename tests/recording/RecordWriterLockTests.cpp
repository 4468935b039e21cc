// The lock of the databases around a write: taken, waited for no longer than it may, given back.
#include "recording/RecordWriter.h"

#include "tests/recording/RecordStore.h"
#include "tests/support/Containers.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

// Tells, when it is read, whether another thread could have the lock.
class LockWatchingContainer final : public ITslParamContainer {
public:
    explicit LockWatchingContainer(CComPtr<CTslParamContainer> values)
        : m_values(std::move(values)) {}

    bool lockWasFree = false;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return m_values->QueryInterface(iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* commandCode) override {
        return m_values->GetCommandCode(commandCode);
    }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 commandCode) override {
        return m_values->SetCommandCode(commandCode);
    }
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        lockWasFree = lockWasFree || IsFree(kSqliteAccessMutexName);
        return m_values->GetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override {
        return m_values->SetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 key) override {
        return m_values->RemoveValue(key);
    }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override { return m_values->GetKeys(keys); }

private:
    CComPtr<CTslParamContainer> m_values;
};

} // namespace

class RecordWriterLock : public RecordStoreTest {};

TEST_F(RecordWriterLock, IsHeldWhileARecordIsWritten) {
    LockWatchingContainer action(Action(5, L"playItem").Get());
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), &action));
    EXPECT_FALSE(action.lockWasFree);
    EXPECT_EQ("1", RowCount());
}

TEST_F(RecordWriterLock, IsFreeAfterwards) {
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), Action(5, L"playItem")));
    EXPECT_FALSE(Store().SqliteAccessLock().IsHeld());
    EXPECT_TRUE(IsFree(kSqliteAccessMutexName));
}

TEST_F(RecordWriterLock, ThatAnotherProcessHoldsDelaysTheWriteThreeSecondsOnly) {
    const MutexHolder other(kSqliteAccessMutexName);
    const StopWatch watch;
    EXPECT_EQ(S_OK, WriteActionRecord(Store(), Action(5, L"playItem")));
    EXPECT_GE(watch.Seconds(), 2.9);
    EXPECT_LT(watch.Seconds(), 6.0);
    EXPECT_EQ("1", RowCount());
    EXPECT_FALSE(Store().SqliteAccessLock().IsHeld());
    EXPECT_FALSE(IsFree(kSqliteAccessMutexName)) << "what was not taken is not given back";
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
    EXPECT_FALSE(action.lockWasFree);
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
    EXPECT_TRUE(IsFree(kSqliteAccessMutexName));
}

} // namespace tsl::test
