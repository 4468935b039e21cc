// A store from its construction to its end: names, flags, locks, the engine.
#include <optional>

#include "store/ActionLogStore.h"
#include "tests/support/ComponentCopy.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr wchar_t kSqliteAccess[] = L"Global\\TslIfDbActionLog_SQLiteAccess";
constexpr wchar_t kLogId[] = L"Global\\TslIfDbActionLog_LogId";

HMODULE ThisProgram() {
    return GetModuleHandleW(nullptr);
}

bool MutexExists(const wchar_t* name) {
    return static_cast<bool>(CHandle(OpenMutexW(SYNCHRONIZE, FALSE, name)));
}

// The order in which a store gets its mutexes and its engine, and gives its locks back.
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
    g_steps->taken.emplace_back(L"free library");
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

TEST_F(StoreLifecycle, StartsEmptyOnTheActionLogWithoutLocks) {
    CActionLogStore store(ThisProgram());
    EXPECT_EQ(L"", store.Prefix());
    EXPECT_EQ(L"", store.Name());
    EXPECT_EQ(L"ualog.db", store.DatabaseName());
    EXPECT_EQ(0u, store.RecordIdCounter());
    EXPECT_EQ(0u, store.LogKind());
    EXPECT_FALSE(store.SqliteAccessLock().IsHeld());
    EXPECT_FALSE(store.LogIdLock().IsHeld());
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
    const std::vector<std::wstring> expected = {kSqliteAccess, kLogId, L"SQLite3.dll"};
    EXPECT_EQ(expected, m_steps.taken);
}

TEST_F(StoreLifecycle, EndReleasesHeldLocksThenFreesTheEngine) {
    std::optional<CActionLogStore> store(ThisProgram());
    store->SqliteAccessLock().Acquire(kSqliteAccessTimeoutMilliseconds);
    store->LogIdLock().Acquire(kLogIdTimeoutMilliseconds);
    {
        const ImportHook release("ReleaseMutex", &NoteReleaseMutex);
        const ImportHook free("FreeLibrary", &NoteFreeLibrary);
        store.reset();
    }
    const std::vector<std::wstring> expected = {L"release mutex", L"release mutex",
                                                L"free library"};
    EXPECT_EQ(expected, m_steps.taken);
    EXPECT_FALSE(MutexExists(kSqliteAccess));
    EXPECT_FALSE(MutexExists(kLogId));
}

TEST_F(StoreLifecycle, EndLetsAnotherBeTheFirstCreator) {
    {
        const CActionLogStore store(ThisProgram());
        EXPECT_TRUE(MutexExists(kSqliteAccess));
        EXPECT_TRUE(MutexExists(kLogId));
    }
    for (const wchar_t* const name : {kSqliteAccess, kLogId}) {
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
    CActionLogStore store(copy.Module());
    EXPECT_EQ(nullptr, store.Engine());
    EXPECT_EQ(S_OK, store.SelectTable(L"TslIf", L"DbActionLog"));
    EXPECT_EQ(L"TslIf_DbActionLog", store.SelectedTable());
    store.SqliteAccessLock().Acquire(kSqliteAccessTimeoutMilliseconds);
    EXPECT_TRUE(store.SqliteAccessLock().IsHeld());
    CDatabase database;
    EXPECT_EQ(E_POINTER, store.OpenSelected(&database));
}

TEST_F(StoreLifecycle, WhoseMutexesCannotBeMadeWorksUnlocked) {
    const CHandle access(CreateEventW(nullptr, FALSE, FALSE, kSqliteAccess));
    const CHandle logId(CreateEventW(nullptr, FALSE, FALSE, kLogId));
    ASSERT_TRUE(access);
    ASSERT_TRUE(logId);
    CActionLogStore store(ThisProgram());
    store.SelectTable(L"TslIf", L"DbActionLog");
    const CMutexGuard guard(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    EXPECT_FALSE(store.SqliteAccessLock().IsHeld());
    CDatabase database;
    EXPECT_EQ(S_OK, store.OpenSelected(&database));
    EXPECT_EQ("0", FileDatabase(ActionLogPath()).Value("SELECT COUNT(*) FROM TslIf_DbActionLog"));
}

// The one test that really waits for this lock; the others look at the time-out.
TEST_F(StoreLifecycle, BusyAccessLockIsGivenUpAfterThreeSecondsAndTheWorkGoesOn) {
    const MutexHolder holder(kSqliteAccess);
    CActionLogStore store(ThisProgram());
    store.SelectTable(L"TslIf", L"DbActionLog");
    const ULONGLONG start = GetTickCount64();
    const CMutexGuard guard(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    const ULONGLONG waited = GetTickCount64() - start;
    EXPECT_GE(waited, 2900u);
    EXPECT_LT(waited, 5000u);
    EXPECT_FALSE(store.SqliteAccessLock().IsHeld());
    CDatabase database;
    EXPECT_EQ(S_OK, store.OpenSelected(&database));
}

TEST_F(StoreLifecycle, LocksDoNotHinderEachOther) {
    const MutexHolder holder(kSqliteAccess);
    CActionLogStore store(ThisProgram());
    store.LogIdLock().Acquire(kLogIdTimeoutMilliseconds);
    EXPECT_TRUE(store.LogIdLock().IsHeld());
}

TEST(StoreLockTimeouts, AreThreeAndTenSeconds) {
    EXPECT_EQ(3000u, kSqliteAccessTimeoutMilliseconds);
    EXPECT_EQ(10000u, kLogIdTimeoutMilliseconds);
}

TEST(StoreSelection, KeepsTheTableOfTheLastCall) {
    CActionLogStore store(ThisProgram());
    EXPECT_EQ(S_OK, store.SelectTable(L"TslIf", L"ActionReplay"));
    EXPECT_EQ(S_OK, store.SelectTable(L"TslIf", L"DbActionLog"));
    EXPECT_EQ(L"TslIf", store.Prefix());
    EXPECT_EQ(L"DbActionLog", store.Name());
    EXPECT_EQ(S_OK, store.SelectTable(L"", L""));
    EXPECT_EQ(L"", store.Prefix());
    EXPECT_EQ(L"", store.Name());
}

TEST(StoreSelection, EmptyDatabaseNameIsTheActionLog) {
    CActionLogStore store(ThisProgram());
    store.SelectDatabase(L"uareplay.db");
    EXPECT_EQ(L"uareplay.db", store.DatabaseName());
    store.SelectDatabase(L"");
    EXPECT_EQ(L"ualog.db", store.DatabaseName());
    store.SelectDatabase(L"uareplay.db");
    store.SelectActionLogDatabase();
    EXPECT_EQ(L"ualog.db", store.DatabaseName());
}

TEST(StoreSelection, BelongsToOneStore) {
    CActionLogStore first(ThisProgram());
    CActionLogStore second(ThisProgram());
    first.SelectDatabase(L"uareplay.db");
    first.SelectTable(L"TslIf", L"ActionReplay");
    first.SetLogKind(4);
    first.RecordIdCounter() = 9;
    EXPECT_EQ(L"ualog.db", second.DatabaseName());
    EXPECT_EQ(L"", second.Name());
    EXPECT_EQ(0u, second.LogKind());
    EXPECT_EQ(0u, second.RecordIdCounter());
    EXPECT_EQ(4u, first.LogKind());
}

} // namespace tsl::test
