// The tables as the files hold them, and what the functions that create them answer.
#include "store/Schema.h"

#include "store/ActionLogStore.h"
#include "store/SqliteResult.h"
#include "tests/support/EngineSleeps.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

// Written out, as the file holds it: the engine keeps the text without "IF NOT EXISTS".
std::string ActionTableText(const std::string& table) {
    return "CREATE TABLE " + table +
           " (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,"
           "ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,"
           "PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER)";
}

const char kRecordIdTableText[] =
    "CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER)";

const char kSchemaQuery[] = "SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY name";

class Schema : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeStoreFolder();
        ASSERT_EQ(S_OK, m_engine.Load(GetModuleHandleW(nullptr), /*initializeOnly=*/false));
        ASSERT_EQ(kSqliteOk, m_database.Open(m_engine, ActionLogPath().wstring()));
    }
    void TearDown() override {
        m_database.Close();
        StoreTest::TearDown();
    }

    static std::vector<Row> Stored() { return FileDatabase(ActionLogPath()).Query(kSchemaQuery); }

    SqliteApi m_engine;
    CDatabase m_database;
};

} // namespace

TEST_F(Schema, HoldsTheActionTableAndNothingElse) {
    for (const std::wstring name : {L"DbActionLog", L"ContentDeleteProperty", L"ActionReplay"}) {
        ASSERT_EQ(S_OK, CreateActionTable(&m_engine, m_database, L"TslIf", name));
        const std::string table = "TslIf_" + std::string(name.begin(), name.end());
        const std::vector<Row> expected = {{"table", table, table, ActionTableText(table)}};
        EXPECT_EQ(expected, Stored());
        ASSERT_EQ(kSqliteOk,
                  ExecuteStatement(m_database, L"DROP TABLE " + TableName(L"TslIf", name)));
    }
}

TEST_F(Schema, HoldsTheRecordIdTableAndNothingElse) {
    ASSERT_EQ(S_OK, CreateRecordIdTable(&m_engine, m_database, L"TslIf", L"ActionRecordId"));
    const std::vector<Row> expected = {
        {"table", "TslIf_ActionRecordId", "TslIf_ActionRecordId", kRecordIdTableText}};
    EXPECT_EQ(expected, Stored());
}

TEST_F(Schema, HasABlankBeforeTheEleventhColumnOnly) {
    ASSERT_EQ(S_OK, CreateActionTable(&m_engine, m_database, L"TslIf", L"DbActionLog"));
    const std::string text = *Stored().at(0).at(3);
    EXPECT_EQ(text.find(", "), text.rfind(", "));
    EXPECT_EQ(text.find(", PreActionParameters TEXT"), text.find(", "));
    EXPECT_NE(std::string::npos, text.find(", "));
}

TEST_F(Schema, HasThirteenColumnsWithoutKeyConstraintOrDefault) {
    ASSERT_EQ(S_OK, CreateActionTable(&m_engine, m_database, L"TslIf", L"DbActionLog"));
    const std::vector<Row> expected = {
        {"ActionLogId", "INTEGER"},   {"UsedLog", "INTEGER"},          {"AppId", "INTEGER"},
        {"AppName", "TEXT"},          {"UserId", "INTEGER"},           {"ActionName", "TEXT"},
        {"ActionParameters", "TEXT"}, {"AppLoggedTime", "REAL"},       {"PluginLoggedTime", "REAL"},
        {"PreActionName", "TEXT"},    {"PreActionParameters", "TEXT"}, {"PreLoggedTime", "INTEGER"},
        {"LogKind", "INTEGER"}};
    const FileDatabase file(ActionLogPath());
    EXPECT_EQ(expected,
              file.Query("SELECT name, type FROM pragma_table_info('TslIf_DbActionLog')"));
    EXPECT_EQ("0", file.Value("SELECT SUM(pk + \"notnull\" + (dflt_value IS NOT NULL)) FROM "
                              "pragma_table_info('TslIf_DbActionLog')"));
}

TEST_F(Schema, CreatingAgainChangesNothing) {
    ASSERT_EQ(S_OK, CreateActionTable(&m_engine, m_database, L"TslIf", L"DbActionLog"));
    ASSERT_EQ(
        kSqliteOk,
        ExecuteStatement(m_database, L"INSERT INTO TslIf_DbActionLog (ActionLogId) VALUES (5)"));
    EXPECT_EQ(S_OK, CreateActionTable(&m_engine, m_database, L"TslIf", L"DbActionLog"));
    EXPECT_EQ(1u, Stored().size());
    EXPECT_EQ("5",
              FileDatabase(ActionLogPath()).Value("SELECT ActionLogId FROM TslIf_DbActionLog"));
}

TEST_F(Schema, FaultyArgumentsGiveEInvalidArgForAnActionTable) {
    const CDatabase closed;
    EXPECT_EQ(E_INVALIDARG, CreateActionTable(nullptr, m_database, L"TslIf", L"DbActionLog"));
    EXPECT_EQ(E_INVALIDARG, CreateActionTable(&m_engine, closed, L"TslIf", L"DbActionLog"));
    EXPECT_EQ(E_INVALIDARG, CreateActionTable(&m_engine, m_database, L"", L"DbActionLog"));
    EXPECT_EQ(E_INVALIDARG, CreateActionTable(&m_engine, m_database, L"TslIf", L""));
    EXPECT_TRUE(Stored().empty());
}

TEST_F(Schema, FaultyArgumentsGiveEPointerForARecordIdTable) {
    const CDatabase closed;
    EXPECT_EQ(E_POINTER, CreateRecordIdTable(nullptr, m_database, L"TslIf", L"ActionRecordId"));
    EXPECT_EQ(E_POINTER, CreateRecordIdTable(&m_engine, closed, L"TslIf", L"ActionRecordId"));
    EXPECT_EQ(E_POINTER, CreateRecordIdTable(&m_engine, m_database, L"", L"ActionRecordId"));
    EXPECT_EQ(E_POINTER, CreateRecordIdTable(&m_engine, m_database, L"TslIf", L""));
    EXPECT_TRUE(Stored().empty());
}

TEST_F(Schema, FailuresOfTheEngineAreMapped) {
    constexpr auto kMappedError = static_cast<HRESULT>(0x80041600);
    constexpr auto kMappedBusy = static_cast<HRESULT>(0x80041604);
    EXPECT_EQ(kMappedError, CreateActionTable(&m_engine, m_database, L"TslIf", L"a b"));
    EXPECT_EQ(kMappedError, CreateRecordIdTable(&m_engine, m_database, L"TslIf", L"a b"));
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN EXCLUSIVE");
    const EngineSleeps sleeps;
    EXPECT_EQ(kMappedBusy, CreateActionTable(&m_engine, m_database, L"TslIf", L"DbActionLog"));
    EXPECT_EQ(kMappedBusy, CreateRecordIdTable(&m_engine, m_database, L"TslIf", L"ActionRecordId"));
    EXPECT_EQ(2u, sleeps.Waits(kWriteWait));
}

TEST(SchemaName, IsPrefixUnderscoreName) {
    EXPECT_EQ(L"TslIf_DbActionLog", TableName(kTablePrefix, kActionLogTable));
    EXPECT_EQ(L"TslIf_ContentDeleteProperty", TableName(kTablePrefix, kContentDeleteTable));
    EXPECT_EQ(L"TslIf_ActionReplay", TableName(kTablePrefix, kReplayTable));
    EXPECT_EQ(L"TslIf_ActionRecordId", TableName(kTablePrefix, kRecordIdTable));
    EXPECT_EQ(L"_", TableName(L"", L""));
}

} // namespace tsl::test
