// The named mutex and its guards: waiting, who holds it, and what others see of it.
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
        std::thread([&] { held = CMutexGuard(CNamedMutex(Name()), 0).IsHeld(); }).join();
        return held;
    }

    Calls m_calls;
    const std::wstring m_name =
        L"Global\\NamedMutexTests_" + std::to_wstring(GetCurrentProcessId());
};

} // namespace

TEST_F(NamedMutex, IsHeldByAGuardUntilItsReleaseOrItsEnd) {
    const CNamedMutex mutex(Name());
    EXPECT_TRUE(IsFree());
    {
        CMutexGuard guard(mutex, kLong);
        EXPECT_TRUE(guard.IsHeld());
        EXPECT_FALSE(IsFree());
        guard.Release();
        EXPECT_FALSE(guard.IsHeld());
        EXPECT_TRUE(IsFree());
    }
    {
        const CMutexGuard guard(mutex, kLong);
        EXPECT_TRUE(guard.IsHeld());
        EXPECT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, IsHadAgainAtOnceByTheThreadThatHasItAndIsFreeWhenAllGaveItBack) {
    const CNamedMutex mutex(Name());
    const CNamedMutex another(Name());
    CMutexGuard first(mutex, kLong);
    CMutexGuard second(mutex, 0);
    CMutexGuard third(another, 0);
    EXPECT_TRUE(second.IsHeld());
    EXPECT_TRUE(third.IsHeld());
    first.Release();
    third.Release();
    EXPECT_FALSE(IsFree());
    second.Release();
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, IsGivenBackByAGuardOnlyOnce) {
    const CNamedMutex mutex(Name());
    const CMutexGuard outer(mutex, kLong);
    {
        CMutexGuard inner(mutex, kLong);
        inner.Release();
        inner.Release();
        EXPECT_FALSE(inner.IsHeld());
    }
    EXPECT_FALSE(IsFree()) << "the guard gave back what another had taken";
}

TEST_F(NamedMutex, IsWaitedForByASecondThreadOnTheSameObject) {
    const CNamedMutex mutex(Name());
    CMutexGuard first(mutex, kLong);
    const LockWaits waits(HeldLocks::AreWaitedFor);
    bool heldTooEarly = true;
    bool heldInItsTurn = false;
    std::thread second([&] {
        heldTooEarly = CMutexGuard(mutex, kShort).IsHeld();
        heldInItsTurn = CMutexGuard(mutex, kLong).IsHeld();
    });
    while (waits.TimeOuts(m_name).size() < 2)
        Sleep(1);
    EXPECT_FALSE(heldTooEarly);
    EXPECT_FALSE(IsFree()) << "the second thread gave back what the first one holds";
    first.Release();
    second.join();
    EXPECT_TRUE(heldInItsTurn);
    EXPECT_THAT(waits.TimeOuts(m_name), ElementsAre(kShort, kLong));
    EXPECT_TRUE(IsFree());
}

TEST_F(NamedMutex, HeldByAnotherProcessIsWaitedForThenGivenUp) {
    const MutexHolder holder(Name());
    const CNamedMutex mutex(Name());
    const ULONGLONG start = GetTickCount64();
    {
        const CMutexGuard guard(mutex, 500);
        const ULONGLONG waited = GetTickCount64() - start;
        EXPECT_FALSE(guard.IsHeld());
        EXPECT_GE(waited, 450u);
        EXPECT_LT(waited, 3000u);
    }
    EXPECT_FALSE(IsFree()) << "the other process lost it";
}

TEST_F(NamedMutex, CanBeHadOnceTheOtherProcessLetsGo) {
    const CNamedMutex mutex(Name());
    {
        const MutexHolder holder(Name());
    }
    EXPECT_TRUE(CMutexGuard(mutex, kLong).IsHeld());
}

TEST_F(NamedMutex, AbandonedCountsAsNotHeldAndIsNeverGivenBack) {
    const CNamedMutex mutex(Name());
    MutexHolder holder(Name());
    holder.Kill();
    {
        const ULONGLONG start = GetTickCount64();
        const CMutexGuard guard(mutex, kLong);
        EXPECT_LT(GetTickCount64() - start, kLong / 2) << "it was waited for like a held one";
        EXPECT_FALSE(guard.IsHeld());
        EXPECT_FALSE(IsFree()) << "this thread does not own it";
    }
    EXPECT_FALSE(IsFree());

    // The thread owns it, so its next wait succeeds, and that hold is given back as any other.
    EXPECT_TRUE(CMutexGuard(mutex, kShort).IsHeld());
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
    const CNamedMutex mutex(Name());
    EXPECT_EQ(nullptr, mutex.Handle());
    const LockWaits waits(HeldLocks::AreWaitedFor);
    CMutexGuard guard(mutex, kLong);
    EXPECT_THAT(waits.TimeOuts(m_name), IsEmpty());
    EXPECT_THAT(waits.TimeOuts(L""), IsEmpty());
    EXPECT_FALSE(guard.IsHeld());
    guard.Release();
}

TEST_F(NamedMutex, NothingOfTheNameStaysWhenTheLastGoes) {
    {
        const CNamedMutex mutex(Name());
        EXPECT_TRUE(CHandle(OpenMutexW(SYNCHRONIZE, FALSE, Name())));
    }
    EXPECT_FALSE(CHandle(OpenMutexW(SYNCHRONIZE, FALSE, Name())));
}

TEST_F(NamedMutex, GuardThatTimesOutLetsTheWorkGoOn) {
    const MutexHolder holder(Name());
    const CNamedMutex mutex(Name());
    bool worked = false;
    {
        const CMutexGuard guard(mutex, kShort);
        worked = !guard.IsHeld();
    }
    EXPECT_TRUE(worked);
    EXPECT_FALSE(IsFree());
}

} // namespace tsl::test
