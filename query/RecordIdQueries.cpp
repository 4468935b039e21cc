// The queries that answer with record ids.
#include <optional>
#include <vector>

#include "query/IdColumn.h"
#include "query/IdListAnswer.h"
#include "query/RecordIdQuery.h"
#include "query/RecordQueries.h"
#include "store/Binder.h"
#include "store/SqliteResult.h"
#include "store/TargetSession.h"

namespace tsl {

namespace {

HRESULT FindAllRecordIds(const CActionLogStore& store, const Target& target,
                         std::vector<UINT64>& ids) {
    // Before anything is opened: finding the user may wait for another process.
    UINT32 userId = 0;
    const HRESULT user = ImpliedUserId(target.logKind, userId);
    const CTableSession session(store, target);
    if (!session.IsOpen()) return session.Opened();
    if (FAILED(user)) return user;

    CStatement statement(session.Database());
    int status = statement.Prepare(L"SELECT * FROM " + target.Table() + L" WHERE " + kUserIdColumn +
                                   L" = ? AND " + kActionLogIdColumn + L" BETWEEN ? AND ?");
    if (status == kSqliteOk) {
        status = CBinder(statement)
                     .Integer(userId)
                     .Integer(kFirstRecordId)
                     .Integer(kLastRecordId)
                     .Result();
    }
    if (status == kSqliteOk) status = CollectIds(statement, ids);
    return SqliteResultToHresult(status);
}

} // namespace

HRESULT QueryRecordIds(const CActionLogStore& store, const Target& target,
                       ITslParamContainer* container, VARIANT* result) {
    if (!store.Engine() || !container || !result) return E_POINTER;
    const RecordIdQuery query = ReadRecordIdQuery(*container);
    std::vector<UINT32> ids;
    HRESULT found = S_OK;
    {
        std::optional<CMutexGuard> lock;
        if (query.isIdRange) {
            lock.emplace(store.SqliteAccessLock(), kSqliteAccessTimeoutMilliseconds);
        }
        found = FindRecordIds(store, target, query, ids);
    }
    if (found == S_FALSE) return S_OK;
    return FAILED(found) ? found : AnswerIds(ids, result);
}

HRESULT QueryAllRecordIds(const CActionLogStore& store, const Target& target,
                          ITslParamContainer* /*container*/, VARIANT* result) {
    if (!store.Engine() || !result) return E_POINTER;
    std::vector<UINT64> ids;
    const HRESULT found = FindAllRecordIds(store, target, ids);
    return FAILED(found) ? found : AnswerAllIds(ids, result);
}

} // namespace tsl
