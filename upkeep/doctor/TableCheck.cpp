#include "upkeep/doctor/TableCheck.h"

namespace tsl {

namespace {

std::string Rows(INT64 count) {
    return std::to_string(count) + (count == 1 ? " row" : " rows");
}

} // namespace

TableIds CheckTable(const CConnection& connection, const std::string& table,
                    const std::string& subject, Findings& findings) {
    const TableIds ids = ReadTableIds(connection, table);
    if (ids.withId < ids.rows) {
        findings.push_back(Damaged(
            subject, table + ": the id of " + Rows(ids.rows - ids.withId) + " is no record id",
            kRecover));
    }
    if (ids.distinct < ids.withId) {
        findings.push_back(Damaged(subject,
                                   table + ": " + Rows(ids.withId - ids.distinct) +
                                       " more than there are ids: records are there twice",
                                   kRecover));
    }
    if (ids.AreWhole()) {
        const std::string span = ids.rows == 0 ? ""
                                               : ", ids " + std::to_string(ids.lowest) + " to " +
                                                     std::to_string(ids.highest);
        findings.push_back(Fine(subject, table + ": " + Rows(ids.rows) + span));
    }
    return ids;
}

} // namespace tsl
