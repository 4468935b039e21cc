// Whether an opened file or folder is what its path names: of a disk, no link, with one name, and
// at that place. Calls the system only and needs nothing of the C++ runtime, so that the engine's
// module can have it as well as the component. Callable from any thread.
#pragma once

#include <windows.h>

namespace tsl {

// Below the folder of all users' application data. Part of every installation's data path: not to
// be changed. Links are followed only above it, where none but an administrator can make them; in
// any other path, as far as the folder that holds the last name.
inline constexpr wchar_t kCompanyFolder[] = L"Corvane Corporation";

enum class FileKind { File, Folder };

// The thread's last error for what is refused.
inline constexpr DWORD kRefusedError = ERROR_CANT_ACCESS_FILE;

// Links themselves are opened, and whoever serves a pipe learns nothing of the user.
inline constexpr DWORD kPlainFlags =
    FILE_FLAG_OPEN_REPARSE_POINT | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS;

// Opens what is there. INVALID_HANDLE_VALUE, with the reason as the thread's last error, when it
// cannot be opened or is refused; after a success the last error is that of the opening.
HANDLE OpenPlain(const wchar_t* path, DWORD access, DWORD shareMode, DWORD flags,
                 FileKind kind) noexcept;

// Whether what was opened is what the path names.
bool IsPlain(HANDLE opened, const wchar_t* path, FileKind kind) noexcept;

// Whether something new may be made at the path: the folder that is to hold it is no link, or lies
// where links are followed. Else false with the reason as the thread's last error.
bool MayBeMade(const wchar_t* path) noexcept;

} // namespace tsl
