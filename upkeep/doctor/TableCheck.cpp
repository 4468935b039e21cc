#include "upkeep/doctor/TableCheck.h"

namespace tsl {

namespace {

constexpr char kIsId[] = "typeof(ActionLogId) = 'integer' AND ActionLogId BETWEEN 1 AND 4294967295";

std::string FiguresQuery(const std::string& table) {
    const std::string id = std::string("CASE WHEN ") + kIsId + " THEN ActionLogId END";
    return "SELECT COUNT(*), COUNT(" + id + "), COUNT(DISTINCT " + id + "), MIN(" + id + "), MAX(" +
           id + ") FROM " + table;
}

std::string Rows(INT64 count) {
    return std::to_string(count) + (count == 1 ? " row" : " rows");
}

} // namespace

TableFigures CheckTable(const CConnection& connection, const std::string& table,
                        const std::string& subject, Findings& findings) {
    CQuery query(connection, FiguresQuery(table));
    query.Step();
    const INT64 rows = query.Int64(0);
    const INT64 withId = query.Int64(1);
    const INT64 ids = query.Int64(2);
    if (withId < rows) {
        findings.push_back(Damaged(
            subject, table + ": the id of " + Rows(rows - withId) + " is no record id", kRecover));
    }
    if (ids < withId) {
        findings.push_back(Damaged(subject,
                                   table + ": " + Rows(withId - ids) +
                                       " more than there are ids: records are there twice",
                                   kRecover));
    }
    if (ids == rows) {
        const std::string span =
            rows == 0 ? ""
                      : ", ids " + query.Text(3).value_or("") + " to " + query.Text(4).value_or("");
        findings.push_back(Fine(subject, table + ": " + Rows(rows) + span));
    }
    return {rows, static_cast<UINT32>(query.Int64(4))};
}

} // namespace tsl
