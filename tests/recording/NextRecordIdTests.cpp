// The record id counter: what the next id is after each content of its file, and its lock.
#include "recording/RecordIds.h"

#include <gmock/gmock.h>

#include "tests/recording/RecordStore.h"
#include "tests/support/ComSession.h"
#include "tests/support/Containers.h"
#include "tests/support/Failures.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::IsEmpty;

} // namespace

class RecordIdCounter : public RecordStoreTest {
protected:
    void SetUp() override {
        m_session.emplace();
        RecordStoreTest::SetUp();
    }
    void TearDown() override {
        RecordStoreTest::TearDown();
        m_session.reset();
    }

    // Requests an id, expects success and that the lock was given back, but nobody else's.
    UINT32 Next() { return Next(Store()); }
    static UINT32 Next(const CActionLogStore& store) {
        const bool wasFree = MutexIsFree(kLogIdMutexName);
        CVariant answer;
        EXPECT_EQ(S_OK, NextRecordId(store, ContainerBuilder(), answer.Address()));
        EXPECT_EQ(wasFree, MutexIsFree(kLogIdMutexName));
        EXPECT_EQ(VT_UNKNOWN, answer.Type());
        if (answer.Type() != VT_UNKNOWN) return 0xDEAD;
        CVariant id;
        EXPECT_EQ(S_OK, static_cast<ITslParamContainer*>(answer.Get().punkVal)
                            ->GetValue(kKeyRecordId, id.Address()));
        EXPECT_EQ(VT_UI4, id.Type());
        return id.Get().ulVal;
    }

    // Requests an id, expects the failure, no answer and that the lock was given back.
    void ExpectFailure(HRESULT result) {
        CVariant answer;
        EXPECT_EQ(result, NextRecordId(Store(), ContainerBuilder(), answer.Address()));
        EXPECT_EQ(VT_EMPTY, answer.Type());
        EXPECT_TRUE(MutexIsFree(kLogIdMutexName));
    }

    static void WriteFile(const Bytes& bytes) {
        MakeStoreFolder();
        WriteBytes(CounterPath(), bytes);
    }

private:
    std::optional<ComSession> m_session;
};

TEST_F(RecordIdCounter, StartsAtOne) {
    EXPECT_EQ(1u, Next());
    EXPECT_EQ(Utf16FileBytes(L"00000001\t\r\n"), ReadBytes(CounterPath()));
}

TEST_F(RecordIdCounter, CountsUpAcrossStores) {
    EXPECT_EQ(1u, Next());
    EXPECT_EQ(2u, Next());
    const CActionLogStore other(GetModuleHandleW(nullptr));
    EXPECT_EQ(3u, Next(other));
    EXPECT_EQ(4u, Next());
    EXPECT_EQ(Utf16FileBytes(L"00000004\t\r\n"), ReadBytes(CounterPath()));
}

TEST_F(RecordIdCounter, GoesOnFromTheNumberInTheFile) {
    const struct {
        const char* what;
        Bytes before;
        UINT32 id;
        std::wstring after;
    } cases[] = {
        {"with a byte order mark", Utf16FileBytes(L"00000041\t\r\n"), 42, L"00000042"},
        {"without a byte order mark", Utf16Bytes(L"00000041\t\r\n"), 42, L"00000042"},
        {"without a line end", Utf16FileBytes(L"41"), 42, L"00000042"},
        {"last line counts", Utf16FileBytes(L"7\r\n99\r\n41\t\r\n"), 42, L"00000042"},
        {"empty lines between", Utf16FileBytes(L"7\r\n\r\n\n\r41\t\r\n\r\n"), 42, L"00000042"},
        {"blanks and tabs around", Utf16FileBytes(L" \t 41 \t \r\n"), 42, L"00000042"},
        {"no number", Utf16FileBytes(L"abc\r\n"), 1, L"00000001"},
        {"last line no number", Utf16FileBytes(L"41\r\nabc\r\n"), 1, L"00000001"},
        {"text behind the number", Utf16FileBytes(L"41abc\r\n"), 42, L"00000042"},
        {"zero", Utf16FileBytes(L"00000000\t\r\n"), 1, L"00000001"},
        {"no bytes at all", {}, 2, L"00000002"},
        {"byte order mark alone", Utf16FileBytes(L""), 2, L"00000002"},
        {"one byte", {0x34}, 2, L"00000002"},
        {"odd last byte", {0xFF, 0xFE, 0x34, 0x00, 0x31, 0x00, 0x39}, 42, L"00000042"},
        {"eight digits become nine", Utf16FileBytes(L"99999999\t\r\n"), 100000000, L"100000000"},
        {"nine digits", Utf16FileBytes(L"123456788\t\r\n"), 123456789, L"123456789"},
        {"highest number", Utf16FileBytes(L"4294967294\t\r\n"), 4294967295, L"4294967295"},
        {"beyond 32 bits starts anew", Utf16FileBytes(L"4294967295\t\r\n"), 0, L"00000000"},
        {"larger than 32 bits", Utf16FileBytes(L"99999999999\t\r\n"), 0, L"00000000"},
    };
    for (const auto& [what, before, id, after] : cases) {
        SCOPED_TRACE(what);
        WriteFile(before);
        EXPECT_EQ(id, Next());
        EXPECT_EQ(Utf16FileBytes(after + L"\t\r\n"), ReadBytes(CounterPath()));
    }
}

