#include "files/CheckedOpen.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Hresult.h"
#include "files/Paths.h"

namespace tsl {

namespace {

// Links themselves are opened, and whoever serves a pipe learns nothing of the user.
constexpr DWORD kAlwaysFlags =
    FILE_FLAG_OPEN_REPARSE_POINT | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

enum class Kind { File, Folder };

OpenedFile Refused() noexcept {
    return {{}, E_ACCESSDENIED, /*isRefused=*/true};
}

OpenedFile Open(const std::wstring& path, DWORD access, DWORD shareMode, DWORD disposition,
                DWORD flags) {
    OpenedFile opened;
    // The status is read after successes too, so an older error must not be taken for it.
    SetLastError(ERROR_SUCCESS);
    opened.file = CHandle(CreateFileW(path.c_str(), access, shareMode,
                                      /*securityAttributes=*/nullptr, disposition, flags,
                                      /*templateFile=*/nullptr));
    opened.status = HresultFromLastError();
    return opened;
}

std::wstring WithoutPrefix(std::wstring path) {
    constexpr std::wstring_view kPrefix = L"\\\\?\\";
    constexpr std::wstring_view kUncPrefix = L"\\\\?\\UNC\\";
    if (path.starts_with(kUncPrefix)) {
        path.replace(0, kUncPrefix.size(), L"\\\\");
    } else if (path.starts_with(kPrefix)) {
        path.erase(0, kPrefix.size());
    }
    if (path.ends_with(L'\\') && !path.ends_with(L":\\")) path.pop_back();
    return path;
}

bool AreSame(std::wstring_view one, std::wstring_view other) noexcept {
    return CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(),
                                static_cast<int>(other.size()),
                                /*ignoreCase=*/TRUE) == CSTR_EQUAL;
}

std::wstring AbsolutePath(const std::wstring& path) {
    const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, /*filePart=*/nullptr);
    std::wstring absolute(room, L'\0');
    absolute.resize(GetFullPathNameW(path.c_str(), room, absolute.data(), nullptr));
    return absolute;
}

// Length of the part of an absolute path in which links are followed, with its backslash.
size_t TrustedLength(std::wstring_view path) {
    constexpr std::wstring_view company = kCompanyFolder;
    size_t last = 0;
    for (size_t slash = path.find(L'\\'); slash != std::wstring_view::npos;
         slash = path.find(L'\\', slash + 1)) {
        const std::wstring_view name = path.substr(slash + 1, company.size());
        const size_t end = slash + 1 + company.size();
        const bool isWhole = end == path.size() || (end < path.size() && path[end] == L'\\');
        if (isWhole && AreSame(name, company)) return slash + 1;
        last = slash + 1;
    }
    return last;
}

// Where the opened file or folder lies, with all links followed; empty when the system cannot tell.
std::wstring FinalPath(const CHandle& opened) {
    std::wstring path(MAX_PATH, L'\0');
    const auto ask = [&] {
        return GetFinalPathNameByHandleW(opened.Get(), path.data(), static_cast<DWORD>(path.size()),
                                         VOLUME_NAME_DOS);
    };
    DWORD length = ask();
    if (length >= path.size()) {
        path.resize(length + 1);
        length = ask();
    }
    path.resize(length < path.size() ? length : 0);
    return WithoutPrefix(std::move(path));
}

// The same for a volume without a letter, and for paths that are too long for some systems: its
// path on the volume, behind the volume's number.
std::wstring PlaceOnVolume(const CHandle& opened) {
    BY_HANDLE_FILE_INFORMATION volume{};
    std::vector<std::byte> room(0x10000 + sizeof(FILE_NAME_INFO)); // for the longest path
    auto* const name = new (room.data()) FILE_NAME_INFO{};
    if (!GetFileInformationByHandle(opened.Get(), &volume) ||
        !GetFileInformationByHandleEx(opened.Get(), FileNameInfo, name,
                                      static_cast<DWORD>(room.size()))) {
        return {};
    }
    return std::to_wstring(volume.dwVolumeSerialNumber) +
           std::wstring(name->FileName, name->FileNameLength / sizeof(wchar_t));
}

