#include "upkeep/doctor/ExaminedDatabase.h"

#include <sqlite3.h>

#include <filesystem>

#include "base/Hresult.h"
#include "files/Paths.h"
#include "upkeep/StorePaths.h"

namespace tsl {

namespace fs = std::filesystem;

namespace {

// From here on an examination takes longer than copying the file.
bool IsLarge(const std::wstring& path) {
    constexpr std::uintmax_t kLargeBytes = std::uintmax_t{4} << 20;
    return fs::file_size(path) >= kLargeBytes;
}

// A folder that was not there before.
std::wstring MakeFolder() {
    static LONG serial = 0;
    const std::wstring name = L"tslhost-doctor-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(InterlockedIncrement(&serial));
    const fs::path folder = fs::temp_directory_path() / name;
    fs::remove_all(folder); // of a process that ended long ago
    fs::create_directory(folder);
    return folder.wstring();
}

} // namespace

CTemporaryCopy::CTemporaryCopy(const std::wstring& database) : m_folder(MakeFolder()) {
    try {
        Add(database, L"");
        for (const wchar_t* const suffix : kCompanionSuffixes)
            Add(database, suffix);
    } catch (...) {
        Remove();
        throw;
    }
}

CTemporaryCopy::~CTemporaryCopy() {
    Remove();
}

std::wstring CTemporaryCopy::Database() const {
    return m_folder + L"\\copy.db";
}

void CTemporaryCopy::Add(const std::wstring& database, const wchar_t* ending) const {
    const std::wstring original = database + ending;
    const std::wstring copy = Database() + ending;
    if (!FileExists(original)) return;
    if (!CopyFileW(original.c_str(), copy.c_str(), /*failIfExists=*/TRUE))
        throw CHresultError(HresultFromLastError());
    SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
}

void CTemporaryCopy::Remove() const noexcept {
    std::error_code error;
    fs::remove_all(m_folder, error);
}

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
    m_connection.emplace(m_copy->Database(), Access::ReadWrite);
}

} // namespace tsl
