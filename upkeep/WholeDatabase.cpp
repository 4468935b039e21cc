#include "upkeep/WholeDatabase.h"

#include <sqlite3.h>

#include "console/Text.h"
#include "files/Paths.h"
#include "store/SqliteResult.h"
#include "upkeep/CheckedFiles.h"

namespace tsl {

namespace {

constexpr char kRecoverSaves[] = "; tslhost recover saves its records";

// The engine's words may quote what is in the file, which need not be text.
CFailure Damaged(const std::wstring& database, const std::string& why) {
    return CFailure(ExitCode::Damaged,
                    ToUtf8(database) + " is damaged: " + OneLine(why) + kRecoverSaves);
}

bool TellsOfDamage(int result) noexcept {
    // The general error is what a header of a form that no engine writes gives.
    return result == SQLITE_CORRUPT || result == SQLITE_NOTADB || result == SQLITE_ERROR;
}

} // namespace

CFailure FailureOf(const char* operation, const std::wstring& database, const CSqliteError& error) {
    if (IsLink(database)) return FailureToOpen(operation, database, {{}, E_ACCESSDENIED, true});
    if (FolderExists(database)) return Damaged(database, "a folder lies in its place");
    if (TellsOfDamage(error.Result())) {
        return CFailure(ExitCode::Damaged, std::string(operation) + " " + ToUtf8(database) + ": " +
                                               OneLine(error.what()) + kRecoverSaves);
    }
    return CFailure(operation, database, SqliteResultToHresult(error.Result()));
}

Access AccessToRead(const std::wstring& database) {
    constexpr DWORD kReadVersionOffset = 19;
    constexpr unsigned char kLog = 2;
    unsigned char version = 0;
    DWORD read = 0;
    const OpenedFile opened = OpenChecked(database, GENERIC_READ, kShareAll, OPEN_EXISTING);
    if (opened.file) {
        SetFilePointer(opened.file.Get(), kReadVersionOffset, nullptr, FILE_BEGIN);
        ReadFile(opened.file.Get(), &version, sizeof version, &read, /*overlapped=*/nullptr);
    }
    return version == kLog ? Access::ReadWrite : Access::ReadOnly;
}

void RequireWhole(const CConnection& connection, const std::wstring& database) {
    CQuery check(connection, "PRAGMA integrity_check(1)");
    const std::string found = check.Step() ? check.Text(0).value_or("") : "";
    if (found != "ok") throw Damaged(database, found);
}

} // namespace tsl
