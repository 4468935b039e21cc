// The three tables that actions go to: filled and read with an engine of the tests' own.
#pragma once

#include <filesystem>
#include <string>

#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

inline std::filesystem::path FileOf(const std::string& table) {
    return table == kReplayRows ? ReplayPath() : ActionLogPath();
}

inline int CountRowsOf(const std::string& table) {
    return CountRows(FileOf(table), table);
}

inline int CountRowsWhere(const std::string& table, const std::string& condition) {
    return std::stoi(
        FileDatabase(FileOf(table)).Value("SELECT count(*) FROM " + table + " WHERE " + condition));
}

// The ids of the rows in ascending order, with a blank between; empty when there is no such table.
inline std::string IdsIn(const std::string& table) {
    std::string ids;
    if (CountRowsOf(table) == 0) return ids;
    for (const Row& row : FileDatabase(FileOf(table))
                              .Query("SELECT ActionLogId FROM " + table + " ORDER BY ActionLogId"))
        ids += (ids.empty() ? "" : " ") + row[0].value_or("NULL");
    return ids;
}

// The parameter text of the one row of a record.
inline std::string ParametersOf(const std::string& table, UINT32 recordId) {
    return FileDatabase(FileOf(table))
        .Value("SELECT ActionParameters FROM " + table +
               " WHERE ActionLogId = " + std::to_string(recordId));
}

// Rows of one user with ids from the first on.
struct Filling {
    INT64 firstId = 1001;
    int count = 1000;
    INT64 user = 7;
    INT64 logKind = 1;
    double time = 45000.0; // of the plug-in
};

// Adds rows to a table that is there. The file is left as an older version writes it, without a
// mark of its highest id.
inline void Fill(const std::string& table, const Filling& rows) {
    const std::string time = std::to_string(rows.time);
    const FileDatabase file(FileOf(table));
    file.Query("WITH RECURSIVE ids(id) AS (SELECT " + std::to_string(rows.firstId) +
               " UNION ALL SELECT id + 1 FROM ids LIMIT " + std::to_string(rows.count) +
               ") INSERT INTO " + table +
               "(ActionLogId,UsedLog,AppId,UserId,ActionName,ActionParameters,AppLoggedTime,"
               "PluginLoggedTime,PreLoggedTime,LogKind) SELECT id,0,3," +
               std::to_string(rows.user) + ",'filled',''," + time + "," + time + ",0.0," +
               std::to_string(rows.logKind) + " FROM ids");
    file.Query("PRAGMA user_version = 0");
}

// Empties the three tables, which must be there.
inline void EmptyTables() {
    for (const char* const table : {kActionLogRows, kTakenRows, kReplayRows}) {
        const FileDatabase file(FileOf(table));
        file.Query(std::string("DELETE FROM ") + table);
        file.Query("PRAGMA user_version = 0");
    }
}

} // namespace tsl::test
