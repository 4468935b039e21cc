#include "files/UserIdList.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <iterator>

#include "base/Hresult.h"
#include "base/NamedMutex.h"
#include "files/AccessRights.h"
#include "files/DataFolders.h"
#include "files/Paths.h"
#include "files/Utf16TextFile.h"

namespace tsl {

namespace {

// Serialises the threads of this process that write the file. Never destroyed: nothing has to be.
constinit SRWLOCK g_writerSection = SRWLOCK_INIT;

class CWriterSection {
public:
    CWriterSection() noexcept { AcquireSRWLockExclusive(&g_writerSection); }
    CWriterSection(const CWriterSection&) = delete;
    CWriterSection& operator=(const CWriterSection&) = delete;
    ~CWriterSection() { ReleaseSRWLockExclusive(&g_writerSection); }
};

std::wstring Prefixed(const std::wstring& path) {
    return LongPathPrefix(path, /*force=*/false, /*directory=*/false);
}

// The field that starts at the position, which moves behind the TAB that ends it.
std::wstring NextField(const std::wstring& line, size_t& position) {
    const size_t end = std::min(line.find(L'\t', position), line.size());
    const std::wstring field = line.substr(position, end - position);
    position = std::min(end + 1, line.size());
    return field;
}

UserIdEntry ParseLine(const std::wstring& line) {
    size_t position = 0;
    UserIdEntry entry;
    // Base 0 takes hexadecimal, octal and decimal numbers; what is no number is 0.
    entry.id = _wcstoui64(NextField(line, position).c_str(), /*end=*/nullptr, /*base=*/0);
    entry.sid = NextField(line, position);
    return entry;
}

std::wstring FormatLine(const UserIdEntry& entry) {
    wchar_t id[24];
    std::swprintf(id, std::size(id), L"0x%08I64x\t", entry.id);
    return id + entry.sid + L"\t\r\n";
}

// More than 200,000 users.
constexpr DWORD kMostListBytes = 32 * 1024 * 1024;

// No entries when there is no file, or it cannot be read. Else S_OK; the failure for a file that is
// refused or too large.
HRESULT ReadEntries(const std::wstring& path, std::vector<UserIdEntry>& entries) {
    if (!FileExists(path)) return S_OK;
    const OpenedFile opened = OpenTextFileForReading(path);
    if (!opened.file) return opened.isRefused ? opened.status : S_OK;
    std::wstring text;
    const HRESULT read = ReadText(opened.file, kMostListBytes, text);
    if (FAILED(read)) return read;
    for (const std::wstring& line : SplitLines(text))
        entries.push_back(ParseLine(line));
    return S_OK;
}

HRESULT Write(const std::vector<UserIdEntry>& entries, bool& isRefused) {
    const std::wstring folder = UserIdFolder();
    const CWriterSection section;
    if (!GrantFolderAccess(Prefixed(folder))) return E_INVALIDARG;
    std::wstring text;
    for (const UserIdEntry& entry : entries)
        text += FormatLine(entry);
    const OpenedFile opened = OpenTextFileForWriting(Prefixed(folder + kUserIdFileName));
    isRefused = opened.isRefused;
    if (!opened.file) return opened.status;
    // Whatever becomes of the rights, the file is written.
    AtBoundary([&] { return GrantAccess(opened.file) ? S_OK : S_FALSE; });
    return WriteText(opened.file, text) ? S_OK : opened.status;
}

} // namespace

HRESULT LookUpOrAssignUserId(const std::wstring& sid, std::vector<UserIdEntry>& entries,
                             UINT64& id) {
    const CNamedMutex mutex(kLoginInfoMutexName);
    const CMutexGuard lock(mutex, INFINITE);
    const std::wstring folder = UserIdFolder();
    entries.clear();
    const GrantedFolder granted = PrepareFolder(folder);
    if (granted.isRefused) return E_ACCESSDENIED;
    if (granted.isGranted) {
        const HRESULT read = ReadEntries(Prefixed(folder + kUserIdFileName), entries);
        if (FAILED(read)) return read;
    }

    bool isFound = false;
    UINT64 highest = 0;
    UINT64 own = 0;
    for (const UserIdEntry& entry : entries) {
        if (_wcsicmp(entry.sid.c_str(), sid.c_str()) == 0) {
            own = entry.id;
            isFound = true;
        }
        highest = std::max(highest, entry.id);
    }
    if (!isFound) {
        own = highest + 1;
        entries.push_back({own, sid});
        bool isRefused = false;
        const HRESULT written = Write(entries, isRefused);
        if (isRefused) return written;
    }
    id = own;
    return isFound ? S_FALSE : S_OK;
}

HRESULT WriteUserIdList(const std::vector<UserIdEntry>& entries) {
    bool isRefused = false;
    return Write(entries, isRefused);
}

HRESULT CurrentUserId(UINT64& id) {
    std::wstring sid;
    HRESULT result = CurrentUserSid(sid);
    if (FAILED(result)) return result;
    std::vector<UserIdEntry> entries;
    result = LookUpOrAssignUserId(sid, entries, id);
    return FAILED(result) ? result : S_FALSE;
}

} // namespace tsl
