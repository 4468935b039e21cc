#include "bench/floor/Floor.h"

#include <string_view>

#include "bench/support/Actions.h"
#include "bench/support/Tables.h"
#include "console/StorePlace.h"

namespace tsl::bench {

namespace {

constexpr std::wstring_view kReplaceColumns =
    L" (ActionLogId,UsedLog,AppId,AppName,UserId,ActionName,ActionParameters,AppLoggedTime,"
    L"PluginLoggedTime,PreActionName,PreActionParameters,PreLoggedTime,LogKind) "
    L"VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?)";

FloorTable Table(const std::wstring& path, const wchar_t* name) {
    return {std::string(path.begin(), path.end()), CreateText(name), name};
}

} // namespace

CFloor::CFloor(const CEngine& engine, const CPreparation* preparation)
    : m_engine(engine), m_preparation(preparation),
      m_actionLog(Table(ActionLogPath(), kActionLogTable)),
      m_kept(Table(ActionLogPath(), kKeptTable)), m_replay(Table(ReplayLogPath(), kReplayTable)),
      m_counterPath(CounterFilePath()) {}

void CFloor::Write(const FloorTable& table, const FloorRecord& record) const {
    const CPreparedWork work = Prepare(kSqliteAccess);
    const CFloorDatabase database(m_engine, table);
    SYSTEMTIME now;
    double time = 0.0;
    GetSystemTime(&now);
    SystemTimeToVariantTime(&now, &time);
    constexpr const wchar_t* kNull = nullptr;
    const std::wstring text = std::wstring(L"REPLACE INTO ").append(table.name) += kReplaceColumns;
    CFloorStatement(database, text)
        .Bind(sqlite3_int64{record.recordId})
        .Bind(sqlite3_int64{0})
        .Bind(sqlite3_int64{3})
        .Bind(kNull)
        .Bind(sqlite3_int64{kUser})
        .Bind(record.name)
        .Bind(record.parameters)
        .Bind(45'000.5)
        .Bind(time)
        .Bind(kNull)
        .Bind(kNull)
        .Bind(0.0)
        .Bind(sqlite3_int64{1})
        .Step();
}

} // namespace tsl::bench
