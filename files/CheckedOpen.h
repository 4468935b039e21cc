// Opens what lies in a folder that anyone may write. Nothing that lies there is believed: what was
// opened is looked at through its handle, and is refused where it is not what its path names (see
// PlainFile.h). Callable from any thread.
#pragma once

#include <windows.h>

#include <string>

#include "base/Handle.h"
#include "files/PlainFile.h"

namespace tsl {

// An opened file or folder, and the thread's last error right after opening as an HRESULT: also
// after a success it tells something, that a file was there before (ERROR_ALREADY_EXISTS). What is
// refused has no handle and E_ACCESSDENIED.
struct OpenedFile {
    CHandle file;
    HRESULT status = S_OK;
    bool isRefused = false;
};

// Opens a file: OPEN_EXISTING, or for nobody else OPEN_ALWAYS or CREATE_NEW. Nothing is created
// behind a link; what is created can be moved and discarded.
OpenedFile OpenChecked(const std::wstring& path, DWORD access, DWORD shareMode, DWORD disposition,
                       DWORD flags = 0);

// Opens a folder that is there, to look at it or for its access list; or, with access to its list
// and without FILE_SHARE_DELETE, so that nobody puts another in its place.
OpenedFile OpenCheckedFolder(const std::wstring& path, DWORD access = 0,
                             DWORD shareMode = FILE_SHARE_READ | FILE_SHARE_WRITE |
                                               FILE_SHARE_DELETE);

// Whether what is or would be at the path lies behind a link that is not followed.
bool IsBehindALink(const std::wstring& path);

// Moves the opened file or folder, over a file that is there or only where there is nothing.
// Readers find the old file or the new one. S_OK, or the Win32 error with both files as they were.
// REQUIRES: opened with DELETE access.
enum class WhatIsThere { IsReplaced, Stays };
HRESULT MoveOpened(const CHandle& file, const std::wstring& path,
                   WhatIsThere there = WhatIsThere::IsReplaced);

// Takes the opened file away when it is closed, as far as it can be. REQUIRES: as above.
void DiscardOpened(const CHandle& file) noexcept;

} // namespace tsl
