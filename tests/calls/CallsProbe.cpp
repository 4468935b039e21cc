// calls_probe TAG PARENT FOLDER: each time the event calls_probe_ask_TAG is set, tries from outside
// whether the locks of the store are free and its files in the folder are open nowhere, and answers
// by calls_probe_free_TAG or calls_probe_held_TAG. Ends with the parent.
#include <windows.h>

#include <shellapi.h>

#include <cstdlib>
#include <string>

namespace {

bool IsFree(const wchar_t* name) {
    const HANDLE mutex = OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, name);
    if (!mutex) return true;
    const bool free = WaitForSingleObject(mutex, 0) == WAIT_OBJECT_0;
    if (free) ReleaseMutex(mutex);
    CloseHandle(mutex);
    return free;
}

bool IsClosed(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, /*shareMode=*/0,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
    CloseHandle(file);
    return true;
}

} // namespace

int main() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!arguments || count != 4) return 2;
    const std::wstring tag = arguments[1];
    const std::wstring folder = arguments[3];
    const HANDLE parent = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(_wtoi(arguments[2])));
    const HANDLE ask = OpenEventW(SYNCHRONIZE, FALSE, (L"calls_probe_ask_" + tag).c_str());
    const HANDLE free = OpenEventW(EVENT_MODIFY_STATE, FALSE, (L"calls_probe_free_" + tag).c_str());
    const HANDLE held = OpenEventW(EVENT_MODIFY_STATE, FALSE, (L"calls_probe_held_" + tag).c_str());
    if (!parent || !ask || !free || !held) return 1;
    const HANDLE waited[] = {ask, parent};
    while (WaitForMultipleObjects(2, waited, FALSE, INFINITE) == WAIT_OBJECT_0) {
        const bool nothingHeld =
            IsFree(L"Global\\TslIfDbActionLog_SQLiteAccess") &&
            IsFree(L"Global\\TslIfDbActionLog_LogId") && IsClosed(folder + L"\\ualog.db") &&
            IsClosed(folder + L"\\uareplay.db") && IsClosed(folder + L"\\actionLog.txt");
        SetEvent(nothingHeld ? free : held);
    }
    return 0;
}
