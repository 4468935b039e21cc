#include "upkeep/recovery/SourceFile.h"

#include <filesystem>

#include "base/Hresult.h"
#include "console/Failure.h"
#include "upkeep/Connection.h"
#include "upkeep/recovery/PageFile.h"

namespace tsl {

namespace {

bool HasContent(const std::wstring& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return !error && size > 0;
}

bool NeedsCopy(const std::wstring& database) {
    for (const wchar_t* const suffix : kCompanionSuffixes) {
        if (HasContent(database + suffix)) return true;
    }
    // The engine makes files beside such a database even to read it.
    return CPageFile(database).Header().isWal;
}

void Copy(const std::wstring& from, const std::wstring& to) {
    if (!CopyFileW(from.c_str(), to.c_str(), /*failIfExists=*/FALSE))
        throw CFailure("cannot copy", from, HresultFromLastError());
    SetFileAttributesW(to.c_str(), FILE_ATTRIBUTE_NORMAL);
}

// The first look at the file takes the change back, or brings what is in the log into it.
void Settle(const std::wstring& database) {
    try {
        const CConnection connection(database, Access::ReadWrite);
        connection.Number("SELECT count(*) FROM sqlite_schema");
        connection.Execute("PRAGMA journal_mode = DELETE");
    } catch (const CSqliteError&) { // NOLINT(bugprone-empty-catch): it is read all the same
        // One that is too damaged for that stays as it is.
    }
}

void RemoveWithCompanions(const std::wstring& database) {
    DeleteFileW(database.c_str());
    for (const wchar_t* const suffix : kCompanionSuffixes)
        DeleteFileW((database + suffix).c_str());
    DeleteFileW((database + kLogIndexSuffix).c_str());
}

} // namespace

CSourceFile::CSourceFile(const std::wstring& database) : m_path(database) {
    if (!NeedsCopy(database)) return;
    m_path = TemporaryPath(L"damaged.db");
    m_isCopy = true;
    try {
        RemoveWithCompanions(m_path);
        Copy(database, m_path);
        for (const wchar_t* const suffix : kCompanionSuffixes) {
            if (HasContent(database + suffix)) Copy(database + suffix, m_path + suffix);
        }
        Settle(m_path);
    } catch (...) {
        RemoveWithCompanions(m_path);
        throw;
    }
}

CSourceFile::~CSourceFile() {
    if (m_isCopy) RemoveWithCompanions(m_path);
}

std::wstring TemporaryPath(const std::wstring& name) {
    const std::wstring unique = L"tslhost-" + std::to_wstring(GetCurrentProcessId()) + L"-" + name;
    return (std::filesystem::temp_directory_path() / unique).wstring();
}

} // namespace tsl
