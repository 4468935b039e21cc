#include "store/Maintenance.h"

#include "files/DataFolders.h"
#include "files/Paths.h"
#include "files/TextActionLog.h"
#include "store/LogKinds.h"
#include "store/RecordIdCounter.h"
#include "store/SqliteResult.h"

namespace tsl {

namespace {

// The action whose records an older store told apart by name only.
constexpr wchar_t kLocationName[] = L"userLocation";

// Row of the old table that holds the last id, and the id's place in it.
constexpr int kCurrentRow = 1;
constexpr int kLastIdIndex = 1;

bool IsConverted() {
    return FileExists(DbFolder() + kCounterFileName);
}

// The table that holds the records, and the one that held the last id.
std::wstring ActionTable() {
    return TableName(kTablePrefix, kActionLogTable);
}
std::wstring OldIdTable() {
    return TableName(kTablePrefix, kRecordIdTable);
}

int SetLogKinds(const CDatabase& database) {
    const std::wstring update = L"UPDATE " + ActionTable() + L" SET " + kLogKindColumn + L" = ";
    const int result = ExecuteStatement(database, update + std::to_wstring(kLogKindOfKeptRecords));
    if (result != kSqliteOk) return result;
    return ExecuteStatement(database, update + std::to_wstring(kLogKindOfLocations) + L" WHERE " +
                                          kActionNameColumn + L" = \"" + kLocationName + L"\"");
}

int ReadLastId(const CDatabase& database, UINT32& lastId) {
    INT64 number = 0;
    const int result =
        ReadNumber(database,
                   L"SELECT * FROM " + OldIdTable() + L" WHERE " + kCurrentRecordIdColumn + L" = " +
                       std::to_wstring(kCurrentRow),
                   kLastIdIndex, number);
    lastId = static_cast<UINT32>(number);
    return result;
}

HRESULT Open(const CActionLogStore& store, CDatabase& database) {
    return store.Open(kActionLogFileName, kTablePrefix, kActionLogTable, &database,
                      TableShape::RecordId, /*create=*/false, FileUse::Convert);
}

HRESULT Convert(const CActionLogStore& store, const CDatabase& database) {
    int result = SetLogKinds(database);
    if (result != kSqliteOk) return SqliteResultToHresult(result);
    UINT32 lastId = 0;
    result = ReadLastId(database, lastId);
    if (result != kSqliteOk) return SqliteResultToHresult(result);
    // The first id handed out is one above this, so the ids of old and new records have a gap.
    const HRESULT seeded = SeedCounter(store, lastId + 1);
    if (FAILED(seeded)) return seeded;
    result = ExecuteStatement(database, L"DROP TABLE IF EXISTS " + OldIdTable());
    return SuccessAsOk(SqliteResultToHresult(result));
}

// How many of the two tables of an older store the file has.
int CountOlderTables(const CDatabase& database, INT64& tables) {
    return ReadNumber(database,
                      L"SELECT COUNT(*) FROM sqlite_master WHERE name IN ('" + ActionTable() +
                          L"','" + OldIdTable() + L"')",
                      /*column=*/0, tables);
}

bool IsEmptyOrMissing(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA found{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &found)) return true;
    return found.nFileSizeHigh == 0 && found.nFileSizeLow == 0;
}

} // namespace

HRESULT MaintainStore(const CActionLogStore& store) {
    if (IsConverted()) return E_FAIL;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    // Another process may have converted the store during the wait.
    if (IsConverted()) return E_FAIL;
    CDatabase database;
    const HRESULT opened = Open(store, database);
    return FAILED(opened) || !database ? opened : Convert(store, database);
}

HRESULT ConvertBeforeFirstId(const CActionLogStore& store) {
    // Looking must not make a database.
    if (IsConverted() || IsEmptyOrMissing(DbFolder() + kActionLogFileName)) return S_OK;
    if (!store.Engine()) return E_POINTER;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    if (IsConverted()) return S_OK;
    CDatabase database;
    const HRESULT opened = Open(store, database);
    if (FAILED(opened) || !database) return opened;
    constexpr INT64 kBoth = 2;
    INT64 tables = 0;
    const int counted = CountOlderTables(database, tables);
    if (counted == kSqliteNotADatabase) return S_OK;
    if (counted != kSqliteOk) return SqliteResultToHresult(counted);
    if (tables < kBoth) return S_OK;
    UINT32 lastId = 0;
    const int found = ReadLastId(database, lastId);
    // Without a last id that can be read nobody knows where its ids end.
    if (found == kSqliteDone || found == kSqliteError) return S_OK;
    return found == kSqliteOk ? Convert(store, database) : SqliteResultToHresult(found);
}

} // namespace tsl
