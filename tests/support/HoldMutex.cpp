// hold_mutex MUTEX TAG: takes the mutex, sets the event hold_mutex_ready_TAG, holds the mutex until
// hold_mutex_release_TAG is set, and ends.
#include <windows.h>

#include <shellapi.h>

#include <string>

int main() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!arguments || count != 3) return 2;
    const std::wstring tag = arguments[2];
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, arguments[1]);
    const HANDLE ready =
        OpenEventW(EVENT_MODIFY_STATE, FALSE, (L"hold_mutex_ready_" + tag).c_str());
    const HANDLE release = OpenEventW(SYNCHRONIZE, FALSE, (L"hold_mutex_release_" + tag).c_str());
    if (!mutex || !ready || !release) return 1;
    WaitForSingleObject(mutex, INFINITE);
    SetEvent(ready);
    WaitForSingleObject(release, INFINITE);
    ReleaseMutex(mutex);
    return 0;
}