TEST_F(RecordIdCounter, TouchesNothingWithoutAContainer) {
    CVariant answer;
    EXPECT_EQ(E_POINTER, NextRecordId(Store(), nullptr, answer.Address()));
    EXPECT_EQ(E_POINTER, NextRecordId(Store(), nullptr, nullptr));
    EXPECT_EQ(VT_EMPTY, answer.Type());
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
    EXPECT_FALSE(std::filesystem::exists(StoreFolder()));

    const Bytes stored = Utf16FileBytes(L"00000041\t\r\n");
    WriteFile(stored);
    EXPECT_EQ(E_POINTER, NextRecordId(Store(), nullptr, answer.Address()));
    EXPECT_EQ(stored, ReadBytes(CounterPath()));
}

TEST_F(RecordIdCounter, OnlyNeedsTheContainerToBeThere) {
    ScriptedContainer request(ContainerBuilder().Get());
    CVariant answer;
    EXPECT_EQ(S_OK, NextRecordId(Store(), &request, answer.Address()));
    EXPECT_TRUE(request.keysRead.empty());
    EXPECT_EQ(1u, request.References());
}

TEST_F(RecordIdCounter, IsNotRaisedWhileAnotherHasTheFileOpen) {
    const Bytes stored = Utf16FileBytes(L"00000041\t\r\n");
    WriteFile(stored);
    {
        const CHandle open(CreateFileW(CounterPath().c_str(), GENERIC_READ, /*shareMode=*/0,
                                       nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(open);
        ExpectFailure(kSharingViolation);
    }
    EXPECT_EQ(stored, ReadBytes(CounterPath()));
    EXPECT_EQ(42u, Next());
}

TEST_F(RecordIdCounter, ReportsAFolderInPlaceOfTheFile) {
    std::filesystem::create_directories(CounterPath());
    ExpectFailure(kAccessDenied);
}

TEST_F(RecordIdCounter, ReportsAFileThatCanBeReadButNotWritten) {
    const Bytes stored = Utf16FileBytes(L"00000041\t\r\n");
    WriteFile(stored);
    {
        const CHandle reader(CreateFileW(CounterPath().c_str(), GENERIC_READ, FILE_SHARE_READ,
                                         nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(reader);
        ExpectFailure(kSharingViolation);
    }
    EXPECT_EQ(stored, ReadBytes(CounterPath()));
    EXPECT_EQ(42u, Next());
}

// The one test that really waits for this lock; the others look at the time-out.
TEST_F(RecordIdCounter, IsRaisedAfterTenSecondsThoughAnotherProcessHoldsTheLock) {
    WriteFile(Utf16FileBytes(L"00000041\t\r\n"));
    const MutexHolder other(kLogIdMutexName);
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(42u, Next());
    const ULONGLONG waited = GetTickCount64() - start;
    EXPECT_GE(waited, 9900u);
    EXPECT_LT(waited, 13000u);
    EXPECT_FALSE(MutexIsFree(kLogIdMutexName)) << "what was not taken is not given back";
    EXPECT_EQ(Utf16FileBytes(L"00000042\t\r\n"), ReadBytes(CounterPath()));
}

TEST_F(RecordIdCounter, IsRaisedThoughTheLockWasAbandoned) {
    MutexHolder other(kLogIdMutexName);
    other.Kill();
    EXPECT_EQ(1u, Next());
}

TEST_F(RecordIdCounter, HasALockOfItsThreadAtOnceAndLeavesItHeld) {
    {
        const CMutexGuard held(Store().LogIdLock(), kLogIdTimeoutMilliseconds);
        ASSERT_TRUE(held.IsHeld());
        const ULONGLONG start = GetTickCount64();
        EXPECT_EQ(1u, Next());
        EXPECT_LT(GetTickCount64() - start, kLogIdTimeoutMilliseconds / 2);
        EXPECT_FALSE(MutexIsFree(kLogIdMutexName));
    }
    EXPECT_TRUE(MutexIsFree(kLogIdMutexName));
}

TEST_F(RecordIdCounter, DoesNotNeedTheLockOfTheDatabases) {
    const MutexHolder other(kSqliteAccessMutexName);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    EXPECT_EQ(1u, Next());
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessMutexName), IsEmpty());
}

} // namespace tsl::test
