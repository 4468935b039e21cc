#include "files/PlainFile.h"

#include <cstddef>
#include <cstring>
#include <cwchar>

namespace tsl {

namespace {

// Longer than any path.
constexpr DWORD kLongestPath = 0x8000;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// A path without what tells its form: "\\?\C:\x\" and "C:\x", "\\?\UNC\s\x" and "\\s\x" are the
// same.
struct BarePath {
    BarePath(const wchar_t* path, size_t size) noexcept : text(path), length(size) {
        if (StartsWith(L"\\\\?\\UNC\\", 8)) {
            Skip(8);
            isOnServer = true;
        } else if (StartsWith(L"\\\\?\\", 4)) {
            Skip(4);
        } else if (StartsWith(L"\\\\", 2)) {
            Skip(2);
            isOnServer = true;
        }
        if (length > 3 && text[length - 1] == L'\\') --length;
    }
    explicit BarePath(const wchar_t* path) noexcept : BarePath(path, wcslen(path)) {}

    bool StartsWith(const wchar_t* start, size_t size) const noexcept {
        return length >= size && wmemcmp(text, start, size) == 0;
    }
    void Skip(size_t size) noexcept {
        text += size;
        length -= size;
    }

    const wchar_t* text;
    size_t length;
    bool isOnServer = false;
};

bool AreSame(const wchar_t* one, size_t oneLength, const wchar_t* other,
             size_t otherLength) noexcept {
    return CompareStringOrdinal(one, static_cast<int>(oneLength), other,
                                static_cast<int>(otherLength),
                                /*ignoreCase=*/TRUE) == CSTR_EQUAL;
}

bool AreSame(const BarePath& one, const BarePath& other) noexcept {
    return one.isOnServer == other.isOnServer &&
           AreSame(one.text, one.length, other.text, other.length);
}

// Length of the part of an absolute path in which links are followed, with its backslash.
size_t TrustedLength(const wchar_t* path, size_t length) noexcept {
    constexpr size_t company = ARRAYSIZE(kCompanyFolder) - 1;
    size_t last = 0;
    for (size_t index = 0; index < length; ++index) {
        if (path[index] != L'\\') continue;
        const size_t begin = index + 1;
        const size_t end = begin + company;
        const bool isWhole = end == length || (end < length && path[end] == L'\\');
        if (isWhole && AreSame(path + begin, company, kCompanyFolder, company)) return begin;
        if (begin < length) last = begin;
    }
    return last;
}

// What needs room for whole paths, and is seldom needed.
class CLongPaths {
public:
    CLongPaths() noexcept
        : m_room(static_cast<Room*>(HeapAlloc(GetProcessHeap(), /*flags=*/0, sizeof(Room)))) {}
    CLongPaths(const CLongPaths&) = delete;
    CLongPaths& operator=(const CLongPaths&) = delete;
    ~CLongPaths() { HeapFree(GetProcessHeap(), 0, m_room); }

    // Makes the path absolute; false without room, or for a path that cannot be.
    bool Name(const wchar_t* path) noexcept {
        if (!m_room) return false;
        // The call leaves a path with the long-path prefix as it is.
        m_length = GetFullPathNameW(path, kLongestPath, m_room->named, /*filePart=*/nullptr);
        if (m_length == 0 || m_length >= kLongestPath) return false;
        if (m_room->named[m_length - 1] == L'\\') m_room->named[--m_length] = L'\0';
        return true;
    }
    // REQUIRES for all that follow: a name.
    size_t Trusted() const noexcept { return TrustedLength(m_room->named, m_length); }
    // The name of the folder that holds what is named.
    const wchar_t* Holder() noexcept {
        while (m_length > 0 && m_room->named[m_length - 1] != L'\\')
            --m_length;
        m_room->named[m_length] = L'\0';
        return m_room->named;
    }
    size_t Length() const noexcept { return m_length; }

    // Whether what was opened lies at the name, when the links of its trusted part are followed.
    bool Leads(HANDLE opened) noexcept {
        const size_t trusted = Trusted();
        const wchar_t first = m_room->named[trusted];
        m_room->named[trusted] = L'\0';
        const HANDLE root =
            CreateFileW(m_room->named, FILE_READ_ATTRIBUTES, kShareAll,
                        /*securityAttributes=*/nullptr, OPEN_EXISTING,
                        FILE_FLAG_BACKUP_SEMANTICS | SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS,
                        /*templateFile=*/nullptr);
        m_room->named[trusted] = first;
        if (root == INVALID_HANDLE_VALUE) return false;
        const wchar_t* const rest = m_room->named + trusted;
        const bool leads = LeadsByPath(opened, root, rest) || LeadsByVolume(opened, root, rest);
        CloseHandle(root);
        return leads;
    }

private:
    struct Room {
        wchar_t named[kLongestPath];
        wchar_t found[kLongestPath];
        wchar_t expected[2 * kLongestPath];
    };

