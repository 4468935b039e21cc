// Fault injection: chosen system calls of the code under test are watched and, where a test says
// so, made to fail. Nothing here answers in the system's place: a call either fails or is made.
#pragma once

#include <windows.h>

#include <shlobj.h>

#include <accctrl.h>

#include <functional>

namespace tsl::test {

// What is set here runs right before the call it is named after, with the arguments of the call and
// with the thread's last error as the code under test left it. ERROR_SUCCESS (S_OK) then lets the
// system's call be made; any other error makes the call fail with it. What it calls itself goes
// straight to the system.
struct SystemCalls {
    std::function<DWORD(LPCWSTR path, LPSECURITY_ATTRIBUTES attributes)> createDirectory;
    std::function<DWORD(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
                        DWORD disposition, DWORD flags)>
        createFile;
    std::function<DWORD(LPCWSTR path)> getFileAttributes;
    std::function<DWORD(LPCSTR path)> getFileAttributesAnsi;
    std::function<DWORD(DWORD room)> getCurrentDirectory;
    std::function<DWORD(DWORD room)> getModuleFileName;
    std::function<DWORD()> getFileSize;
    std::function<DWORD(DWORD size)> readFile;
    std::function<DWORD(DWORD size)> writeFile;
    std::function<HRESULT(int folder)> getSpecialFolderLocation;
    std::function<DWORD(LPCITEMIDLIST items)> getPathFromItems;
    std::function<DWORD()> allocateSid;
    std::function<DWORD(SECURITY_INFORMATION what)> getSecurity;
    std::function<DWORD(HANDLE object, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR written)>
        setSecurity;
};

// The calls of the program, shared by all its threads: only one thread makes calls that are set.
SystemCalls& Calls() noexcept;

// Lets all calls through again when it goes.
struct SystemCallsReset {
    SystemCallsReset() = default;
    SystemCallsReset(const SystemCallsReset&) = delete;
    SystemCallsReset& operator=(const SystemCallsReset&) = delete;
    ~SystemCallsReset() { Calls() = SystemCalls(); }
};

} // namespace tsl::test
