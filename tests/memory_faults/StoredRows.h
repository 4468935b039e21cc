// The rows of a table, to be compared as wholes.
#pragma once

#include <string>
#include <vector>

#include "tests/query/QueryFixture.h"

namespace tsl::test {

// All rows of a record, without the id and the plug-in's own time: what records that were made
// alike have in common. None when there is no such file or table.
inline std::vector<Row> RowsOf(const std::filesystem::path& database, const std::string& table,
                               UINT32 recordId) {
    if (CountRows(database, table) == 0) return {};
    return FileDatabase(database).Query(
        "SELECT UsedLog, AppId, AppName, UserId, ActionName, ActionParameters, AppLoggedTime, "
        "PreActionName, PreActionParameters, PreLoggedTime, LogKind FROM " +
        table + " WHERE ActionLogId = " + std::to_string(recordId));
}

// The ids in a table, in ascending order, with a blank between.
inline std::string IdsIn(const std::filesystem::path& database, const std::string& table) {
    if (CountRows(database, table) == 0) return {};
    return FileDatabase(database).Value(
        "SELECT group_concat(ActionLogId, ' ') FROM (SELECT * FROM " + table +
        " ORDER BY ActionLogId)");
}

} // namespace tsl::test