// Whether what was opened lies where the path names it.
bool IsAt(const CHandle& opened, const std::wstring& path) {
    std::wstring found = FinalPath(opened);
    if (AreSame(found, WithoutPrefix(path))) return true;
    const auto place = found.empty() ? PlaceOnVolume : FinalPath;
    if (found.empty()) found = place(opened);
    const std::wstring named = AbsolutePath(WithoutPrefix(path));
    const size_t trusted = TrustedLength(named);
    const OpenedFile root =
        Open(LongPathPrefix(named.substr(0, trusted), /*force=*/false, /*directory=*/false),
             FILE_READ_ATTRIBUTES, kShareAll, OPEN_EXISTING,
             FILE_FLAG_BACKUP_SEMANTICS | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS);
    std::wstring expected = root.file ? place(root.file) : std::wstring();
    if (expected.empty()) return false;
    if (!expected.ends_with(L'\\')) expected += L'\\';
    return AreSame(found, expected + named.substr(trusted));
}

bool IsPlain(const CHandle& opened, const std::wstring& path, Kind kind) {
    const HANDLE file = opened.Get();
    if (GetFileType(file) != FILE_TYPE_DISK) return false;
    FILE_ATTRIBUTE_TAG_INFO tag{};
    FILE_STANDARD_INFO standard{};
    if (!GetFileInformationByHandleEx(file, FileAttributeTagInfo, &tag, sizeof tag) ||
        !GetFileInformationByHandleEx(file, FileStandardInfo, &standard, sizeof standard)) {
        return false;
    }
    if (tag.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) return false;
    const bool isFolder = standard.Directory != 0;
    if (isFolder != (kind == Kind::Folder)) return false;
    return (isFolder || standard.NumberOfLinks == 1) && IsAt(opened, path);
}

void RefuseUnlessPlain(OpenedFile& opened, const std::wstring& path, Kind kind) {
    if (opened.file && !IsPlain(opened.file, path, kind)) opened = Refused();
}

OpenedFile OpenExisting(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags) {
    OpenedFile opened =
        Open(path, access | FILE_READ_ATTRIBUTES, shareMode, OPEN_EXISTING, flags | kAlwaysFlags);
    RefuseUnlessPlain(opened, path, Kind::File);
    return opened;
}

OpenedFile CreateNew(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags) {
    const HRESULT holder = CheckHolder(path);
    if (FAILED(holder)) {
        OpenedFile failed = Refused();
        failed.status = holder;
        failed.isRefused = holder == E_ACCESSDENIED;
        return failed;
    }
    // A file that is there is no success, were it a link to nowhere.
    OpenedFile opened = Open(path, access | FILE_READ_ATTRIBUTES | DELETE, shareMode, CREATE_NEW,
                             FILE_ATTRIBUTE_NORMAL | flags | kAlwaysFlags);
    if (opened.file && !IsPlain(opened.file, path, Kind::File)) {
        DiscardOpened(opened.file);
        opened = Refused();
    }
    return opened;
}

OpenedFile OpenOrCreate(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags) {
    // Others make the file or take it away meanwhile; what is neither there nor can be made is a
    // link to nowhere.
    constexpr int kAttempts = 4;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        OpenedFile opened = OpenExisting(path, access, shareMode, flags);
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
        return OpenExisting(path, access, shareMode, flags);
    }
}

OpenedFile OpenCheckedFolder(const std::wstring& path, DWORD access) {
    OpenedFile opened = Open(path, access | FILE_READ_ATTRIBUTES, kShareAll, OPEN_EXISTING,
                             FILE_FLAG_BACKUP_SEMANTICS | kAlwaysFlags);
    RefuseUnlessPlain(opened, path, Kind::Folder);
    return opened;
}

HRESULT CheckHolder(const std::wstring& path) {
    const std::wstring named = AbsolutePath(WithoutPrefix(path));
    const size_t slash = named.rfind(L'\\');
    if (slash == std::wstring::npos || slash + 1 <= TrustedLength(named)) return S_OK;
    const std::wstring holder = path.substr(0, path.rfind(L'\\', path.size() - 2));
    const OpenedFile folder = OpenCheckedFolder(holder);
    return folder.file ? S_OK : folder.status;
}

HRESULT MoveOpened(const CHandle& file, const std::wstring& path) {
    const size_t bytes = path.size() * sizeof(wchar_t);
    std::vector<std::byte> room(sizeof(FILE_RENAME_INFO) + bytes);
    auto* const request = new (room.data()) FILE_RENAME_INFO{};
    request->ReplaceIfExists = TRUE;
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
