#include "bench/floor/FloorObject.h"

#include <windows.h>

#include "base/Hresult.h"
#include "bench/floor/Preparation.h"
#include "console/StorePlace.h"
#include "tests/engine_faults/StandInState.h"

namespace tsl::bench {

namespace {

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
    const CPreparation locks;
    const HMODULE engine = LoadEngine();
    bool whole = engine && locks.SqliteAccessLock() && locks.LogIdLock();
    for (const char* const name : test::kEntryNames)
        whole = whole && GetProcAddress(engine, name);
    FreeLibrary(engine);
    if (!whole) throw CHresultError(E_FAIL);
}

} // namespace tsl::bench
