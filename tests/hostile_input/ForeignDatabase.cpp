// Databases of somebody else's.
#include "tests/hostile_input/HostileDatabase.h"
#include "tests/support/FileDatabase.h"

namespace tsl::test {

namespace {

// The columns, all of one type, with more behind them.
std::string Columns(const std::string& type, const std::string& more = "") {
    std::string text;
    for (const char* const name :
         {"ActionLogId", "UsedLog", "AppId", "AppName", "UserId", "ActionName", "ActionParameters",
          "AppLoggedTime", "PluginLoggedTime", "PreActionName", "PreActionParameters",
          "PreLoggedTime", "LogKind"})
        text += (text.empty() ? "" : ",") + std::string(name) + " " + type;
    return "(" + text + more + ")";
}

std::string ManyColumns() {
    std::string more;
    for (int index = 0; index < 500; ++index)
        more += ",More" + std::to_string(index);
    return Columns("", more);
}

// NAME stands for the table's name.
std::vector<std::string> ForeignSchemas() {
    const std::string thirteen = "1,0,3,NULL,1,'playItem','ullValues={1,2}',1.5,1.5,NULL,NULL,0,1";
    return {
        "CREATE TABLE NAME (Text)",
        "CREATE TABLE NAME (ActionLogId, UserId, LogKind, PluginLoggedTime)",
        "CREATE TABLE NAME (ActionLogId INTEGER PRIMARY KEY, UserId); "
        "INSERT INTO NAME VALUES (1, 1), (2, 1)",
        "CREATE TABLE NAME " + Columns("BLOB") + "; INSERT INTO NAME VALUES (" + thirteen + ")",
        "CREATE TABLE NAME " + Columns("INTEGER") + "; INSERT INTO NAME VALUES (" + thirteen + ")",
        "CREATE TABLE NAME " + Columns("NOT NULL"),
        "CREATE TABLE NAME " + Columns("UNIQUE"),
        "CREATE TABLE NAME " + Columns("", ", PRIMARY KEY (ActionLogId)) WITHOUT ROWID --"),
        "CREATE TABLE NAME " + Columns("INTEGER", ", PRIMARY KEY (UserId, LogKind)) STRICT --"),
        "CREATE TABLE NAME " + Columns("", ", CHECK (ActionLogId > 1000)"),
        "CREATE TABLE NAME " + Columns("", ", Sum GENERATED ALWAYS AS (ActionLogId + UserId)"),
        "CREATE TABLE NAME " + Columns("", ", Sum AS (abs(-9223372036854775808)) STORED"),
        "CREATE TABLE NAME " + Columns("COLLATE NOCASE", ", Other NOT NULL"),
        "CREATE TABLE NAME " + Columns("") +
            "; PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = replace(sql, 'UserId', "
            "'UserId COLLATE nobody_knows')",
        "CREATE TABLE NAME " + ManyColumns(),
        "CREATE VIEW NAME AS SELECT 1 AS ActionLogId, 1 AS UserId",
        "CREATE VIEW NAME AS SELECT " + thirteen,
        "CREATE VIEW NAME AS WITH RECURSIVE n(ActionLogId) AS (SELECT 1 UNION ALL SELECT "
        "ActionLogId + 1 FROM n LIMIT 500) SELECT ActionLogId, 0, 3, NULL, 1 AS UserId, 'x', "
        "'ullValues={1,2}', 1.5, 1.5 AS PluginLoggedTime, NULL, NULL, 0, 1 AS LogKind FROM n",
        "CREATE VIEW NAME AS SELECT * FROM NAME",
        "CREATE VIEW NAME AS SELECT * FROM nobody_knows",
        "CREATE TABLE Base " + Columns("") +
            "; CREATE VIEW NAME AS SELECT * FROM Base; "
            "CREATE TRIGGER Into_NAME INSTEAD OF INSERT ON NAME BEGIN "
            "INSERT INTO Base (ActionLogId) VALUES (new.ActionLogId); END",
        "CREATE TABLE Base (a); CREATE INDEX NAME ON Base (a)",
        "CREATE TABLE NAME " + Columns("") +
            "; CREATE TRIGGER t BEFORE INSERT ON NAME BEGIN "
            "SELECT RAISE(ABORT, 'no'); END",
        "CREATE TABLE NAME " + Columns("") +
            "; CREATE TRIGGER t BEFORE INSERT ON NAME BEGIN "
            "SELECT RAISE(ROLLBACK, 'no'); END",
        "CREATE TABLE NAME " + Columns("") +
            "; CREATE TRIGGER t BEFORE INSERT ON NAME BEGIN "
            "SELECT RAISE(IGNORE); END",
        "CREATE TABLE NAME " + Columns("") +
            "; CREATE TRIGGER t AFTER INSERT ON NAME BEGIN "
            "DELETE FROM NAME; END",
        "CREATE TABLE NAME " + Columns("") +
            "; CREATE TRIGGER t AFTER INSERT ON NAME BEGIN "
            "INSERT INTO NAME SELECT * FROM NAME LIMIT 5; END",
        "CREATE TABLE NAME " + Columns("") + "; INSERT INTO NAME VALUES (" + thirteen +
            "); "
            "CREATE TRIGGER t BEFORE DELETE ON NAME BEGIN SELECT nobody_knows(1); END",
        "CREATE TABLE NAME " + Columns("") +
            "; CREATE INDEX i ON NAME (ActionLogId, UserId); "
            "INSERT INTO NAME VALUES (" +
            thirteen + "), (" + thirteen + ")",
        // what no statement makes
        "CREATE TABLE NAME " + Columns("") +
            "; PRAGMA writable_schema = ON; UPDATE sqlite_schema "
            "SET sql = 'CREATE VIRTUAL TABLE NAME USING nobody_knows(a)', rootpage = 0",
        "CREATE TABLE NAME " + Columns("") +
            "; PRAGMA writable_schema = ON; UPDATE sqlite_schema "
            "SET sql = 'CREATE TABLE NAME (ActionLogId'",
        "CREATE TABLE NAME " + Columns("") +
            "; PRAGMA writable_schema = ON; UPDATE sqlite_schema "
            "SET rootpage = 1",
        "CREATE TABLE NAME " + Columns("") +
            "; PRAGMA writable_schema = ON; UPDATE sqlite_schema "
            "SET rootpage = 77777",
        "CREATE TABLE NAME " + Columns("") +
            "; PRAGMA writable_schema = ON; UPDATE sqlite_schema "
            "SET type = 'view', sql = NULL",
        "CREATE TABLE NAME " + Columns("") +
            "; PRAGMA writable_schema = ON; INSERT INTO "
            "sqlite_schema SELECT * FROM sqlite_schema",
    };
}

constexpr const char* kPreludes[] = {"",
                                     "PRAGMA encoding = 'UTF-16le'",
                                     "PRAGMA encoding = 'UTF-16be'",
                                     "PRAGMA page_size = 512",
                                     "PRAGMA page_size = 65536",
                                     "PRAGMA auto_vacuum = FULL",
                                     "PRAGMA auto_vacuum = INCREMENTAL",
                                     "PRAGMA journal_mode = WAL",
                                     "PRAGMA user_version = -1",
                                     "PRAGMA user_version = 2147483647",
                                     "PRAGMA user_version = -2147483648",
                                     "PRAGMA application_id = 1",
                                     "PRAGMA legacy_file_format = ON"};

// As SQL.
constexpr const char* kOddValues[] = {"NULL",
                                      "''",
                                      "x''",
                                      "x'00'",
                                      "x'ff'",
                                      "x'd800'",
                                      "zeroblob(100000)",
                                      "9223372036854775807",
                                      "-9223372036854775808",
                                      "4294967296",
                                      "-1",
                                      "1e999",
                                      "-1e999",
                                      "0.1",
                                      "'12abc'",
                                      "'ullValues={1,2}&stringValues={%,%2}'",
                                      "'ullValues={,,,,}&intValues={,,,}&stringValues={,,}'",
                                      "'ullValues={'",
                                      "CAST(x'ff00fe' AS TEXT)",
                                      "CAST(x'eda080' AS TEXT)",
                                      "'a' || char(0) || 'b'",
                                      "hex(zeroblob(200000))"};

constexpr const char* kColumns[] = {"ActionLogId",      "UsedLog",       "AppId",
                                    "AppName",          "UserId",        "ActionName",
                                    "ActionParameters", "AppLoggedTime", "PluginLoggedTime",
                                    "PreActionName",    "LogKind"};

std::string Named(std::string sql, const std::string& table) {
    for (size_t at = sql.find("NAME"); at != std::string::npos; at = sql.find("NAME", at))
        sql.replace(at, 4, table);
    return sql;
}

} // namespace

void MakeForeignDatabase(const std::filesystem::path& path, const std::string& table,
                         Chance& chance) {
    static const std::vector<std::string> schemas = ForeignSchemas();
    const FileDatabase database(path, /*create=*/true);
    database.Query(chance.Of(kPreludes));
    database.Query(Named(chance.Of(schemas), table));
}

void SpoilRows(const std::filesystem::path& path, const std::string& table, Chance& chance) {
    const FileDatabase database(path);
    for (size_t left = 1 + chance.Below(8); left > 0; --left) {
        database.Query("UPDATE " + table + " SET " + chance.Of(kColumns) + " = " +
                       chance.Of(kOddValues) +
                       " WHERE rowid % 4 = " + std::to_string(chance.Below(4)));
    }
    if (chance.OneIn(4)) database.Query("INSERT INTO " + table + " SELECT * FROM " + table);
    database.Query(chance.Of(kPreludes));
}

} // namespace tsl::test
