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

// Empty when there is no file, or it cannot be read.
std::vector<UserIdEntry> ReadEntries(const std::wstring& path) {
    std::vector<UserIdEntry> entries;
    if (!FileExists(path)) return entries;
    const OpenedTextFile opened = OpenTextFileForReading(path);
    if (!opened.file) return entries;
    for (const std::wstring& line : SplitLines(ReadText(opened.file).value_or(L""))) {
        entries.push_back(ParseLine(line));
    }
    return entries;
}

} // namespace

bool LookUpOrAssignUserId(const std::wstring& sid, std::vector<UserIdEntry>& entries, UINT64& id) {
    const CNamedMutex mutex(kLoginInfoMutexName);
    const CMutexGuard lock(mutex, INFINITE);
    const std::wstring folder = UserIdFolder();
    entries.clear();
    if (GrantFolderAccess(folder)) entries = ReadEntries(Prefixed(folder + kUserIdFileName));

    bool found = false;
    UINT64 highest = 0;
    for (const UserIdEntry& entry : entries) {
        if (_wcsicmp(entry.sid.c_str(), sid.c_str()) == 0) {
            id = entry.id;
            found = true;
        }
        highest = std::max(highest, entry.id);
    }
    if (found) return true;
    id = highest + 1;
    entries.push_back({id, sid});
    WriteUserIdList(entries);
    return false;
}

HRESULT WriteUserIdList(const std::vector<UserIdEntry>& entries) {
    const std::wstring folder = UserIdFolder();
    if (!GrantFolderAccess(folder)) return E_INVALIDARG;
    const CWriterSection section;
    if (!GrantFolderAccess(Prefixed(folder))) return E_INVALIDARG;
    const std::wstring path = Prefixed(folder + kUserIdFileName);
    std::wstring text;
    for (const UserIdEntry& entry : entries)
        text += FormatLine(entry);
    const OpenedTextFile opened = OpenTextFileForWriting(path);
    if (!opened.file) return opened.status;
    // Whatever becomes of the rights, the file is written.
    AtBoundary([&] { return GrantFileAccess(path) ? S_OK : S_FALSE; });
    return WriteText(opened.file, text) ? S_OK : opened.status;
}

HRESULT CurrentUserId(UINT64& id) {
    std::wstring sid;
    const HRESULT result = CurrentUserSid(sid);
    if (FAILED(result)) return result;
    std::vector<UserIdEntry> entries;
    LookUpOrAssignUserId(sid, entries, id);
    return S_FALSE;
}

} // namespace tsl
