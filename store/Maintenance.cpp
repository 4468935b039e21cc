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

int SetLogKinds(const CDatabase& database, const std::wstring& table) {
    const std::wstring update = L"UPDATE " + table + L" SET " + kLogKindColumn + L" = ";
    const int result = ExecuteStatement(database, update + std::to_wstring(kLogKindOfKeptRecords));
    if (result != kSqliteOk) return result;
    return ExecuteStatement(database, update + std::to_wstring(kLogKindOfLocations) + L" WHERE " +
                                          kActionNameColumn + L" = \"" + kLocationName + L"\"");
}

int ReadLastId(const CDatabase& database, const std::wstring& table, UINT32& lastId) {
    INT64 number = 0;
    const int result = ReadNumber(database,
                                  L"SELECT * FROM " + table + L" WHERE " + kCurrentRecordIdColumn +
                                      L" = " + std::to_wstring(kCurrentRow),
                                  kLastIdIndex, number);
    lastId = static_cast<UINT32>(number);
    return result;
}

HRESULT Convert(CActionLogStore& store, const CDatabase& database) {
    int result = SetLogKinds(database, store.SelectedTable());
    store.SelectTable(kTablePrefix, kRecordIdTable);
    if (result != kSqliteOk) return SqliteResultToHresult(result);
    UINT32 lastId = 0;
    result = ReadLastId(database, store.SelectedTable(), lastId);
    if (result != kSqliteOk) return SqliteResultToHresult(result);
    // The first id handed out is one above this, so the ids of old and new records have a gap.
    const HRESULT seeded = SeedCounter(store, lastId + 1);
    if (FAILED(seeded)) return seeded;
    result = ExecuteStatement(database, L"DROP TABLE IF EXISTS " + store.SelectedTable());
    return SuccessAsOk(SqliteResultToHresult(result));
}

} // namespace

HRESULT MaintainStore(CActionLogStore& store) {
    store.SelectTable(kTablePrefix, kActionLogTable);
    if (IsConverted()) return E_FAIL;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    // Another process may have converted the store during the wait.
    if (IsConverted()) return E_FAIL;
    CDatabase database;
    const HRESULT opened = store.Open(store.DatabaseName(), store.Prefix(), store.Name(), &database,
                                      TableShape::RecordId, /*create=*/false);
    return FAILED(opened) || !database ? opened : Convert(store, database);
}

} // namespace tsl
