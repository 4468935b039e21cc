#include "upkeep/recovery/SourceFile.h"

#include "upkeep/CheckedFiles.h"
#include "upkeep/Connection.h"
#include "upkeep/StorePaths.h"
#include "upkeep/recovery/PageFile.h"

namespace tsl {

namespace {

bool HasContent(const std::wstring& path) {
    const OpenedFile opened = OpenChecked(path, /*access=*/0, kShareAll, OPEN_EXISTING);
    if (opened.isRefused) throw FailureToOpen("cannot read", path, opened);
    LARGE_INTEGER size{};
    return opened.file && GetFileSizeEx(opened.file.Get(), &size) && size.QuadPart > 0;
}

bool NeedsCopy(const std::wstring& database) {
    for (const wchar_t* const suffix : kCompanionSuffixes) {
        if (HasContent(database + suffix)) return true;
    }
    // The engine makes files beside such a database even to read it.
    return CPageFile(database).Header().isWal;
}

// The first look at the file takes the change back, or brings what is in the log into it.
void Settle(const std::wstring& database) {
    try {
        const CConnection connection(database, Access::ReadWrite);
        connection.Execute("PRAGMA journal_mode = DELETE");
    } catch (const CSqliteError&) { // NOLINT(bugprone-empty-catch): it is read all the same
        // One that is too damaged for that stays as it is.
    }
}

} // namespace

CSourceFile::CSourceFile(const std::wstring& database) : m_path(database) {
    if (!NeedsCopy(database)) return;
    m_copy.emplace(database);
    Settle(m_copy->Path());
}

} // namespace tsl
