#include "upkeep/recovery/FoundTable.h"

#include <sqlite3.h>

#include <utility>

#include "upkeep/TableIds.h"

namespace tsl {

namespace {

// The columns of a row in the temporary table, which take every kind of value as it is.
std::string Values() {
    std::string text;
    for (size_t index = 0; index < kActionColumns.size(); ++index)
        text.append(index == 0 ? "v" : ",v").append(std::to_string(index));
    return text;
}

// The name of the temporary table.
std::string CreateFound(const CConnection& fresh, const std::string& table) {
    const std::string found = "temp.found_" + table;
    const std::string index = "CREATE INDEX " + found;
    const std::string on = " ON found_" + table;
    fresh.Execute("CREATE TABLE " + found + " (place INTEGER PRIMARY KEY, row, source, whole, " +
                  Values() + ");" + index + "_rows" + on + " (row);" + index + "_ids" + on +
                  " (v0)");
    return found;
}

std::string InsertText(const std::string& found) {
    std::string text =
        "INSERT INTO " + found + " (row, source, whole, " + Values() + ") VALUES (?,?,?";
    for (size_t index = 0; index < kActionColumns.size(); ++index)
        text += ",?";
    return text + ')';
}

bool IsFound(CQuery& query) {
    const bool isFound = query.Step();
    query.Reset();
    return isFound;
}

} // namespace

UINT64 LeastStoredSize(const StoredRow& row) noexcept {
    // A pointer to the cell, two numbers, and the types of the values.
    constexpr UINT64 kAround = 5;
    UINT64 size = kAround + row.values.size();
    for (const StoredValue& value : row.values) {
        if (const auto* const text = std::get_if<std::string>(&value)) size += text->size();
        if (const auto* const blob = std::get_if<BlobValue>(&value)) size += blob->bytes.size();
    }
    return size;
}

CFoundTable::CFoundTable(const CConnection& fresh, std::string table, UINT64& room)
    : m_fresh(fresh), m_table(std::move(table)), m_found(CreateFound(m_fresh, m_table)),
      m_room(room), m_insert(m_fresh, InsertText(m_found)),
      m_sameRow(m_fresh, "SELECT 1 FROM " + m_found + " WHERE row = ? AND +v0 IS ?"),
      m_sameRecord(m_fresh, "SELECT 1 FROM " + m_found + " WHERE v0 IS ?") {}

bool CFoundTable::Add(const StoredRow& row, RowSource source) {
    const UINT64 size = LeastStoredSize(row);
    if (size > m_room || HasRow(row)) return false;
    m_room -= size;
    m_insert.Bind(row.rowId).Bind(static_cast<INT64>(source)).Bind(INT64{row.whole});
    for (const StoredValue& value : row.values)
        m_insert.BindValue(value);
    m_insert.Step();
    m_insert.Reset();
    return true;
}

bool CFoundTable::HasRow(const StoredRow& row) {
    return IsFound(m_sameRow.Bind(row.rowId).BindValue(row.values[kActionLogIdIndex]));
}

bool CFoundTable::HasRecord(const StoredRow& row) {
    return IsFound(m_sameRecord.BindValue(row.values[kActionLogIdIndex]));
}

UINT64 CFoundTable::Execute(const std::string& statement) const {
    m_fresh.Execute(statement);
    return static_cast<UINT64>(sqlite3_changes64(m_fresh.Get()));
}

SavedRows CFoundTable::Write(UINT32 highestHandedOut) {
    SavedRows saved;
    const std::string isId = IsRecordId("v0");
    // The component can never reach a row without an id.
    saved.unbelievable = Execute("DELETE FROM " + m_found + " WHERE NOT " + isId);
    saved.unbelievable += Execute(
        "DELETE FROM " + m_found + " WHERE NOT whole AND v0 > " + std::to_string(highestHandedOut) +
        " AND v0 > (SELECT ifnull(max(v0), 0) FROM " + m_found + " WHERE whole AND " + isId + ")");
    saved.superseded =
        Execute("DELETE FROM " + m_found +
                " WHERE place IN (SELECT place FROM (SELECT place, row_number() "
                "OVER (PARTITION BY v0 ORDER BY whole DESC, row DESC, source, place) AS nth FROM " +
                m_found + " WHERE " + isId + ") WHERE nth > 1)");
    saved.incomplete =
        static_cast<UINT64>(m_fresh.Number("SELECT count(*) FROM " + m_found + " WHERE NOT whole"));
    saved.saved = Execute("INSERT INTO main." + m_table + " SELECT " + Values() + " FROM " +
                          m_found + " ORDER BY row, place");
    return saved;
}

} // namespace tsl
