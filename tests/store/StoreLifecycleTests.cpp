// A store from its construction to its end: its locks and its engine.
#include <optional>

#include "store/ActionLogStore.h"
#include "tests/support/ComponentCopy.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/OpenTarget.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

HMODULE ThisProgram() {
    return GetModuleHandleW(nullptr);
}

// The order in which a store gets its mutexes and its engine, and lets go of them.
struct Steps {
    decltype(&CreateMutexW) createMutex = &CreateMutexW;
    decltype(&LoadLibraryW) loadLibrary = &LoadLibraryW;
    decltype(&FreeLibrary) freeLibrary = &FreeLibrary;
    decltype(&ReleaseMutex) releaseMutex = &ReleaseMutex;
    std::vector<std::wstring> taken;
};
Steps* g_steps = nullptr;

HANDLE WINAPI NoteCreateMutex(SECURITY_ATTRIBUTES* attributes, BOOL owner, const wchar_t* name) {
    g_steps->taken.emplace_back(name);
    return g_steps->createMutex(attributes, owner, name);
}

HMODULE WINAPI NoteLoadLibrary(const wchar_t* name) {
    g_steps->taken.emplace_back(name);
    return g_steps->loadLibrary(name);
}

BOOL WINAPI NoteFreeLibrary(HMODULE module) {
    const bool locks = MutexExists(kSqliteAccessLock) || MutexExists(kLogIdLock);
    g_steps->taken.emplace_back(locks ? L"free library" : L"free library, without its locks");
    return g_steps->freeLibrary(module);
}

BOOL WINAPI NoteReleaseMutex(HANDLE mutex) {
    g_steps->taken.emplace_back(L"release mutex");
    return g_steps->releaseMutex(mutex);
}

class StoreLifecycle : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        g_steps = &m_steps;
    }
    void TearDown() override {
        g_steps = nullptr;
        StoreTest::TearDown();
    }

    Steps m_steps;
};

} // namespace

TEST_F(StoreLifecycle, StartsWithAnEngineAndWithoutHoldingAnything) {
    const CActionLogStore store(ThisProgram());
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    EXPECT_TRUE(MutexIsFree(kLogIdLock));
    EXPECT_EQ(nullptr, store.ContentStore().Get().Get());
    EXPECT_NE(nullptr, store.Engine());
    EXPECT_FALSE(std::filesystem::exists(StoreFolder())) << "nothing is opened before it is used";
}

TEST_F(StoreLifecycle, MakesItsMutexesThenLoadsItsEngine) {
    std::optional<CActionLogStore> store;
    {
        const ImportHook create("CreateMutexW", &NoteCreateMutex);
        const ImportHook load("LoadLibraryW", &NoteLoadLibrary);
        store.emplace(ThisProgram());
    }
    const std::vector<std::wstring> expected = {kSqliteAccessLock, kLogIdLock, L"SQLite3.dll"};
    EXPECT_EQ(expected, m_steps.taken);
}

TEST_F(StoreLifecycle, EndClosesItsLocksAndThenFreesTheEngine) {
    std::optional<CActionLogStore> store(ThisProgram());
    {
        const ImportHook release("ReleaseMutex", &NoteReleaseMutex);
        const ImportHook free("FreeLibrary", &NoteFreeLibrary);
        store.reset();
    }
    const std::vector<std::wstring> expected = {L"free library, without its locks"};
    EXPECT_EQ(expected, m_steps.taken) << "a lock belongs to its guard";
    EXPECT_FALSE(MutexExists(kSqliteAccessLock));
    EXPECT_FALSE(MutexExists(kLogIdLock));
}

TEST_F(StoreLifecycle, EndLetsAnotherBeTheFirstCreator) {
    {
        const CActionLogStore store(ThisProgram());
        EXPECT_TRUE(MutexExists(kSqliteAccessLock));
        EXPECT_TRUE(MutexExists(kLogIdLock));
    }
    for (const wchar_t* const name : {kSqliteAccessLock, kLogIdLock}) {
        SetLastError(0);
        const CHandle first(CreateMutexW(nullptr, FALSE, name));
        EXPECT_TRUE(first);
        EXPECT_NE(DWORD{ERROR_ALREADY_EXISTS}, GetLastError());
    }
}

TEST_F(StoreLifecycle, EndFreesItsEngine) {
    const ComponentCopy copy;
    copy.AddEngine();
    {
        const CActionLogStore store(copy.Module());
        EXPECT_NE(nullptr, GetModuleHandleW(copy.EngineLibrary().c_str()));
    }
    EXPECT_EQ(nullptr, GetModuleHandleW(copy.EngineLibrary().c_str()));
}

TEST_F(StoreLifecycle, WithoutAnEngineTheStoreAndItsLocksStillWork) {
    const ComponentCopy copy;
    const CActionLogStore store(copy.Module());
    EXPECT_EQ(nullptr, store.Engine());
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    EXPECT_TRUE(lock.IsHeld());
    CDatabase database;
    EXPECT_EQ(E_POINTER, OpenTarget(store, Target{}, &database));
}

TEST_F(StoreLifecycle, WhoseMutexesCannotBeMadeWorksUnlocked) {
    const CHandle access(CreateEventW(nullptr, FALSE, FALSE, kSqliteAccessLock));
    const CHandle logId(CreateEventW(nullptr, FALSE, FALSE, kLogIdLock));
    ASSERT_TRUE(access);
    ASSERT_TRUE(logId);
    const CActionLogStore store(ThisProgram());
    const CMutexGuard guard(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    EXPECT_FALSE(guard.IsHeld());
    CDatabase database;
    EXPECT_EQ(S_OK, OpenTarget(store, Target{}, &database));
    EXPECT_EQ("0", FileDatabase(ActionLogPath()).Value("SELECT COUNT(*) FROM TslIf_DbActionLog"));
}

// The one test that really waits for this lock; the others look at the time-out.
TEST_F(StoreLifecycle, BusyAccessLockIsGivenUpAfterThreeSecondsAndTheWorkGoesOn) {
    const MutexHolder holder(kSqliteAccessLock);
    const CActionLogStore store(ThisProgram());
    const ULONGLONG start = GetTickCount64();
    const CMutexGuard guard(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    const ULONGLONG waited = GetTickCount64() - start;
    EXPECT_GE(waited, 2900u);
    EXPECT_LT(waited, 5000u);
    EXPECT_FALSE(guard.IsHeld());
    CDatabase database;
    EXPECT_EQ(S_OK, OpenTarget(store, Target{}, &database));
}

TEST_F(StoreLifecycle, LocksDoNotHinderEachOther) {
    const MutexHolder holder(kSqliteAccessLock);
    const CActionLogStore store(ThisProgram());
    const CMutexGuard guard(store.LogIdLock(), kLogIdTimeoutMilliseconds);
    EXPECT_TRUE(guard.IsHeld());
}

TEST(StoreLockTimeouts, AreThreeAndTenSeconds) {
    EXPECT_EQ(3000u, kSqliteAccessTimeoutMilliseconds);
    EXPECT_EQ(10000u, kLogIdTimeoutMilliseconds);
}

} // namespace tsl::test
