// The program's own import pointers: the linker takes these before it looks into the import
// libraries, so every call that the code under test makes through them arrives here.
#include "tests/files/SystemCalls.h"

namespace tsl::test {

SystemCalls& Calls() noexcept {
    static SystemCalls calls;
    return calls;
}

namespace {

// The system's function itself.
template <class Function>
Function* System(const wchar_t* module, const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(module), name)));
}

constexpr wchar_t kKernel[] = L"kernel32.dll";
constexpr wchar_t kShell[] = L"shell32.dll";
constexpr wchar_t kSecurity[] = L"advapi32.dll";

bool watcherRuns = false;

struct WatcherScope {
    WatcherScope() noexcept { watcherRuns = true; }
    WatcherScope(const WatcherScope&) = delete;
    WatcherScope& operator=(const WatcherScope&) = delete;
    ~WatcherScope() { watcherRuns = false; }
};

// What the call is to fail with; 0 when it is to be made. The last error is left as it was.
template <class Watcher, class... Arguments>
auto Injected(const Watcher& watcher, Arguments... arguments) -> decltype(watcher(arguments...)) {
    if (!watcher || watcherRuns) return 0;
    const WatcherScope scope;
    const DWORD before = GetLastError();
    const auto error = watcher(arguments...);
    SetLastError(before);
    return error;
}

// For calls that tell the reason of a failure as the thread's last error.
template <class Watcher, class... Arguments>
bool Fails(const Watcher& watcher, Arguments... arguments) {
    const DWORD error = Injected(watcher, arguments...);
    if (error != ERROR_SUCCESS) SetLastError(error);
    return error != ERROR_SUCCESS;
}

BOOL WINAPI OnCreateDirectory(LPCWSTR path, LPSECURITY_ATTRIBUTES attributes) {
    if (Fails(Calls().createDirectory, path, attributes)) return FALSE;
    static auto* const call = System<decltype(CreateDirectoryW)>(kKernel, "CreateDirectoryW");
    return call(path, attributes);
}

HANDLE WINAPI OnCreateFile(LPCWSTR path, DWORD access, DWORD share,
                           LPSECURITY_ATTRIBUTES attributes, DWORD disposition, DWORD flags,
                           HANDLE templateFile) {
    if (Fails(Calls().createFile, path, access, share, attributes, disposition, flags)) {
        return INVALID_HANDLE_VALUE;
    }
    static auto* const call = System<decltype(CreateFileW)>(kKernel, "CreateFileW");
    return call(path, access, share, attributes, disposition, flags, templateFile);
}

DWORD WINAPI OnGetFileAttributes(LPCWSTR path) {
    if (Fails(Calls().getFileAttributes, path)) return INVALID_FILE_ATTRIBUTES;
    static auto* const call = System<decltype(GetFileAttributesW)>(kKernel, "GetFileAttributesW");
    return call(path);
}

DWORD WINAPI OnGetFileAttributesAnsi(LPCSTR path) {
    if (Fails(Calls().getFileAttributesAnsi, path)) return INVALID_FILE_ATTRIBUTES;
    static auto* const call = System<decltype(GetFileAttributesA)>(kKernel, "GetFileAttributesA");
    return call(path);
}

DWORD WINAPI OnGetCurrentDirectory(DWORD room, LPWSTR path) {
    if (Fails(Calls().getCurrentDirectory, room)) return 0;
    static auto* const call =
        System<decltype(GetCurrentDirectoryW)>(kKernel, "GetCurrentDirectoryW");
    return call(room, path);
}

DWORD WINAPI OnGetModuleFileName(HMODULE module, LPWSTR path, DWORD room) {
    if (Fails(Calls().getModuleFileName, room)) return 0;
    static auto* const call = System<decltype(GetModuleFileNameW)>(kKernel, "GetModuleFileNameW");
    return call(module, path, room);
}

DWORD WINAPI OnGetFileSize(HANDLE file, LPDWORD high) {
    if (Fails(Calls().getFileSize)) return INVALID_FILE_SIZE;
    static auto* const call = System<decltype(GetFileSize)>(kKernel, "GetFileSize");
    return call(file, high);
}

