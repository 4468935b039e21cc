#include "engine/EngineGuard.h"

#include <sqlite3.h>
#include <windows.h>

#include <initializer_list>

#include "files/PlainFile.h"

namespace tsl {

namespace {

DWORD g_alwaysShared = 0;

HANDLE New(LPCWSTR path, DWORD access, DWORD share, DWORD flags) noexcept {
    // Never what is there, were it a link to nowhere.
    return CreateFileW(path, access, share, /*securityAttributes=*/nullptr, CREATE_NEW, flags,
                       /*templateFile=*/nullptr);
}

bool IsJournal(LPCWSTR path) noexcept {
    constexpr wchar_t kEnding[] = L"-journal";
    const size_t length = wcslen(path);
    const size_t ending = ARRAYSIZE(kEnding) - 1;
    return length > ending && wcscmp(path + length - ending, kEnding) == 0;
}

// In place of CreateFileW in the engine. What is refused has an error after which the engine does
// not try again.
HANDLE WINAPI OpenForEngine(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES,
                            DWORD disposition, DWORD flags, HANDLE) noexcept {
    share |= g_alwaysShared;
    if (disposition == CREATE_NEW) return New(path, access, share, flags);
    if (disposition == OPEN_EXISTING) return OpenPlain(path, access, share, flags, FileKind::File);
    // A journal is usually new, and its database is open beside it; a database is usually there.
    // Others make it or take it away meanwhile; what is neither there nor can be made is a link to
    // nowhere.
    constexpr int kAttempts = 4;
    if (IsJournal(path)) {
        const HANDLE made = New(path, access, share, flags);
        if (made != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS) return made;
    }
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const HANDLE found = OpenPlain(path, access, share, flags, FileKind::File);
        if (found != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_NOT_FOUND) return found;
        if (!MayBeMade(path)) break;
        const HANDLE made = New(path, access, share, flags);
        if (made != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS) return made;
    }
    SetLastError(kRefusedError);
    return INVALID_HANDLE_VALUE;
}

sqlite3_vfs* g_system = nullptr;
sqlite3_vfs g_guard;

// As the system's files, without memory that is shared with other processes.
const sqlite3_io_methods* WithoutSharedMemory(const sqlite3_io_methods& system) noexcept {
    static constinit INIT_ONCE once = INIT_ONCE_STATIC_INIT;
    static constinit sqlite3_io_methods methods{};
    BOOL isPending = FALSE;
    InitOnceBeginInitialize(&once, /*flags=*/0, &isPending, /*context=*/nullptr);
    if (isPending) {
        methods = system;
        methods.iVersion = 1;
        InitOnceComplete(&once, 0, nullptr);
    }
    return &methods;
}

int OpenFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    if (flags & SQLITE_OPEN_SUPER_JOURNAL) return SQLITE_CANTOPEN;
    const int result = g_system->xOpen(g_system, name, file, flags, outFlags);
    if (result == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB)) {
        file->pMethods = WithoutSharedMemory(*file->pMethods);
    }
    return result;
}

// Whether the file's header asks for a write-ahead log.
bool HasWriteAheadLog(sqlite3* connection) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
    if (!file || !file->pMethods) return false;
    constexpr sqlite3_int64 kVersionsOffset = 18; // of writing and of reading
    unsigned char versions[2] = {};
    constexpr unsigned char kLog = 2;
    return file->pMethods->xRead(file, versions, sizeof versions, kVersionsOffset) == SQLITE_OK &&
           (versions[0] == kLog || versions[1] == kLog);
}

// The processor time of the thread, in milliseconds.
ULONGLONG ThreadMilliseconds() noexcept {
    FILETIME created{}, ended{}, kernel{}, user{};
    if (!GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user)) return 0;
    const auto ticks = [](const FILETIME& time) {
        return (ULONGLONG{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    };
    constexpr ULONGLONG kTicksPerMillisecond = 10'000;
    return (ticks(kernel) + ticks(user)) / kTicksPerMillisecond;
}

// The work of one connection, which one thread does.
struct Work {
    ULONGLONG limit = 0;
    ULONGLONG lookedAt = GetTickCount64(); // last, at the processor time, which costs more
    ULONGLONG begun = 0;                   // processor time at the first look; 0 before
};

// Other than 0 ends the statement.
int OnProgress(void* context) noexcept {
    auto& work = *static_cast<Work*>(context);
    constexpr ULONGLONG kBetweenLooks = 100;
    const ULONGLONG now = GetTickCount64();
    if (now - work.lookedAt < kBetweenLooks) return 0;
    work.lookedAt = now;
    const ULONGLONG spent = ThreadMilliseconds();
    if (work.begun == 0) work.begun = spent;
    return spent - work.begun > work.limit;
}

constexpr int kMostBytesOfAValue = 64 * 1024 * 1024;
constexpr int kMostBytesOfAStatement = 4 * 1024 * 1024;

} // namespace

int GuardFiles(bool sharesDeletion) noexcept {
    g_alwaysShared = sharesDeletion ? FILE_SHARE_DELETE : 0;
    g_system = sqlite3_vfs_find(/*name: the default*/ nullptr);
    if (!g_system || !g_system->xSetSystemCall) return SQLITE_ERROR;
    const int result = g_system->xSetSystemCall(
        g_system, "CreateFileW", reinterpret_cast<sqlite3_syscall_ptr>(&OpenForEngine));
    if (result != SQLITE_OK) return result;
    g_guard = *g_system;
    g_guard.zName = "guarded";
    g_guard.xOpen = OpenFile;
    return sqlite3_vfs_register(&g_guard, /*makeDefault=*/1);
}

int DistrustSchema(sqlite3* connection) noexcept {
    for (const int option : {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
                             SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_WRITABLE_SCHEMA,
                             SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION}) {
        sqlite3_db_config(connection, option, 0, nullptr);
    }
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, kMostBytesOfAValue);
    sqlite3_limit(connection, SQLITE_LIMIT_SQL_LENGTH, kMostBytesOfAStatement);
    sqlite3_limit(connection, SQLITE_LIMIT_EXPR_DEPTH, 50);
    sqlite3_limit(connection, SQLITE_LIMIT_COMPOUND_SELECT, 2);
    sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(connection, SQLITE_LIMIT_TRIGGER_DEPTH, 1);
    // Only what has no arguments is left, such as COUNT(*): an expression of an index, a column or
    // a check costs no more than the values in the row. No handler interrupts a function.
    sqlite3_limit(connection, SQLITE_LIMIT_FUNCTION_ARG, 0);
    if (!HasWriteAheadLog(connection)) return SQLITE_OK;
    // With the file for itself the connection keeps the index of the log in memory of its own.
    sqlite3_exec(connection,
                 "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = DELETE; "
                 "PRAGMA locking_mode = NORMAL",
                 nullptr, nullptr, nullptr);
    return SQLITE_OK;
}

int LimitWork(sqlite3* connection, unsigned seconds) noexcept {
    auto* const work = static_cast<Work*>(sqlite3_malloc(sizeof(Work)));
    if (!work) return SQLITE_NOMEM;
    *work = Work{.limit = seconds * 1000ULL};
    const int result = sqlite3_set_clientdata(connection, "work", work, sqlite3_free);
    // The client data frees what it could not take.
    if (result != SQLITE_OK) return result;
    constexpr int kStepsBetween = 1'000;
    sqlite3_progress_handler(connection, kStepsBetween, OnProgress, work);
    return SQLITE_OK;
}

} // namespace tsl
