#include "bench/floor/Floor.h"

#include "bench/support/Actions.h"

namespace tsl::bench {

void CFloor::DeleteOne(UINT32 recordId) const {
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, m_actionLog);
    CFloorStatement(database,
                    L"DELETE FROM TslIf_DbActionLog WHERE UserId = ? AND ActionLogId IN (?)")
        .Bind(sqlite3_int64{kUser})
        .Bind(sqlite3_int64{recordId})
        .Step();
}

void CFloor::DeleteIdRange(UINT32 first, UINT32 last) const {
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, m_actionLog);
    CFloorStatement(database, L"DELETE FROM TslIf_DbActionLog WHERE UserId = ? AND LogKind = ? AND "
                              L"ActionLogId BETWEEN ? AND ?")
        .Bind(sqlite3_int64{kUser})
        .Bind(sqlite3_int64{1})
        .Bind(sqlite3_int64{first})
        .Bind(sqlite3_int64{last})
        .Step();
}

void CFloor::DeleteTimeRange(DATE first, DATE last) const {
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, m_actionLog);
    CFloorStatement(database, L"DELETE FROM TslIf_DbActionLog WHERE UserId = ? AND LogKind = ? AND "
                              L"PluginLoggedTime BETWEEN ? AND ?")
        .Bind(sqlite3_int64{kUser})
        .Bind(sqlite3_int64{1})
        .Bind(first)
        .Bind(last)
        .Step();
}

} // namespace tsl::bench
