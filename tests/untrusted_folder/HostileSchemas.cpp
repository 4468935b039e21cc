#include "tests/untrusted_folder/HostileSchemas.h"

namespace tsl::test {

namespace {

// The columns of an action table, and a row that its texts are in.
const std::string kColumns =
    "ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,ActionName TEXT,"
    "ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,PreActionName TEXT,"
    "PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER";

std::string Table(const std::string& name, const std::string& more = {}) {
    return "CREATE TABLE " + name + " (" + kColumns + more + ");";
}

std::string OneRow(const std::string& table) {
    return "INSERT INTO " + table +
           " (ActionLogId,UserId,ActionName,ActionParameters,PluginLoggedTime,LogKind) "
           "VALUES (1,7,'playItem','',45000.0,1);";
}

const std::string kLog = "TslIf_DbActionLog";
const std::string kKept = "TslIf_ContentDeleteProperty";

// Never ends.
const std::string kEndless =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT count(*) FROM n";

struct Expression {
    const char* name;
    std::string text;
};

// Each takes minutes or most of the memory, in a single call.
std::vector<Expression> Expressions() {
    const std::string haystack = "hex(zeroblob(4000000))";
    const std::string needle = "(hex(zeroblob(500000)) || '1')";
    return {
        {"900 MB", "length(hex(zeroblob(450000000)))"},
        {"100 MB texts",
         "length(printf('%.*c', 100000000, 'x') || printf('%.*c', 100000000, 'y'))"},
        {"a search for minutes", "instr(" + haystack + ", " + needle + ")"},
        {"a pattern for minutes", "(printf('%.*c', 30000, 'a') LIKE '%a%a%a%a%a%a%a%a%a%a%a%a%b')"},
        {"a replacement for minutes", "length(replace(" + haystack + ", " + needle + ", 'x'))"},
        {"doubled texts",
         "length(replace(replace(replace(hex(zeroblob(1000)), '0', hex(zeroblob(1000))),"
         " '0', hex(zeroblob(100))), '0', 'xxxxxxxx'))"},
    };
}

// The places that a schema has for an expression over the row.
std::vector<Expression> Places(const std::string& table, const std::string& expression) {
    return {
        {"generated column", Table(table) + OneRow(table) + "ALTER TABLE " + table +
                                 " ADD COLUMN x AS (" + expression + " + ActionLogId);"},
        {"stored column", Table(table, ",x AS (" + expression + " + ActionLogId) STORED")},
        {"check", Table(table, ",CHECK (" + expression + " + ActionLogId > 0)")},
        {"check of a column", "CREATE TABLE " + table + " (" + kColumns + ", y INTEGER CHECK (" +
                                  expression + " IS NOT 0));"},
        {"default", Table(table, ",y DEFAULT (" + expression + ")")},
        {"index",
         Table(table) + "CREATE INDEX i ON " + table + "(ActionLogId + " + expression + ");"},
        {"index of a part", Table(table) + "CREATE INDEX i ON " + table +
                                "(UserId) WHERE ActionLogId + " + expression + " > 0;"},
    };
}

std::vector<HostileSchema> Triggers(const std::string& table) {
    std::vector<HostileSchema> schemas;
    for (const char* const moment : {"BEFORE", "AFTER"}) {
        for (const char* const event : {"INSERT", "DELETE", "UPDATE"}) {
            for (const Expression& body :
                 {Expression{"endless", kEndless}, Expression{"taking all", "DELETE FROM " + table},
                  Expression{"flooding", "INSERT INTO flood SELECT hex(zeroblob(30000000)) FROM "
                                         "(SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3)"}}) {
                schemas.push_back({std::string("trigger ") + moment + ' ' + event + ' ' +
                                       body.name + " on " + table,
                                   Table(table) + "CREATE TABLE flood(t);" + OneRow(table) +
                                       "CREATE TRIGGER t " + moment + ' ' + event + " ON " + table +
                                       " BEGIN " + body.text + "; END;",
                                   /*isUsable=*/true});
            }
        }
    }
    return schemas;
}

std::vector<HostileSchema> Views(const std::string& table) {
    const std::string rows =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i AS ActionLogId,"
        "0 AS UsedLog,0 AS AppId,'' AS AppName,7 AS UserId,'a' AS ActionName,'' AS "
        "ActionParameters,"
        "1.0 AS AppLoggedTime,1.0 AS PluginLoggedTime,'' AS PreActionName,'' AS "
        "PreActionParameters,"
        "0 AS PreLoggedTime,1 AS LogKind FROM n";
    return {
        {"endless view as " + table, "CREATE VIEW " + table + " AS " + rows + ";"},
        {"view that takes what is written, as " + table,
         Table("other") + "CREATE VIEW " + table +
             " AS SELECT * FROM other; CREATE TRIGGER t INSTEAD OF INSERT ON " + table +
             " BEGIN INSERT INTO other SELECT * FROM other; " + kEndless + "; END;"},
    };
}

// Schemas without an expression that are odd in other ways.
std::vector<HostileSchema> Oddities() {
    std::string manyTables;
    for (int number = 0; number < 300; ++number)
        manyTables += "CREATE TABLE t" + std::to_string(number) + "(a,b,c);";
    std::string manyIndexes = Table(kLog);
    for (int number = 0; number < 60; ++number)
        manyIndexes += "CREATE INDEX i" + std::to_string(number) + " ON " + kLog + "(UserId);";
    std::string manyColumns = ",c0";
    for (int number = 1; number < 1900; ++number)
        manyColumns += ",c" + std::to_string(number);
    return {
        {"many tables", manyTables + Table(kLog), true},
        {"many indexes", manyIndexes, true},
        {"many columns", Table(kLog, manyColumns), true},
        {"unique ids", Table(kLog, ",UNIQUE(ActionLogId)"), true},
        {"foreign keys",
         Table("other", ",PRIMARY KEY(ActionLogId)") +
             Table(kLog,
                   ",FOREIGN KEY(ActionLogId) REFERENCES other(ActionLogId) ON DELETE CASCADE"),
         true},
        {"counted rows",
         "CREATE TABLE a(i INTEGER PRIMARY KEY AUTOINCREMENT); INSERT INTO a VALUES "
         "(9223372036854775807);" +
             Table(kLog) + Table("flood", ",z DEFAULT 1"),
         true},
        {"another row format",
         "CREATE TABLE " + kLog + " (" + kColumns + ", PRIMARY KEY(ActionLogId)) WITHOUT ROWID;",
         true},
        {"an index as the table", "CREATE TABLE a(b); CREATE INDEX " + kLog + " ON a(b);"},
        {"no columns that fit", "CREATE TABLE " + kLog + "(a, b);"},
    };
}

} // namespace

std::vector<HostileSchema> HostileSchemas() {
    std::vector<HostileSchema> schemas;
    for (const std::string& table : {kLog, kKept}) {
        for (const Expression& expression : Expressions()) {
            for (const Expression& place : Places(table, expression.text)) {
                schemas.push_back({std::string(place.name) + ": " + expression.name + ", " + table,
                                   table == kLog ? place.text : Table(kLog) + place.text});
            }
        }
        for (auto made : {Triggers(table), Views(table)}) {
            for (HostileSchema& schema : made) {
                if (table != kLog) schema.sql = Table(kLog) + schema.sql;
                schemas.push_back(std::move(schema));
            }
        }
    }
    for (HostileSchema& schema : Oddities())
        schemas.push_back(std::move(schema));
    return schemas;
}

std::vector<HostileSchema> HarmlessSchemas() {
    return {
        {"an index", Table(kLog) + "CREATE INDEX i ON " + kLog + "(ActionLogId);", true},
        {"an index of the plain part",
         Table(kLog) + "CREATE INDEX i ON " + kLog + "(UserId) WHERE LogKind = 1;", true},
        {"statistics",
         Table(kLog) + OneRow(kLog) + "CREATE INDEX i ON " + kLog + "(UserId); ANALYZE;", true},
        {"statistics of nothing",
         Table(kLog) + "CREATE INDEX i ON " + kLog +
             "(UserId); ANALYZE; DELETE FROM sqlite_stat1; INSERT INTO sqlite_stat1 VALUES ('" +
             kLog + "','i','-1 99999999999999 x'), ('nothing', NULL, '');",
         true},
        {"a view of somebody's",
         Table(kLog) + "CREATE VIEW v AS SELECT count(*) FROM " + kLog + ";", true},
        {"a table of somebody's", Table(kLog) + "CREATE TABLE notes(t TEXT CHECK (t <> ''));",
         true},
        {"a further column", Table(kLog, ",note TEXT DEFAULT 'none'"), true},
    };
}

} // namespace tsl::test
