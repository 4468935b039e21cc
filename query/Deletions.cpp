#include "query/Deletions.h"

#include "component/host/ParamKeys.h"
#include "query/ContainerValues.h"
#include "query/RangeArguments.h"
#include "store/Binder.h"
#include "store/SqliteResult.h"

namespace tsl {

namespace {

// Prepares the statement, binds it by bind, and runs it. Returns the engine's result.
template <class Bind>
int RunDeletion(const CDatabase& database, const std::wstring& text, Bind bind) {
    CStatement statement(database);
    int result = statement.Prepare(text);
    if (result == kSqliteOk) {
        CBinder binder(statement);
        bind(binder);
        result = binder.Result();
    }
    return result == kSqliteOk ? statement.Run() : result;
}

std::wstring RangeText(const CActionLogStore& store, const wchar_t* rangeColumn) {
    return L"DELETE FROM " + store.SelectedTable() + L" WHERE " + kUserIdColumn + L" = ? AND " +
           kLogKindColumn + L" = ? AND " + rangeColumn + L" BETWEEN ? AND ?";
}

// The user comes from the kind of log, never from the container.
HRESULT DeleteOne(CActionLogStore& store, UINT64 recordId) {
    if (!store.Engine()) return E_POINTER;
    // Before the lock is taken: finding the user may wait for another process.
    UINT32 userId = 0;
    const HRESULT user = ImpliedUserId(store.LogKind(), userId);
    if (FAILED(user)) return user;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    const int result = RunDeletion(
        database,
        L"DELETE FROM " + store.SelectedTable() + L" WHERE " + kUserIdColumn + L" = ? AND " +
            kActionLogIdColumn + L" IN (?)",
        [&](CBinder& binder) { binder.Integer(userId).Integer(static_cast<INT64>(recordId)); });
    return SuccessAsOk(SqliteResultToHresult(result));
}

HRESULT DeleteIdRange(CActionLogStore& store, ITslParamContainer& container) {
    if (!store.Engine()) return E_POINTER;
    UINT32 first = kFirstRecordId;
    UINT32 last = kLastRecordId;
    ReadBound(container, kKeyFirstRecordId, first);
    ReadBound(container, kKeyLastRecordId, last);
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CDatabase database;
    if (FAILED(store.OpenSelected(&database)) || !database) return E_POINTER;
    UINT32 userId = 0;
    const HRESULT user = ReadUserId(container, userId);
    if (user != S_OK) return FAILED(user) ? user : S_OK;
    const int result =
        RunDeletion(database, RangeText(store, kActionLogIdColumn), [&](CBinder& binder) {
            binder.Integer(userId).Integer(store.LogKind()).Integer(first).Integer(last);
        });
    return result == kSqliteOk ? S_OK : E_POINTER;
}

HRESULT DeleteTimeRange(CActionLogStore& store, ITslParamContainer& container) {
    if (!store.Engine()) return E_POINTER;
    DATE start = kEarliestTime;
    DATE end = kLatestTime;
    ReadBound(container, kKeyStartTime, start);
    const HRESULT endRead = ReadBound(container, kKeyEndTime, end);
    if (FAILED(endRead)) return endRead;
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    CDatabase database;
    const HRESULT opened = store.OpenSelected(&database);
    if (FAILED(opened) || !database) return opened;
    UINT32 userId = 0;
    const HRESULT user = ReadUserId(container, userId);
    if (user != S_OK) return FAILED(user) ? user : S_OK;
    const int result =
        RunDeletion(database, RangeText(store, kPluginLoggedTimeColumn), [&](CBinder& binder) {
            binder.Integer(userId).Integer(store.LogKind()).Real(start).Real(end);
        });
    return SuccessAsOk(SqliteResultToHresult(result));
}

} // namespace

HRESULT DeleteRecords(CActionLogStore& store, ITslParamContainer* container) {
    if (!container) return E_INVALIDARG;
    const bool idRange = HasIdRangeKey(*container);
    CVariant recordId;
    if (container->GetValue(kKeyRecordToTake, recordId.Address()) == S_OK &&
        recordId.Type() == VT_UI8) {
        return DeleteOne(store, recordId.Get().ullVal);
    }
    return idRange ? DeleteIdRange(store, *container) : DeleteTimeRange(store, *container);
}

} // namespace tsl
