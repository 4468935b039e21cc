// The named mutex: waiting, the flag, and what others see of it.
#include "base/NamedMutex.h"

#include <gmock/gmock.h>

#include <string>
#include <thread>

#include "tests/support/ImportHook.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr DWORD kShort = 60;
constexpr DWORD kLong = 5000;

struct Calls {
    decltype(&CreateMutexW) create = &CreateMutexW;
    SECURITY_ATTRIBUTES attributes{};
    SECURITY_DESCRIPTOR descriptor{};
    BOOL initialOwner = TRUE;
};
Calls* g_calls = nullptr;

HANDLE WINAPI WatchCreate(SECURITY_ATTRIBUTES* attributes, BOOL initialOwner, const wchar_t* name) {
    g_calls->attributes = *attributes;
    g_calls->descriptor = *static_cast<SECURITY_DESCRIPTOR*>(attributes->lpSecurityDescriptor);
    g_calls->initialOwner = initialOwner;
    return g_calls->create(attributes, initialOwner, name);
}

class NamedMutex : public ::testing::Test {
protected:
    void SetUp() override { g_calls = &m_calls; }
    void TearDown() override { g_calls = nullptr; }

    const wchar_t* Name() const { return m_name.c_str(); }

    // True when another thread can have the mutex at once.
    bool IsFree() const {
        bool held = false;
        std::thread([&] {
            CNamedMutex other(Name());
            other.Acquire(0);
            held = other.IsHeld();
        }).join();
        return held;
    }

    Calls m_calls;
    const std::wstring m_name =
        L"Global\\NamedMutexTests_" + std::to_wstring(GetCurrentProcessId());
};

} // namespace

TEST_F(NamedMutex, IsHeldAfterAcquireAndFreeAfterRelease) {
    CNamedMutex mutex(Name());
    EXPECT_FALSE(mutex.IsHeld());
    EXPECT_TRUE(IsFree());
    mutex.Acquire(kLong);
    EXPECT_TRUE(mutex.IsHeld());
    EXPECT_FALSE(IsFree());
    mutex.Release();
    EXPECT_FALSE(mutex.IsHeld());
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, AcquiredTwiceWaitsOnceAndIsFreeAfterOneRelease) {
    CNamedMutex mutex(Name());
    const LockWaits waits(HeldLocks::AreWaitedFor);
    mutex.Acquire(kLong);
    mutex.Acquire(kLong);
    EXPECT_THAT(waits.TimeOuts(m_name), ElementsAre(kLong));
    EXPECT_TRUE(mutex.IsHeld());
    mutex.Release();
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, ReleasedTwiceOrWithoutHoldingIsHarmless) {
    CNamedMutex outer(Name());
    CNamedMutex inner(Name());
    outer.Acquire(kLong);
    inner.Release();
    EXPECT_FALSE(IsFree()) << "somebody else's hold was given back";
    inner.Acquire(kLong);
    inner.Release();
    inner.Release();
    EXPECT_FALSE(IsFree()) << "two releases undid two holds";
    outer.Release();
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, TwoObjectsOfAThreadTakeItSeparately) {
    CNamedMutex first(Name());
    CNamedMutex second(Name());
    first.Acquire(kLong);
    second.Acquire(kLong);
    EXPECT_TRUE(second.IsHeld());
    first.Release();
    EXPECT_FALSE(IsFree());
    second.Release();
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, SecondThreadOnTheSameObjectSkipsTheWait) {
    CNamedMutex mutex(Name());
    mutex.Acquire(kLong);
    const LockWaits waits(HeldLocks::AreWaitedFor);
    bool held = false;
    std::thread([&] {
        mutex.Acquire(kLong);
        held = mutex.IsHeld();
    }).join();
    EXPECT_TRUE(held);
    EXPECT_THAT(waits.TimeOuts(m_name), IsEmpty());
}

TEST_F(NamedMutex, HeldByAnotherProcessIsWaitedForThenGivenUp) {
    const MutexHolder holder(Name());
    CNamedMutex mutex(Name());
    const ULONGLONG start = GetTickCount64();
    mutex.Acquire(500);
    const ULONGLONG waited = GetTickCount64() - start;
    EXPECT_FALSE(mutex.IsHeld());
    EXPECT_GE(waited, 450u);
    EXPECT_LT(waited, 3000u);
    mutex.Release();
    EXPECT_FALSE(IsFree()) << "the other process lost it";
}

