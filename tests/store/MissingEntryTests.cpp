// An engine that lacks one of its functions: what each call answers instead.
#include <functional>
#include <string>

#include "store/ActionLogStore.h"
#include "store/SqliteResult.h"
#include "tests/support/ComponentCopy.h"
#include "tests/support/OpenTarget.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr HRESULT kMappedError = static_cast<HRESULT>(0x80041600);

struct Entry {
    const char* name;
    // True when the call gives what a missing function gives. No call of a present one would.
    std::function<bool(const SqliteApi&)> answersAsMissing;
};

void PrintTo(const Entry& entry, std::ostream* output) {
    *output << entry.name;
}

const Entry kEntries[] = {
    {"sqlite3_prepare16_v2",
     [](const SqliteApi& engine) {
         sqlite3_stmt* statement = nullptr;
         return engine.Prepare(nullptr, L"SELECT 1", &statement) == 1 && !statement;
     }},
    {"sqlite3_bind_int64",
     [](const SqliteApi& engine) { return engine.BindInt64(nullptr, 1, 5) == 1; }},
    {"sqlite3_bind_text16",
     [](const SqliteApi& engine) { return engine.BindText(nullptr, 1, L"text") == 1; }},
    {"sqlite3_bind_double",
     [](const SqliteApi& engine) { return engine.BindDouble(nullptr, 1, 0.5) == 1; }},
    {"sqlite3_step", [](const SqliteApi& engine) { return engine.Step(nullptr) == 1; }},
    {"sqlite3_finalize", [](const SqliteApi& engine) { return engine.Finalize(nullptr) == 1; }},
    {"sqlite3_open",
     [](const SqliteApi& engine) {
         sqlite3* connection = nullptr;
         return engine.Open(":memory:", &connection) == 1 && !connection;
     }},
    {"sqlite3_close", [](const SqliteApi& engine) { return engine.Close(nullptr) == 1; }},
    {"sqlite3_column_int64",
     [](const SqliteApi& engine) { return engine.ColumnInt64(nullptr, 0) == 1; }},
    {"sqlite3_column_double",
     [](const SqliteApi& engine) { return engine.ColumnDouble(nullptr, 0) == 1.0; }},
};

std::string WithoutPrefix(const std::string& name) {
    return name.substr(std::string("sqlite3_").size());
}

std::string EntryName(const ::testing::TestParamInfo<Entry>& entry) {
    return WithoutPrefix(entry.param.name);
}

std::string FunctionName(const ::testing::TestParamInfo<std::string>& function) {
    return WithoutPrefix(function.param);
}

class MissingEntry : public ::testing::TestWithParam<Entry> {};

class StoreWithPartOfTheEngine : public StoreTest,
                                 public ::testing::WithParamInterface<std::string> {};

} // namespace

// The present function answers otherwise, so that the two can be told apart.
TEST_P(MissingEntry, OtherwiseAnswersByItself) {
    SqliteApi whole;
    ASSERT_EQ(S_OK, whole.Load(GetModuleHandleW(nullptr), /*initializeOnly=*/false));
    EXPECT_FALSE(GetParam().answersAsMissing(whole));
}

TEST_P(MissingEntry, LoadsAndAnswersForTheEngine) {
    const ComponentCopy copy;
    copy.AddEngine();
    copy.RenameEngineExport(GetParam().name);
    SqliteApi engine;
    ASSERT_EQ(S_OK, engine.Load(copy.Module(), /*initializeOnly=*/false));
    EXPECT_TRUE(GetParam().answersAsMissing(engine));
    for (const Entry& other : kEntries) {
        if (std::string(other.name) == GetParam().name) continue;
        EXPECT_FALSE(other.answersAsMissing(engine)) << other.name << " is missing too";
    }
}

INSTANTIATE_TEST_SUITE_P(Each, MissingEntry, ::testing::ValuesIn(kEntries), EntryName);

TEST(MissingText, IsNull) {
    const ComponentCopy copy;
    copy.AddEngine();
    copy.RenameEngineExport("sqlite3_column_text16");
    SqliteApi engine;
    ASSERT_EQ(S_OK, engine.Load(copy.Module(), /*initializeOnly=*/false));
    CDatabase database;
    ASSERT_EQ(kSqliteOk, database.Open(engine, L":memory:"));
    sqlite3_stmt* statement = nullptr;
    ASSERT_EQ(kSqliteOk, engine.Prepare(database.Connection(), L"SELECT 'text'", &statement));
    ASSERT_EQ(kSqliteRow, engine.Step(statement));
    EXPECT_EQ(nullptr, engine.ColumnText(statement, 0));
    EXPECT_EQ(kSqliteOk, engine.Finalize(statement));
}

// What opening and running a statement need, one by one.
TEST(MissingFunction, MakesAStatementFailInsteadOfCrashing) {
    for (const char* const name : {"sqlite3_prepare16_v2", "sqlite3_step", "sqlite3_finalize"}) {
        const ComponentCopy copy;
        copy.AddEngine();
        copy.RenameEngineExport(name);
        SqliteApi engine;
        ASSERT_EQ(S_OK, engine.Load(copy.Module(), /*initializeOnly=*/false));
        CDatabase database;
        ASSERT_EQ(kSqliteOk, database.Open(engine, L":memory:"));
        const int result = ExecuteStatement(database, L"CREATE TABLE t (a INTEGER)");
        EXPECT_EQ(kMappedError, SqliteResultToHresult(result)) << name;
        EXPECT_EQ(kMappedError, CreateActionTable(&engine, database, L"TslIf", L"DbActionLog"));
    }
}

TEST_P(StoreWithPartOfTheEngine, FailsToOpenWithTheMappedError) {
    const ComponentCopy copy;
    copy.AddEngine();
    copy.RenameEngineExport(GetParam());
    const CActionLogStore store(copy.Module());
    ASSERT_NE(nullptr, store.Engine()) << "a store keeps an engine that lacks a function";
    CDatabase database;
    EXPECT_EQ(kMappedError, OpenTarget(store, Target{}, &database));
}

INSTANTIATE_TEST_SUITE_P(Each, StoreWithPartOfTheEngine,
                         ::testing::Values<std::string>("sqlite3_open", "sqlite3_prepare16_v2",
                                                        "sqlite3_step"),
                         FunctionName);

} // namespace tsl::test
