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

// Keeps the rows of a table beside it.
inline void KeepCopy(const std::filesystem::path& database, const std::string& table) {
    FileDatabase(database).Query("CREATE TABLE Copy AS SELECT * FROM " + table);
}

// Puts the kept rows back in the place of those that are there.
inline void PutBackCopy(const std::filesystem::path& database, const std::string& table) {
    FileDatabase(database).Query("BEGIN; DELETE FROM " + table + "; INSERT INTO " + table +
                                 " SELECT * FROM Copy; COMMIT");
}

} // namespace tsl::test
