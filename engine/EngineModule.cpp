// The engine as the component's hosts load it: whatever it opens lies in a folder that anyone may
// write. Gives back what it made at its first use when it is unloaded: nobody else ends it.
#include <sqlite3.h>
#include <windows.h>

#include "engine/EngineGuard.h"

namespace {

// A host must get its answer, or a failure.
constexpr unsigned kSecondsOfWork = 30;

int OnOpened(sqlite3* connection, const char** /*message*/, const sqlite3_api_routines*) {
    const int result = tsl::DistrustSchema(connection);
    return result == SQLITE_OK ? tsl::LimitWork(connection, kSecondsOfWork) : result;
}

bool Begin() {
    return tsl::GuardFiles() == SQLITE_OK &&
           sqlite3_auto_extension(reinterpret_cast<void (*)()>(&OnOpened)) == SQLITE_OK;
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, void* reserved) {
    if (reason == DLL_PROCESS_ATTACH) return Begin();
    // With the process everything ends.
    if (reason == DLL_PROCESS_DETACH && !reserved) sqlite3_shutdown();
    return TRUE;
}
