#include "upkeep/statistics/FetchedRows.h"

#include <sqlite3.h>

#include <filesystem>

#include "console/Failure.h"
#include "console/Text.h"
#include "store/Schema.h"
#include "upkeep/StoreLock.h"
#include "upkeep/WholeDatabase.h"
#include "upkeep/statistics/Calendar.h"

namespace tsl {

namespace {

// The copy has the name of the table, in the database of temporary tables.
std::string CopyOf(std::wstring_view table) {
    return "temp." + ToUtf8(TableName(kTablePrefix, table));
}

// Times that are dates from 1900 to 9999, else NULL: texts and blobs are above every number.
constexpr char kTimeIfDate[] =
    "CASE WHEN PluginLoggedTime >= 2.0 AND PluginLoggedTime < 2958466.0 THEN PluginLoggedTime END";

// Whole hours since 30 December 1899. A third of a millisecond is added, for the times of full
// hours are stored a little too low.
constexpr char kHour[] = "MIN(CAST(PluginLoggedTime * 24.0 + 1e-7 AS INTEGER), 71003183)";

std::optional<std::int64_t> NumberIn(const CQuery& query, int column) {
    const std::int64_t number = query.Int64(column);
    return query.Text(column) ? std::optional(number) : std::nullopt;
}

std::optional<double> TimeIn(const CQuery& query, int column) {
    const double time = query.Double(column);
    return query.Text(column) ? std::optional(time) : std::nullopt;
}

CFailure FailureToRead(const CSqliteError& error, const std::wstring& path) {
    // Whoever only reads may not undo what is left of a change.
    if (error.Result() == SQLITE_READONLY)
        return CFailure(ExitCode::Denied,
                        "cannot read " + ToUtf8(path) +
                            ": a change to it was interrupted; tslhost list undoes it");
    return FailureOf("cannot read", path, error);
}

// False when the file has no such table.
bool PrepareTable(const CConnection& connection, const std::string& name) {
    const CDatabaseLock lock;
    CQuery schema(connection,
                  "SELECT 1 FROM main.sqlite_schema WHERE type = 'table' AND name = ?1 COLLATE "
                  "NOCASE");
    if (!schema.Bind(name).Step()) return false;
    connection.Execute("CREATE TEMP TABLE " + name +
                       " (ActionLogId, UserId, AppId, ActionName, PluginLoggedTime)");
    return true;
}

// Rows keep their numbers, so that it is known where to go on. False when there is no other row.
bool FetchPortion(const CConnection& connection, const std::string& name) {
    constexpr INT64 kPortion = 10'000;
    const INT64 last =
        connection.Number("SELECT ifnull(MAX(rowid), -9223372036854775807) FROM temp." + name);
    const CDatabaseLock lock;
    CQuery copy(connection,
                "INSERT INTO temp." + name +
                    " (rowid, ActionLogId, UserId, AppId, ActionName, PluginLoggedTime) SELECT "
                    "rowid, ActionLogId, UserId, AppId, ActionName, " +
                    kTimeIfDate + " FROM main." + name +
                    " WHERE rowid > ?1 ORDER BY rowid LIMIT ?2");
    copy.Bind(last).Bind(kPortion).Step();
    return connection.Number("SELECT changes()") == kPortion;
}

void FetchTable(const CConnection& connection, const std::string& name) {
    if (!PrepareTable(connection, name)) return;
    while (FetchPortion(connection, name)) {
    }
}

bool HasFetched(const CConnection& connection, std::wstring_view table) {
    CQuery schema(connection, "SELECT 1 FROM temp.sqlite_schema WHERE name = ?1");
    return schema.Bind(ToUtf8(TableName(kTablePrefix, table))).Step();
}

std::vector<Tally> CountBy(const CConnection& connection, std::wstring_view column,
                           const std::string& rows) {
    std::vector<Tally> tallies;
    CQuery query(connection, "SELECT ifnull(" + ToUtf8(column) + ", ''), COUNT(*) FROM " + rows +
                                 " GROUP BY 1 ORDER BY 2 DESC, 1");
    while (query.Step())
        tallies.push_back({RepairUtf8(query.Text(0).value_or("")), query.Int64(1)});
    return tallies;
}

// One pass serves the days and the hours of the week.
void CountByHour(const CConnection& connection, const std::string& rows, StoreFigures& figures) {
    const std::string hourOfTime = kHour;
    CQuery query(connection, "SELECT " + hourOfTime + ", COUNT(*) FROM " + rows +
                                 " WHERE PluginLoggedTime IS NOT NULL GROUP BY 1 ORDER BY 1");
    while (query.Step()) {
        const int hour = static_cast<int>(query.Int64(0));
        const int day = hour / 24;
        const std::int64_t records = query.Int64(1);
        if (figures.days.empty() || figures.days.back().day != day) figures.days.push_back({day});
        figures.days.back().records += records;
        figures.hours[WeekdayOf(day)][static_cast<size_t>(hour % 24)] += records;
    }
}

} // namespace

bool CFetchedRows::Fetch(const std::wstring& path,
                         std::initializer_list<std::wstring_view> tables) {
    std::error_code missing;
    if (!std::filesystem::exists(path, missing)) return false;
    try {
        const CConnection& connection = Open(path);
        for (const std::wstring_view table : tables)
            FetchTable(connection, ToUtf8(TableName(kTablePrefix, table)));
    } catch (const CSqliteError& error) {
        throw FailureToRead(error, path);
    }
    return true;
}

const CConnection& CFetchedRows::Open(const std::wstring& path) {
    const CDatabaseLock lock;
    const CConnection& connection = m_connection.emplace(path, AccessToRead(path));
    connection.Execute("PRAGMA temp_store = MEMORY");
    m_pages = connection.Number("PRAGMA main.page_count");
    m_freePages = connection.Number("PRAGMA main.freelist_count");
    return connection;
}

TableFigures CFetchedRows::CountTable(std::wstring_view table) const {
    TableFigures figures;
    figures.name = ToUtf8(TableName(kTablePrefix, table));
    if (!m_connection || !HasFetched(*m_connection, table)) return figures;
    CQuery query(*m_connection,
                 "SELECT COUNT(*), COUNT(*) - COUNT(PluginLoggedTime), MIN(ActionLogId), "
                 "MAX(ActionLogId), MIN(PluginLoggedTime), MAX(PluginLoggedTime) FROM " +
                     CopyOf(table));
    query.Step();
    figures.records = query.Int64(0);
    figures.undated = query.Int64(1);
    figures.firstId = NumberIn(query, 2);
    figures.lastId = NumberIn(query, 3);
    figures.firstTime = TimeIn(query, 4);
    figures.lastTime = TimeIn(query, 5);
    return figures;
}

void CFetchedRows::CountRecords(std::wstring_view table, StoreFigures& figures) const {
    if (!m_connection || !HasFetched(*m_connection, table)) return;
    const std::string rows = CopyOf(table);
    figures.users = CountBy(*m_connection, kUserIdColumn, rows);
    figures.applications = CountBy(*m_connection, kActionColumns[kAppIdIndex].name, rows);
    figures.actions = CountBy(*m_connection, kActionNameColumn, rows);
    CountByHour(*m_connection, rows, figures);
}

} // namespace tsl
