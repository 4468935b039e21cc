#include "upkeep/doctor/FileLook.h"

#include <algorithm>

#include "base/Hresult.h"
#include "console/Text.h"
#include "files/Paths.h"
#include "upkeep/CheckedFiles.h"

namespace tsl {

namespace {

OpenedFile Open(const std::wstring& path, DWORD access) {
    constexpr int kAttempts = 10;
    constexpr DWORD kPauseMilliseconds = 50;
    for (int attempt = 1;; ++attempt) {
        OpenedFile opened = OpenChecked(path, access, kShareAll, OPEN_EXISTING);
        const bool isInUse = opened.status == HresultFromWin32(ERROR_SHARING_VIOLATION);
        if (opened.file || !isInUse || attempt == kAttempts) return opened;
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
    const OpenedFile opened = Open(path, GENERIC_WRITE);
    return opened.file ? ERROR_SUCCESS : static_cast<DWORD>(HRESULT_CODE(opened.status));
}

Presence PresenceAfterFailure(DWORD error) noexcept {
    const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    return missing ? Presence::Missing : Presence::Unreadable;
}

} // namespace

FileLook LookAtFile(const std::wstring& path, size_t mostBytes) {
    FileLook look;
    if (FolderExists(path)) {
        look.presence = OpenCheckedFolder(path).isRefused ? Presence::Link : Presence::Folder;
        return look;
    }
    {
        const OpenedFile opened = Open(path, GENERIC_READ);
        if (opened.isRefused) {
            look.presence = Presence::Link;
            return look;
        }
        const bool isRead = opened.file && Read(opened.file.Get(), mostBytes, look);
        if (!isRead) {
            look.error =
                opened.file ? GetLastError() : static_cast<DWORD>(HRESULT_CODE(opened.status));
            look.presence = PresenceAfterFailure(look.error);
            return look;
        }
    }
    look.presence = Presence::There;
    look.error = WhyNotWritable(path);
    look.writable = look.error == ERROR_SUCCESS;
    return look;
}

std::vector<std::wstring> MadeButNotMoved(const std::wstring& path) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((path + L".*.new").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        names.emplace_back(found.cFileName);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return names;
}

Finding TellLink(const std::string& subject, const std::wstring& path) {
    return Damaged(subject,
                   ToUtf8(path) + kIsALink +
                       ", or lies behind a link: hosts refuse it, and nothing behind it was read",
                   kRemoveTheLink);
}

std::optional<Finding> WhatBars(const FileLook& file, const std::string& subject,
                                const std::wstring& path) {
    if (file.presence == Presence::Missing) return std::nullopt;
    if (file.presence == Presence::Link) return TellLink(subject, path);
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