BOOL WINAPI OnReadFile(HANDLE file, LPVOID bytes, DWORD size, LPDWORD read,
                       LPOVERLAPPED overlapped) {
    if (Fails(Calls().readFile, size)) {
        *read = 0;
        return FALSE;
    }
    static auto* const call = System<decltype(ReadFile)>(kKernel, "ReadFile");
    return call(file, bytes, size, read, overlapped);
}

BOOL WINAPI OnWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written,
                        LPOVERLAPPED overlapped) {
    if (Fails(Calls().writeFile, size)) {
        *written = 0;
        return FALSE;
    }
    static auto* const call = System<decltype(WriteFile)>(kKernel, "WriteFile");
    return call(file, bytes, size, written, overlapped);
}

HRESULT WINAPI OnGetSpecialFolderLocation(HWND owner, int folder, LPITEMIDLIST* items) {
    const HRESULT injected = Injected(Calls().getSpecialFolderLocation, folder);
    if (FAILED(injected)) return injected;
    static auto* const call =
        System<decltype(SHGetSpecialFolderLocation)>(kShell, "SHGetSpecialFolderLocation");
    return call(owner, folder, items);
}

BOOL WINAPI OnGetPathFromItems(LPCITEMIDLIST items, LPWSTR path) {
    if (Fails(Calls().getPathFromItems, items)) return FALSE;
    static auto* const call =
        System<decltype(SHGetPathFromIDListW)>(kShell, "SHGetPathFromIDListW");
    return call(items, path);
}

BOOL WINAPI OnAllocateSid(PSID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD s0, DWORD s1,
                          DWORD s2, DWORD s3, DWORD s4, DWORD s5, DWORD s6, DWORD s7, PSID* sid) {
    if (Fails(Calls().allocateSid)) return FALSE;
    static auto* const call =
        System<decltype(AllocateAndInitializeSid)>(kSecurity, "AllocateAndInitializeSid");
    return call(authority, count, s0, s1, s2, s3, s4, s5, s6, s7, sid);
}

BOOL WINAPI OnGetSecurity(HANDLE object, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR read,
                          DWORD room, LPDWORD size) {
    if (Fails(Calls().getSecurity, what)) return FALSE;
    static auto* const call =
        System<decltype(GetKernelObjectSecurity)>(kSecurity, "GetKernelObjectSecurity");
    return call(object, what, read, room, size);
}

BOOL WINAPI OnSetSecurity(HANDLE object, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR written) {
    if (Fails(Calls().setSecurity, object, what, written)) return FALSE;
    static auto* const call =
        System<decltype(SetKernelObjectSecurity)>(kSecurity, "SetKernelObjectSecurity");
    return call(object, what, written);
}

} // namespace

} // namespace tsl::test

extern "C" {
void* __imp_CreateDirectoryW = reinterpret_cast<void*>(tsl::test::OnCreateDirectory);
void* __imp_CreateFileW = reinterpret_cast<void*>(tsl::test::OnCreateFile);
void* __imp_GetFileAttributesW = reinterpret_cast<void*>(tsl::test::OnGetFileAttributes);
void* __imp_GetFileAttributesA = reinterpret_cast<void*>(tsl::test::OnGetFileAttributesAnsi);
void* __imp_GetCurrentDirectoryW = reinterpret_cast<void*>(tsl::test::OnGetCurrentDirectory);
void* __imp_GetModuleFileNameW = reinterpret_cast<void*>(tsl::test::OnGetModuleFileName);
void* __imp_GetFileSize = reinterpret_cast<void*>(tsl::test::OnGetFileSize);
void* __imp_ReadFile = reinterpret_cast<void*>(tsl::test::OnReadFile);
void* __imp_WriteFile = reinterpret_cast<void*>(tsl::test::OnWriteFile);
void* __imp_SHGetSpecialFolderLocation =
    reinterpret_cast<void*>(tsl::test::OnGetSpecialFolderLocation);
void* __imp_SHGetPathFromIDListW = reinterpret_cast<void*>(tsl::test::OnGetPathFromItems);
void* __imp_AllocateAndInitializeSid = reinterpret_cast<void*>(tsl::test::OnAllocateSid);
void* __imp_GetKernelObjectSecurity = reinterpret_cast<void*>(tsl::test::OnGetSecurity);
void* __imp_SetKernelObjectSecurity = reinterpret_cast<void*>(tsl::test::OnSetSecurity);
}
