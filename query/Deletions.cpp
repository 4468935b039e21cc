#include "query/Deletions.h"

#include <functional>

#include "component/host/ParamKeys.h"
#include "query/ContainerValues.h"
#include "query/RangeArguments.h"
#include "store/Binder.h"
#include "store/SqliteResult.h"
#include "store/TargetSession.h"

namespace tsl {

namespace {

// A deletion whose request has been read.
struct Deletion {
    // As ReadUserId answers. What is not S_OK is told after a failure to open, when file and table
    // have come into being.
    HRESULT userRead = S_OK;
    // What the rows must meet besides being the user's, with a placeholder for each value bound.
    std::wstring condition;
    // Whether each failure of the database is told as E_POINTER.
    bool hidesFailures = false;
};

int DeleteRows(const Target& target, const CDatabase& database, const Deletion& deletion,
               const std::function<void(CBinder&)>& bind) {
    CStatement statement(database);
    int result = statement.Prepare(L"DELETE FROM " + target.Table() + L" WHERE " + kUserIdColumn +
                                   L" = ? AND " + deletion.condition);
    if (result == kSqliteOk) {
        CBinder binder(statement);
        bind(binder);
        result = binder.Result();
    }
    return result == kSqliteOk ? statement.Run() : result;
}

HRESULT RunDeletion(const CActionLogStore& store, const Target& target, const Deletion& deletion,
                    const std::function<void(CBinder&)>& bind) {
    const auto told = [&](HRESULT failure) { return deletion.hidesFailures ? E_POINTER : failure; };
    const CMutexGuard lock(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
    const CTableSession session(store, target);
    if (!session.IsOpen()) return told(session.Opened());
    if (deletion.userRead != S_OK) return SuccessAsOk(deletion.userRead);
    const HRESULT deleted =
        SqliteResultToHresult(DeleteRows(target, session.Database(), deletion, bind));
    return FAILED(deleted) ? told(deleted) : S_OK;
}

std::wstring RangeOf(const wchar_t* column) {
    return std::wstring(kLogKindColumn) + L" = ? AND " + column + L" BETWEEN ? AND ?";
}

// The user comes from the kind of log, never from the container.
HRESULT DeleteOne(const CActionLogStore& store, const Target& target, UINT64 recordId) {
    if (!store.Engine()) return E_POINTER;
    // Before the lock is taken: finding the user may wait for another process.
    UINT32 userId = 0;
    const HRESULT user = ImpliedUserId(target.logKind, userId);
    if (FAILED(user)) return user;
    const Deletion deletion{.condition = std::wstring(kActionLogIdColumn) + L" IN (?)"};
    return RunDeletion(store, target, deletion, [&](CBinder& binder) {
        binder.Integer(userId).Integer(static_cast<INT64>(recordId));
    });
}

HRESULT DeleteIdRange(const CActionLogStore& store, const Target& target,
                      ITslParamContainer& container) {
    if (!store.Engine()) return E_POINTER;
    UINT32 first = kFirstRecordId;
    UINT32 last = kLastRecordId;
    ReadBound(container, kKeyFirstRecordId, first);
    ReadBound(container, kKeyLastRecordId, last);
    UINT32 userId = 0;
    const Deletion deletion{.userRead = ReadUserId(container, userId),
                            .condition = RangeOf(kActionLogIdColumn),
                            .hidesFailures = true};
    return RunDeletion(store, target, deletion, [&](CBinder& binder) {
        binder.Integer(userId).Integer(target.logKind).Integer(first).Integer(last);
    });
}

HRESULT DeleteTimeRange(const CActionLogStore& store, const Target& target,
                        ITslParamContainer& container) {
    if (!store.Engine()) return E_POINTER;
    DATE start = kEarliestTime;
    DATE end = kLatestTime;
    ReadBound(container, kKeyStartTime, start);
    const HRESULT endRead = ReadBound(container, kKeyEndTime, end);
    if (FAILED(endRead)) return endRead;
    UINT32 userId = 0;
    const Deletion deletion{.userRead = ReadUserId(container, userId),
                            .condition = RangeOf(kPluginLoggedTimeColumn)};
    return RunDeletion(store, target, deletion, [&](CBinder& binder) {
        binder.Integer(userId).Integer(target.logKind).Real(start).Real(end);
    });
}

} // namespace

HRESULT DeleteRecords(const CActionLogStore& store, const Target& target,
                      ITslParamContainer* container) {
    if (!container) return E_INVALIDARG;
    const bool idRange = HasIdRangeKey(*container);
    CVariant recordId;
    if (container->GetValue(kKeyRecordToTake, recordId.Address()) == S_OK &&
        recordId.Type() == VT_UI8) {
        return DeleteOne(store, target, recordId.Get().ullVal);
    }
    return idRange ? DeleteIdRange(store, target, *container)
                   : DeleteTimeRange(store, target, *container);
}

} // namespace tsl
