/* Gives back what the engine made at its first use when it is unloaded: nobody else ends it. */
#include <sqlite3.h>
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* reserved) {
    (void)module;
    /* With the process everything ends. */
    if (reason == DLL_PROCESS_DETACH && !reserved) sqlite3_shutdown();
    return TRUE;
}
