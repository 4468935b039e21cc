#include "upkeep/doctor/ExaminedDatabase.h"

#include <sqlite3.h>

#include <filesystem>

namespace tsl {

namespace fs = std::filesystem;

namespace {

// From here on an examination takes longer than copying the file.
bool IsLarge(const std::wstring& path) {
    constexpr std::uintmax_t kLargeBytes = std::uintmax_t{4} << 20;
    return fs::file_size(path) >= kLargeBytes;
}

} // namespace

CExaminedDatabase::CExaminedDatabase(const std::wstring& path, bool alwaysCopy) {
    if (alwaysCopy) {
        OpenCopy(path);
        return;
    }
    try {
        OpenInPlace(path);
    } catch (const CSqliteError& error) {
        // An interrupted change has to be rolled back first.
        if (error.Result() != SQLITE_READONLY) throw;
        m_interrupted = true;
        OpenCopy(path);
        return;
    }
    if (IsLarge(path)) OpenCopy(path);
}

void CExaminedDatabase::OpenInPlace(const std::wstring& path) {
    m_connection.emplace(path, Access::ReadOnly);
    // All that follows sees one state of the file, and nobody writes to it.
    m_connection->Execute("BEGIN");
    m_connection->Number("SELECT COUNT(*) FROM sqlite_schema");
}

// Where it is open in place already, nobody writes to it while it is copied.
void CExaminedDatabase::OpenCopy(const std::wstring& path) {
    m_copy.emplace(path);
    m_connection.emplace(m_copy->Path(), Access::ReadWrite);
}

} // namespace tsl