TEST_F(NamedMutex, CanBeHadOnceTheOtherProcessLetsGo) {
    CNamedMutex mutex(Name());
    {
        const MutexHolder holder(Name());
    }
    mutex.Acquire(kLong);
    EXPECT_TRUE(mutex.IsHeld());
}

TEST_F(NamedMutex, AbandonedCountsAsNotHeldAndIsNeverGivenBack) {
    CNamedMutex mutex(Name());
    MutexHolder holder(Name());
    holder.Kill();
    const ULONGLONG start = GetTickCount64();
    mutex.Acquire(kLong);
    EXPECT_LT(GetTickCount64() - start, kLong / 2) << "it was waited for like a held one";
    EXPECT_FALSE(mutex.IsHeld());
    EXPECT_FALSE(IsFree()) << "this thread does not own it";
    mutex.Release();
    EXPECT_FALSE(IsFree());

    // The thread owns it, so its next wait succeeds, and that hold is given back as any other.
    mutex.Acquire(kShort);
    EXPECT_TRUE(mutex.IsHeld());
    mutex.Release();
    EXPECT_FALSE(IsFree());
}

TEST_F(NamedMutex, IsOpenToEveryone) {
    {
        const ImportHook hook("CreateMutexW", &WatchCreate);
        const CNamedMutex mutex(Name());
    }
    EXPECT_FALSE(m_calls.initialOwner);
    EXPECT_EQ(1u, m_calls.attributes.nLength);
    EXPECT_FALSE(m_calls.attributes.bInheritHandle);
    EXPECT_EQ(1, m_calls.descriptor.Revision);
    EXPECT_EQ(SE_DACL_PRESENT, m_calls.descriptor.Control);
    EXPECT_EQ(nullptr, m_calls.descriptor.Dacl);
}

TEST_F(NamedMutex, ThatCannotBeCreatedIsNeverWaitedFor) {
    const CHandle event(CreateEventW(nullptr, FALSE, FALSE, Name()));
    ASSERT_TRUE(event);
    CNamedMutex mutex(Name());
    const LockWaits waits(HeldLocks::AreWaitedFor);
    mutex.Acquire(kLong);
    EXPECT_THAT(waits.TimeOuts(m_name), IsEmpty());
    EXPECT_THAT(waits.TimeOuts(L""), IsEmpty());
    EXPECT_FALSE(mutex.IsHeld());
    mutex.Release();
}

TEST_F(NamedMutex, GoingAwayReleasesItAndClosesIt) {
    CNamedMutex witness(Name());
    {
        CNamedMutex mutex(Name());
        mutex.Acquire(kLong);
        ASSERT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, NothingOfTheNameStaysWhenTheLastGoes) {
    {
        const CNamedMutex mutex(Name());
        EXPECT_TRUE(CHandle(OpenMutexW(SYNCHRONIZE, FALSE, Name())));
    }
    EXPECT_FALSE(CHandle(OpenMutexW(SYNCHRONIZE, FALSE, Name())));
}

TEST_F(NamedMutex, GuardHoldsItForItsLifetime) {
    CNamedMutex mutex(Name());
    {
        const CMutexGuard guard(mutex, kLong);
        EXPECT_TRUE(mutex.IsHeld());
        EXPECT_FALSE(IsFree());
    }
    EXPECT_FALSE(mutex.IsHeld());
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, GuardGivesBackOnlyOnce) {
    CNamedMutex outer(Name());
    CNamedMutex mutex(Name());
    outer.Acquire(kLong);
    {
        const CMutexGuard guard(mutex, kLong);
        mutex.Release();
    }
    EXPECT_FALSE(IsFree()) << "the guard released a second time";
}

TEST_F(NamedMutex, GuardThatTimesOutLetsTheWorkGoOn) {
    const MutexHolder holder(Name());
    CNamedMutex mutex(Name());
    bool worked = false;
    {
        const CMutexGuard guard(mutex, kShort);
        worked = !mutex.IsHeld();
    }
    EXPECT_TRUE(worked);
    EXPECT_FALSE(IsFree());
}

} // namespace tsl::test
