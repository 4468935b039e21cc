// The queries that answer with record ids.
#include <initializer_list>
#include <vector>

#include "component/host/ParamKeys.h"
#include "query/IdListAnswer.h"
#include "query/RangeArguments.h"
#include "query/RecordQueries.h"
#include "store/Binder.h"
#include "store/RecordIdCounter.h"
#include "store/SqliteResult.h"

namespace tsl {

namespace {

// Runs a prepared and bound statement and collects its first column.
template <class Id>
int CollectIds(CStatement& statement, std::vector<Id>& ids) {
    return statement.ForEachRow(
        [&] { ids.push_back(static_cast<Id>(statement.ColumnInt64(kActionLogIdIndex))); });
}

HRESULT AnswerCollected(int sqliteResult, std::span<const UINT32> ids, VARIANT* result) {
    const HRESULT status = SqliteResultToHresult(sqliteResult);
    return FAILED(status) ? status : AnswerIds(ids, result);
}

// "SELECT ActionLogId FROM table WHERE a = ? AND b = ? AND last BETWEEN ? AND ?"
std::wstring RangeStatement(const std::wstring& table,
                            std::initializer_list<const wchar_t*> equalColumns,
                            const wchar_t* rangeColumn) {
    std::wstring text =
        L"SELECT " + std::wstring(kActionLogIdColumn) + L" FROM " + table + L" WHERE ";
    for (const wchar_t* const column : equalColumns)
        text.append(column).append(L" = ? AND ");
    return text.append(rangeColumn).append(L" BETWEEN ? AND ?");
}

HRESULT QueryTimeRange(CActionLogStore& store, ITslParamContainer& container, VARIANT* result) {
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    UINT32 userId = 0;
    // A failure to read the user or the end is no answer; one to read the start is not looked at.
    if (ReadUserId(container, userId) != S_OK) return S_OK;
    DATE start = kEarliestTime;
    DATE end = kLatestTime;
    ReadBound(container, kKeyStartTime, start);
    if (FAILED(ReadBound(container, kKeyEndTime, end))) return S_OK;

    CStatement statement(database);
    std::vector<UINT32> ids;
    int status = statement.Prepare(
        RangeStatement(store.SelectedTable(), {kUserIdColumn}, kPluginLoggedTimeColumn));
    if (status == kSqliteOk) {
        status = CBinder(statement).Integer(userId).Real(start).Real(end).Result();
    }
    if (status == kSqliteOk) status = CollectIds(statement, ids);
    return AnswerCollected(status, ids, result);
}

// The time of the latest row of a record; left as it is when there is no such record.
int ReadLoggedTime(const CDatabase& database, const std::wstring& table, UINT32 recordId,
                   DATE& time) {
    CStatement statement(database);
    int status =
        statement.Prepare(L"SELECT * FROM " + table + L" WHERE " + kActionLogIdColumn + L" = ?");
    if (status == kSqliteOk) status = statement.BindInt64(1, recordId);
    if (status != kSqliteOk) return status;
    return statement.ForEachRow([&] { time = statement.ColumnDouble(kPluginLoggedTimeIndex); });
}

// Ids wrap around, so a range whose first id is above its last one runs across the wrap-around.
bool IsWrapped(UINT32 first, UINT32 last) noexcept {
    return first > last && last != 0;
}

int CollectIdRange(const CActionLogStore& store, const CDatabase& database, UINT32 userId,
                   UINT32 first, UINT32 last, std::vector<UINT32>& ids) {
    const std::wstring& table = store.SelectedTable();
    CStatement statement(database);
    int status = statement.Prepare(
        RangeStatement(table, {kUserIdColumn, kLogKindColumn}, kActionLogIdColumn));
    if (status == kSqliteOk) {
        status = CBinder(statement)
                     .Integer(userId)
                     .Integer(store.LogKind())
                     .Integer(first)
                     .Integer(last)
                     .Result();
    }
    return status == kSqliteOk ? CollectIds(statement, ids) : status;
}

int CollectWrappedRange(const CActionLogStore& store, const CDatabase& database, UINT32 userId,
                        UINT32 first, UINT32 last, std::vector<UINT32>& ids) {
    const std::wstring& table = store.SelectedTable();
    DATE start = kEarliestTime;
    DATE end = kLatestTime;
    int status = ReadLoggedTime(database, table, first, start);
    if (status == kSqliteOk) status = ReadLoggedTime(database, table, last, end);
    if (status != kSqliteOk) return status;
    CStatement statement(database);
    status = statement.Prepare(
        RangeStatement(table, {kUserIdColumn, kLogKindColumn}, kPluginLoggedTimeColumn));
    if (status == kSqliteOk) {
        status = CBinder(statement)
                     .Integer(userId)
                     .Integer(store.LogKind())
                     .Real(start)
                     .Real(end)
                     .Result();
    }
    return status == kSqliteOk ? CollectIds(statement, ids) : status;
}

HRESULT QueryIdRange(CActionLogStore& store, ITslParamContainer& container, VARIANT* result) {
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    UINT32 userId = 0;
    const HRESULT user = ReadUserId(container, userId);
    if (user != S_OK) return FAILED(user) ? user : S_OK;
    UINT32 first = kFirstRecordId;
    ReadBound(container, kKeyFirstRecordId, first);
    RaiseCounterForFirstId(store, first);
    UINT32 last = kLastRecordId;
    const HRESULT lastRead = ReadBound(container, kKeyLastRecordId, last);
    if (FAILED(lastRead)) return lastRead;

    std::vector<UINT32> ids;
    const auto collect = IsWrapped(first, last) ? CollectWrappedRange : CollectIdRange;
    const int status = collect(store, database, userId, first, last, ids);
    return AnswerCollected(status, ids, result);
}

} // namespace

HRESULT QueryRecordIds(CActionLogStore& store, ITslParamContainer* container, VARIANT* result) {
    if (!store.Engine() || !container || !result) return E_POINTER;
    return HasIdRangeKey(*container) ? QueryIdRange(store, *container, result)
                                     : QueryTimeRange(store, *container, result);
}

HRESULT QueryAllRecordIds(CActionLogStore& store, ITslParamContainer* /*container*/,
                          VARIANT* result) {
    if (!result) return E_POINTER;
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    UINT32 userId = 0;
    const HRESULT user = ImpliedUserId(store.LogKind(), userId);
    if (FAILED(user)) return user;

    CStatement statement(database);
    std::vector<UINT64> ids;
    int status =
        statement.Prepare(L"SELECT * FROM " + store.SelectedTable() + L" WHERE " + kUserIdColumn +
                          L" = ? AND " + kActionLogIdColumn + L" BETWEEN ? AND ?");
    if (status == kSqliteOk) {
        status = CBinder(statement)
                     .Integer(userId)
                     .Integer(kFirstRecordId)
                     .Integer(kLastRecordId)
                     .Result();
    }
    if (status == kSqliteOk) status = CollectIds(statement, ids);
    const HRESULT collected = SqliteResultToHresult(status);
    return FAILED(collected) ? collected : AnswerAllIds(ids, result);
}

} // namespace tsl
