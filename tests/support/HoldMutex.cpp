// hold_mutex MUTEX TAG PARENT: takes the mutex, sets the event hold_mutex_ready_TAG, holds the
// mutex until hold_mutex_release_TAG is set, and ends. When the process with the id PARENT ends, it
// does so at once.
#include <windows.h>

#include <shellapi.h>

#include <string>

namespace {

// False when the parent ended first.
bool WaitFor(HANDLE object, HANDLE parent) {
    const HANDLE awaited[] = {parent, object};
    return WaitForMultipleObjects(2, awaited, /*waitAll=*/FALSE, INFINITE) != WAIT_OBJECT_0;
}

} // namespace

int main() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!arguments || count != 4) return 2;
    const std::wstring tag = arguments[2];
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, arguments[1]);
    const HANDLE ready =
        OpenEventW(EVENT_MODIFY_STATE, FALSE, (L"hold_mutex_ready_" + tag).c_str());
    const HANDLE release = OpenEventW(SYNCHRONIZE, FALSE, (L"hold_mutex_release_" + tag).c_str());
    const HANDLE parent = OpenProcess(SYNCHRONIZE, FALSE, std::stoul(arguments[3]));
    if (!mutex || !ready || !release || !parent) return 1;
    if (!WaitFor(mutex, parent)) return 1;
    SetEvent(ready);
    WaitFor(release, parent);
    ReleaseMutex(mutex);
    return 0;
}
