#include "query/RecordIdQuery.h"

#include <initializer_list>

#include "component/host/ParamKeys.h"
#include "query/IdColumn.h"
#include "store/Binder.h"
#include "store/RecordIdCounter.h"
#include "store/SqliteResult.h"
#include "store/TargetSession.h"

namespace tsl {

namespace {

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

int CollectTimeRange(const Target& target, const CDatabase& database, const RecordIdQuery& query,
                     std::vector<UINT32>& ids) {
    CStatement statement(database);
    int status =
        statement.Prepare(RangeStatement(target.Table(), {kUserIdColumn}, kPluginLoggedTimeColumn));
    if (status == kSqliteOk) {
        status =
            CBinder(statement).Integer(query.userId).Real(query.start).Real(query.end).Result();
    }
    return status == kSqliteOk ? CollectIds(statement, ids) : status;
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

int CollectIdRange(const Target& target, const CDatabase& database, const RecordIdQuery& query,
                   std::vector<UINT32>& ids) {
    CStatement statement(database);
    int status = statement.Prepare(
        RangeStatement(target.Table(), {kUserIdColumn, kLogKindColumn}, kActionLogIdColumn));
    if (status == kSqliteOk) {
        status = CBinder(statement)
                     .Integer(query.userId)
                     .Integer(target.logKind)
                     .Integer(query.firstId)
                     .Integer(query.lastId)
                     .Result();
    }
    return status == kSqliteOk ? CollectIds(statement, ids) : status;
}

int CollectWrappedRange(const Target& target, const CDatabase& database, const RecordIdQuery& query,
                        std::vector<UINT32>& ids) {
    const std::wstring table = target.Table();
    DATE start = kEarliestTime;
    DATE end = kLatestTime;
    // One state of the file for all three, and one wait. It ends when the database is closed.
    int status = ExecuteStatement(database, L"BEGIN");
    if (status == kSqliteOk) status = ReadLoggedTime(database, table, query.firstId, start);
    if (status == kSqliteOk) status = ReadLoggedTime(database, table, query.lastId, end);
    if (status != kSqliteOk) return status;
    CStatement statement(database);
    status = statement.Prepare(
        RangeStatement(table, {kUserIdColumn, kLogKindColumn}, kPluginLoggedTimeColumn));
    if (status == kSqliteOk) {
        status = CBinder(statement)
                     .Integer(query.userId)
                     .Integer(target.logKind)
                     .Real(start)
                     .Real(end)
                     .Result();
    }
    return status == kSqliteOk ? CollectIds(statement, ids) : status;
}

} // namespace

RecordIdQuery ReadRecordIdQuery(ITslParamContainer& container) {
    RecordIdQuery query;
    query.isIdRange = HasIdRangeKey(container);
    query.userRead = ReadUserId(container, query.userId);
    if (query.userRead != S_OK) return query;
    // A failure to read the first bound is not looked at.
    if (query.isIdRange) {
        ReadBound(container, kKeyFirstRecordId, query.firstId);
        query.endRead = ReadBound(container, kKeyLastRecordId, query.lastId);
    } else {
        ReadBound(container, kKeyStartTime, query.start);
        query.endRead = ReadBound(container, kKeyEndTime, query.end);
    }
    return query;
}

HRESULT FindRecordIds(const CActionLogStore& store, const Target& target,
                      const RecordIdQuery& query, std::vector<UINT32>& ids) {
    const CTableSession session(store, target);
    if (!session.IsOpen()) return session.Opened();
    const CDatabase& database = session.Database();
    if (query.isIdRange) {
        if (query.userRead != S_OK) return query.userRead;
        RaiseCounterForFirstId(store, query.firstId);
        if (FAILED(query.endRead)) return query.endRead;
    } else if (query.userRead != S_OK || FAILED(query.endRead)) {
        return S_FALSE; // a failure to read the user or the end of the times is no answer
    }
    const auto collect = !query.isIdRange                         ? CollectTimeRange
                         : IsWrapped(query.firstId, query.lastId) ? CollectWrappedRange
                                                                  : CollectIdRange;
    return SuccessAsOk(SqliteResultToHresult(collect(target, database, query, ids)));
}

} // namespace tsl
