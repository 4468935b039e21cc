#include "upkeep/doctor/FileLook.h"

#include <algorithm>

#include "base/Handle.h"
#include "base/Hresult.h"
#include "console/Failure.h"
#include "console/Text.h"
#include "files/Paths.h"

namespace tsl {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

CHandle Open(const std::wstring& path, DWORD access) {
    constexpr int kAttempts = 10;
    constexpr DWORD kPauseMilliseconds = 50;
    for (int attempt = 1;; ++attempt) {
        CHandle file(CreateFileW(path.c_str(), access, kShareAll, /*securityAttributes=*/nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, /*templateFile=*/nullptr));
        if (file || GetLastError() != ERROR_SHARING_VIOLATION || attempt == kAttempts) return file;
        Sleep(kPauseMilliseconds);
    }
}

bool Read(HANDLE file, size_t mostBytes, FileLook& look) {
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file, &size)) return false;
    look.size = static_cast<UINT64>(size.QuadPart);
    look.bytes.resize(static_cast<size_t>(std::min<UINT64>(look.size, mostBytes)));
    DWORD read = 0;
    if (!ReadFile(file, look.bytes.data(), static_cast<DWORD>(look.bytes.size()), &read, nullptr))
        return false;
    look.bytes.resize(read);
    return true;
}

// Opening for writing does not touch the file. An administrator's rights may go beyond the
// attribute, which others obey.
DWORD WhyNotWritable(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        return ERROR_ACCESS_DENIED;
    return Open(path, GENERIC_WRITE) ? ERROR_SUCCESS : GetLastError();
}

Presence PresenceAfterFailure(DWORD error) noexcept {
    const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    return missing ? Presence::Missing : Presence::Unreadable;
}

} // namespace

FileLook LookAtFile(const std::wstring& path, size_t mostBytes) {
    FileLook look;
    if (FolderExists(path)) {
        look.presence = Presence::Folder;
        return look;
    }
    {
        const CHandle file = Open(path, GENERIC_READ);
        if (!file || !Read(file.Get(), mostBytes, look)) {
            look.error = GetLastError();
            look.presence = PresenceAfterFailure(look.error);
            return look;
        }
    }
    look.presence = Presence::There;
    look.error = WhyNotWritable(path);
    look.writable = look.error == ERROR_SUCCESS;
    return look;
}

std::optional<Finding> WhatBars(const FileLook& file, const std::string& subject,
                                const std::wstring& path) {
    if (file.presence == Presence::Missing) return std::nullopt;
    if (file.presence == Presence::Folder) {
        return Damaged(subject, "a folder lies in its place",
                       "move the folder \"" + ToUtf8(path) + "\" away");
    }
    if (file.presence == Presence::There && file.writable) return std::nullopt;
    const std::string reason = DescribeResult(HresultFromWin32(file.error));
    if (file.error == ERROR_SHARING_VIOLATION) {
        return Odd(subject, "another program has it open: " + reason, "close that program");
    }
    const bool readable = file.presence == Presence::There;
    return Barred(subject,
                  (readable ? "cannot be written by this user: " : "cannot be read: ") + reason,
                  "give everyone the right to write to \"" + ToUtf8(path) + "\"");
}

} // namespace tsl
