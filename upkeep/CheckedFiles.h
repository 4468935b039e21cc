// Files of a store as commands open them: what is no plain file of its own is refused in words that
// tell what to do.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "console/Failure.h"
#include "files/CheckedOpen.h"

namespace tsl {

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Of a file or folder that is a link or has a second name: "PATH is a link or has a second name".
inline constexpr char kIsALink[] = " is a link or has a second name";
inline constexpr char kRemoveTheLink[] = "look where it leads, and remove it";

// What opening a file of a store told, as CFailure: Denied for what was refused.
CFailure FailureToOpen(const char* operation, const std::wstring& path, const OpenedFile& opened);

// Whether something lies at the path that must not be followed.
bool IsLink(const std::wstring& path);

// Whether nothing was opened because nothing is there.
bool IsMissing(const OpenedFile& opened) noexcept;

// Opens a file that is there. Throws CFailure.
CHandle OpenStoreFile(const char* operation, const std::wstring& path, DWORD access,
                      DWORD shareMode);

// Deletes the file by its handle, where there is one that is none but itself.
void DiscardFile(const std::wstring& path) noexcept;

// Hands on what is in the file, from its beginning. Throws CFailure, which names the path.
void ReadBlocks(const CHandle& file, const std::wstring& path,
                const std::function<void(const void* block, DWORD size)>& take);

} // namespace tsl
