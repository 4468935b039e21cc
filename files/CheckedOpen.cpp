#include "files/CheckedOpen.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

#include "base/Hresult.h"

namespace tsl {

namespace {

// REQUIRES: the last error is that of the opening.
OpenedFile Opened(HANDLE handle) {
    OpenedFile opened;
    const DWORD error = GetLastError();
    opened.file = CHandle(handle);
    opened.isRefused = !opened.file && error == kRefusedError;
    opened.status = opened.isRefused ? E_ACCESSDENIED : HresultFromWin32(error);
    return opened;
}

OpenedFile Refused() {
    SetLastError(kRefusedError);
    return Opened(INVALID_HANDLE_VALUE);
}

OpenedFile OpenExisting(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags,
                        FileKind kind) {
    // The status is read after successes too, so an older error must not be taken for it.
    SetLastError(ERROR_SUCCESS);
    return Opened(OpenPlain(path.c_str(), access, shareMode, flags, kind));
}

OpenedFile CreateNew(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags) {
    SetLastError(ERROR_SUCCESS);
    if (!MayBeMade(path.c_str())) return Opened(INVALID_HANDLE_VALUE);
    SetLastError(ERROR_SUCCESS);
    // A file that is there is no success, were it a link to nowhere.
    OpenedFile opened = Opened(CreateFileW(path.c_str(), access | FILE_READ_ATTRIBUTES | DELETE,
                                           shareMode, /*securityAttributes=*/nullptr, CREATE_NEW,
                                           FILE_ATTRIBUTE_NORMAL | flags | kPlainFlags,
                                           /*templateFile=*/nullptr));
    if (!opened.file || IsPlain(opened.file.Get(), path.c_str(), FileKind::File)) return opened;
    DiscardOpened(opened.file);
    return Refused();
}

OpenedFile OpenOrCreate(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags) {
    // Others make the file or take it away meanwhile; what is neither there nor can be made is a
    // link to nowhere.
    constexpr int kAttempts = 4;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        OpenedFile opened = OpenExisting(path, access, shareMode, flags, FileKind::File);
        if (opened.file) opened.status = HresultFromWin32(ERROR_ALREADY_EXISTS);
        if (opened.status != HresultFromWin32(ERROR_FILE_NOT_FOUND)) return opened;
        opened = CreateNew(path, access, shareMode, flags);
        if (opened.status != HresultFromWin32(ERROR_FILE_EXISTS)) return opened;
    }
    return Refused();
}

} // namespace

OpenedFile OpenChecked(const std::wstring& path, DWORD access, DWORD shareMode, DWORD disposition,
                       DWORD flags) {
    switch (disposition) {
    case OPEN_ALWAYS:
        return OpenOrCreate(path, access, shareMode, flags);
    case CREATE_NEW:
        return CreateNew(path, access, shareMode, flags);
    default:
        return OpenExisting(path, access, shareMode, flags, FileKind::File);
    }
}

OpenedFile OpenCheckedFolder(const std::wstring& path, DWORD access, DWORD shareMode) {
    return OpenExisting(path, access, shareMode, /*flags=*/0, FileKind::Folder);
}

bool IsBehindALink(const std::wstring& path) {
    return !MayBeMade(path.c_str()) && GetLastError() == kRefusedError;
}

HRESULT MoveOpened(const CHandle& file, const std::wstring& path, WhatIsThere there) {
    const size_t bytes = path.size() * sizeof(wchar_t);
    std::vector<std::byte> room(sizeof(FILE_RENAME_INFO) + bytes);
    auto* const request = new (room.data()) FILE_RENAME_INFO{};
    request->ReplaceIfExists = there == WhatIsThere::IsReplaced;
    request->FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(room.data() + offsetof(FILE_RENAME_INFO, FileName), path.data(), bytes);
    return SetFileInformationByHandle(file.Get(), FileRenameInfo, request,
                                      static_cast<DWORD>(room.size()))
               ? S_OK
               : HresultFromLastError();
}

void DiscardOpened(const CHandle& file) noexcept {
    FILE_DISPOSITION_INFO request{TRUE};
    SetFileInformationByHandle(file.Get(), FileDispositionInfo, &request, sizeof request);
}

} // namespace tsl
