// A library that somebody has planted: when it is loaded, it leaves a file beside itself that says
// so.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/) {
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    constexpr wchar_t kRan[] = L".ran";
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    if (length + sizeof kRan / sizeof(wchar_t) > MAX_PATH) return TRUE;
    for (size_t index = 0; index < sizeof kRan / sizeof(wchar_t); ++index)
        path[length + index] = kRan[index];
    CloseHandle(CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    return TRUE;
}
