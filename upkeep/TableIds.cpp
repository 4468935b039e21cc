#include "upkeep/TableIds.h"

namespace tsl {

std::string IsRecordId(const std::string& column) {
    return "(typeof(" + column + ") = 'integer' AND " + column + " BETWEEN 1 AND 4294967295)";
}

TableIds ReadTableIds(const CConnection& connection, const std::string& table) {
    const std::string id = "CASE WHEN " + IsRecordId("ActionLogId") + " THEN ActionLogId END";
    CQuery query(connection, "SELECT COUNT(*), COUNT(" + id + "), COUNT(DISTINCT " + id +
                                 "), MIN(" + id + "), MAX(" + id + ") FROM " + table);
    query.Step();
    return {query.Int64(0), query.Int64(1), query.Int64(2), query.Uint32(3), query.Uint32(4)};
}

} // namespace tsl
