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

template <class Bound>
void CFloor::DeleteRange(const wchar_t* column, Bound first, Bound last) const {
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, m_actionLog);
    const std::wstring text =
        std::wstring(L"DELETE FROM TslIf_DbActionLog WHERE UserId = ? AND LogKind = ? AND ")
            .append(column)
            .append(L" BETWEEN ? AND ?");
    CFloorStatement(database, text)
        .Bind(sqlite3_int64{kUser})
        .Bind(sqlite3_int64{1})
        .Bind(first)
        .Bind(last)
        .Step();
}

void CFloor::DeleteIdRange(UINT32 first, UINT32 last) const {
    DeleteRange(L"ActionLogId", sqlite3_int64{first}, sqlite3_int64{last});
}

void CFloor::DeleteTimeRange(DATE first, DATE last) const {
    DeleteRange(L"PluginLoggedTime", first, last);
}

} // namespace tsl::bench