    bool IsExpected(const BarePath& found, size_t rootLength, const wchar_t* rest) noexcept {
        wchar_t* const expected = m_room->expected;
        if (rootLength > 0 && expected[rootLength - 1] != L'\\') expected[rootLength++] = L'\\';
        const size_t restLength = m_length - static_cast<size_t>(rest - m_room->named);
        wmemcpy(expected + rootLength, rest, restLength);
        return AreSame(found, BarePath(expected, rootLength + restLength));
    }
    bool LeadsByPath(HANDLE opened, HANDLE root, const wchar_t* rest) noexcept {
        const DWORD length =
            GetFinalPathNameByHandleW(opened, m_room->found, kLongestPath, VOLUME_NAME_DOS);
        const DWORD rootLength =
            GetFinalPathNameByHandleW(root, m_room->expected, kLongestPath, VOLUME_NAME_DOS);
        return length > 0 && length < kLongestPath && rootLength > 0 && rootLength < kLongestPath &&
               IsExpected(BarePath(m_room->found, length), rootLength, rest);
    }
    // For volumes without a letter, and paths that are too long for some systems.
    bool LeadsByVolume(HANDLE opened, HANDLE root, const wchar_t* rest) noexcept {
        BY_HANDLE_FILE_INFORMATION ofOpened{};
        BY_HANDLE_FILE_INFORMATION ofRoot{};
        if (!GetFileInformationByHandle(opened, &ofOpened) ||
            !GetFileInformationByHandle(root, &ofRoot) ||
            ofOpened.dwVolumeSerialNumber != ofRoot.dwVolumeSerialNumber) {
            return false;
        }
        DWORD length = 0;
        DWORD rootLength = 0;
        return PathOnVolume(opened, m_room->found, length) &&
               PathOnVolume(root, m_room->expected, rootLength) &&
               IsExpected(BarePath(m_room->found, length), rootLength, rest);
    }
    // The text begins at path; it ends without a zero.
    static bool PathOnVolume(HANDLE opened, wchar_t* path, DWORD& length) noexcept {
        constexpr DWORD kRoom = kLongestPath * sizeof(wchar_t);
        if (!GetFileInformationByHandleEx(opened, FileNameInfo, path, kRoom)) return false;
        DWORD bytes = 0;
        std::memcpy(&bytes, path, sizeof bytes);
        std::memmove(path, reinterpret_cast<char*>(path) + offsetof(FILE_NAME_INFO, FileName),
                     bytes);
        length = bytes / DWORD{sizeof(wchar_t)};
        return true;
    }

    Room* m_room;
    DWORD m_length = 0;
};

// Whether what was opened lies where the path names it.
bool IsAt(HANDLE opened, const wchar_t* path) noexcept {
    wchar_t found[MAX_PATH];
    const DWORD length = GetFinalPathNameByHandleW(opened, found, MAX_PATH, VOLUME_NAME_DOS);
    if (length > 0 && length < MAX_PATH && AreSame(BarePath(found, length), BarePath(path))) {
        return true;
    }
    CLongPaths paths;
    return paths.Name(path) && paths.Leads(opened);
}

} // namespace

bool IsPlain(HANDLE opened, const wchar_t* path, FileKind kind) noexcept {
    if (GetFileType(opened) != FILE_TYPE_DISK) return false;
    FILE_ATTRIBUTE_TAG_INFO tag{};
    FILE_STANDARD_INFO standard{};
    if (!GetFileInformationByHandleEx(opened, FileAttributeTagInfo, &tag, sizeof tag) ||
        !GetFileInformationByHandleEx(opened, FileStandardInfo, &standard, sizeof standard)) {
        return false;
    }
    if (tag.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) return false;
    const bool isFolder = standard.Directory != 0;
    if (isFolder != (kind == FileKind::Folder)) return false;
    return (isFolder || standard.NumberOfLinks == 1) && IsAt(opened, path);
}

HANDLE OpenPlain(const wchar_t* path, DWORD access, DWORD shareMode, DWORD flags,
                 FileKind kind) noexcept {
    if (kind == FileKind::Folder) flags |= FILE_FLAG_BACKUP_SEMANTICS;
    const HANDLE opened =
        CreateFileW(path, access | FILE_READ_ATTRIBUTES, shareMode, /*securityAttributes=*/nullptr,
                    OPEN_EXISTING, flags | kPlainFlags, /*templateFile=*/nullptr);
    if (opened == INVALID_HANDLE_VALUE) return opened;
    const DWORD error = GetLastError();
    if (IsPlain(opened, path, kind)) {
        SetLastError(error);
        return opened;
    }
    CloseHandle(opened);
    SetLastError(kRefusedError);
    return INVALID_HANDLE_VALUE;
}

bool MayBeMade(const wchar_t* path) noexcept {
    CLongPaths paths;
    if (!paths.Name(path)) {
        SetLastError(ERROR_OUTOFMEMORY);
        return false;
    }
    const size_t trusted = paths.Trusted();
    const wchar_t* const holder = paths.Holder();
    if (paths.Length() <= trusted) return true;
    const HANDLE folder = OpenPlain(holder, /*access=*/0, kShareAll, /*flags=*/0, FileKind::Folder);
    if (folder == INVALID_HANDLE_VALUE) return false;
    CloseHandle(folder);
    return true;
}

} // namespace tsl
