// What the tests of the locks see of a wait, and what they leave of it to the system.
#include "tests/support/LockWaits.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "base/NamedMutex.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StartedProgram.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr wchar_t kWatchedLock[] = L"Global\\LockWaitsTests";
constexpr wchar_t kOtherLock[] = L"Global\\LockWaitsTests_Other";

void* ImportedWait() {
    return ImportHook::Imported(GetModuleHandleW(nullptr), "WaitForSingleObject");
}

} // namespace

TEST(LockWaits, AreToldApartByTheNameOfTheLock) {
    const CNamedMutex mutex(kWatchedLock);
    const CNamedMutex other(kOtherLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    const CMutexGuard otherGuard(other, 70000);
    CMutexGuard(mutex, 50000).Release();
    const CMutexGuard guard(mutex, INFINITE);
    EXPECT_THAT(waits.TimeOuts(kWatchedLock), ElementsAre(50000, INFINITE));
    EXPECT_THAT(waits.TimeOuts(kOtherLock), ElementsAre(70000));
}

TEST(LockWaits, TakeALockThatIsFree) {
    const CNamedMutex mutex(kWatchedLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    const CMutexGuard guard(mutex, 50000);
    EXPECT_TRUE(guard.IsHeld());
    EXPECT_FALSE(MutexIsFree(kWatchedLock));
}

TEST(MutexHolder, EndsWithTheProgramThatStartedIt) {
    const auto hold = [](DWORD parent, const std::wstring& tag) {
        return StartProgram(ProgramFolder() / L"hold_mutex.exe",
                            std::wstring(L"\"") + kWatchedLock + L"\" " + tag + L" " +
                                std::to_wstring(parent));
    };
    const auto named = [](const wchar_t* name) {
        return CHandle(CreateEventW(nullptr, TRUE, FALSE, name));
    };
    const CHandle events[] = {named(L"hold_mutex_ready_first"), named(L"hold_mutex_release_first"),
                              named(L"hold_mutex_ready_second"),
                              named(L"hold_mutex_release_second")};
    const StartedProgram first = hold(GetCurrentProcessId(), L"first");
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(events[0].Get(), 20000));
    const StartedProgram second = hold(first.id, L"second");
    EXPECT_EQ(DWORD{WAIT_TIMEOUT}, WaitForSingleObject(second.process.Get(), 200));
    TerminateProcess(first.process.Get(), 1);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(second.process.Get(), 20000));
    EXPECT_TRUE(MutexIsFree(kWatchedLock));
}

TEST(LockWaits, GiveAHeldLockUpAtOnceOrWaitForIt) {
    const MutexHolder holder(kWatchedLock);
    const CNamedMutex mutex(kWatchedLock);
    for (const auto& [held, timeOut] : {std::pair(HeldLocks::AreGivenUpAtOnce, DWORD{600000}),
                                        std::pair(HeldLocks::AreWaitedFor, DWORD{100})}) {
        const LockWaits waits(held);
        const ULONGLONG start = GetTickCount64();
        const CMutexGuard guard(mutex, timeOut);
        EXPECT_FALSE(guard.IsHeld());
        EXPECT_GE(GetTickCount64() - start, held == HeldLocks::AreWaitedFor ? 90u : 0u);
        EXPECT_THAT(waits.TimeOuts(kWatchedLock), ElementsAre(timeOut));
    }
}

TEST(LockWaits, OfATryAreNone) {
    const CNamedMutex mutex(kWatchedLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    const CMutexGuard guard(mutex, 0);
    EXPECT_TRUE(guard.IsHeld());
    EXPECT_THAT(waits.TimeOuts(kWatchedLock), IsEmpty());
}

TEST(LockWaits, LeaveTheProgramAsItWas) {
    void* const before = ImportedWait();
    {
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
        EXPECT_NE(before, ImportedWait());
        EXPECT_THROW(LockWaits(HeldLocks::AreWaitedFor), std::logic_error);
        EXPECT_NE(before, ImportedWait());
    }
    EXPECT_EQ(before, ImportedWait());
    EXPECT_THROW(LockWaits(HeldLocks::AreWaitedFor, L"not loaded.dll"), std::runtime_error);
    EXPECT_EQ(before, ImportedWait());
}

} // namespace tsl::test
