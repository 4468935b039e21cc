#include "bench/floor/FloorObject.h"

#include <windows.h>

#include "base/Handle.h"
#include "base/Hresult.h"
#include "console/StorePlace.h"

namespace tsl::bench {

namespace {

constexpr const char* kEngineNames[] = {
    "sqlite3_exec",          "sqlite3_free",        "sqlite3_prepare",      "sqlite3_prepare16_v2",
    "sqlite3_reset",         "sqlite3_bind_int",    "sqlite3_bind_int64",   "sqlite3_bind_text",
    "sqlite3_bind_text16",   "sqlite3_bind_double", "sqlite3_step",         "sqlite3_finalize",
    "sqlite3_mprintf",       "sqlite3_get_table",   "sqlite3_free_table",   "sqlite3_open",
    "sqlite3_close",         "sqlite3_column_int",  "sqlite3_column_int64", "sqlite3_column_text16",
    "sqlite3_column_double", "sqlite3_initialize",  "sqlite3_shutdown",
};
constexpr int kEngineManifest = 205;

HMODULE LoadEngine() {
    const std::wstring path = ProgramFolder() + L"TslIfDbActionLog.dll";
    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
    request.lpSource = path.c_str();
    request.lpResourceName = MAKEINTRESOURCEW(kEngineManifest);
    request.hModule = GetModuleHandleW(L"TslIfDbActionLog.dll");
    const HANDLE context = CreateActCtxW(&request);
    ULONG_PTR cookie = 0;
    ActivateActCtx(context, &cookie);
    const HMODULE engine = LoadLibraryW(L"SQLite3.dll");
    DeactivateActCtx(0, cookie);
    ReleaseActCtx(context);
    return engine;
}

} // namespace

void CreateAndReleaseObject() {
    const CHandle sqliteAccess(
        CreateMutexW(nullptr, FALSE, L"Global\\TslIfDbActionLog_SQLiteAccess"));
    const CHandle logId(CreateMutexW(nullptr, FALSE, L"Global\\TslIfDbActionLog_LogId"));
    const HMODULE engine = LoadEngine();
    bool whole = engine && sqliteAccess && logId;
    for (const char* const name : kEngineNames)
        whole = whole && GetProcAddress(engine, name);
    FreeLibrary(engine);
    if (!whole) throw CHresultError(E_FAIL);
}

} // namespace tsl::bench
