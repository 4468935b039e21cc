// What the binding hands to the engine, and values on their way through it.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "store/Database.h"
#include "tests/support/ImportHook.h"

namespace tsl::test {

namespace {

struct PrepareCall {
    decltype(&GetProcAddress) original = &GetProcAddress;
    sqlite3* database = nullptr;
    const void* text = nullptr;
    int bytes = 0;
    sqlite3_stmt** statement = nullptr;
    const void** tail = nullptr;
};
PrepareCall* g_call = nullptr;

constexpr int kPrepareResult = 17;

int WatchPrepare(sqlite3* database, const void* text, int bytes, sqlite3_stmt** statement,
                 const void** tail) {
    g_call->database = database;
    g_call->text = text;
    g_call->bytes = bytes;
    g_call->statement = statement;
    g_call->tail = tail;
    return kPrepareResult;
}

FARPROC WINAPI FindWatchedPrepare(HMODULE module, const char* name) {
    if (std::string(name) == "sqlite3_prepare16_v2") return std::bit_cast<FARPROC>(&WatchPrepare);
    return g_call->original(module, name);
}

// A table in memory, and the only row of a query on it.
class EngineCall : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(S_OK, m_engine.Load(GetModuleHandleW(nullptr), /*initializeOnly=*/false));
        ASSERT_EQ(kSqliteOk, m_database.Open(m_engine, L":memory:"));
    }

    sqlite3_stmt* Prepare(const std::wstring& text) {
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(kSqliteOk, m_engine.Prepare(m_database.Connection(), text, &statement));
        return statement;
    }

    SqliteApi m_engine;
    CDatabase m_database;
};

} // namespace

TEST(EnginePrepare, GetsTheBytesWithTheTerminatorAndNoTail) {
    for (const std::wstring text : {L"", L"S", L"SELECT 1", L"SELECT '\x65E5\x672C'"}) {
        PrepareCall call;
        g_call = &call;
        SqliteApi engine;
        {
            const ImportHook hook("GetProcAddress", &FindWatchedPrepare);
            ASSERT_EQ(S_OK, engine.Load(GetModuleHandleW(nullptr), /*initializeOnly=*/false));
        }
        auto* const database = reinterpret_cast<sqlite3*>(&call);
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(kPrepareResult, engine.Prepare(database, text, &statement));
        EXPECT_EQ(database, call.database);
        EXPECT_EQ(text.c_str(), call.text);
        EXPECT_EQ(static_cast<int>((text.size() + 1) * 2), call.bytes);
        EXPECT_EQ(&statement, call.statement);
        EXPECT_EQ(nullptr, call.tail);
        g_call = nullptr;
    }
}

TEST_F(EngineCall, IntegersKeepAll64Bits) {
    using Limits = std::numeric_limits<INT64>;
    for (const INT64 value :
         {INT64{0}, INT64{-1}, INT64{4294967295}, Limits::min(), Limits::max()}) {
        sqlite3_stmt* const statement = Prepare(L"SELECT ?");
        EXPECT_EQ(kSqliteOk, m_engine.BindInt64(statement, 1, value));
        EXPECT_EQ(kSqliteRow, m_engine.Step(statement));
        EXPECT_EQ(value, m_engine.ColumnInt64(statement, 0));
        EXPECT_EQ(kSqliteDone, m_engine.Step(statement));
        EXPECT_EQ(kSqliteOk, m_engine.Finalize(statement));
    }
}

TEST_F(EngineCall, DoublesKeepAllBits) {
    for (const double value : {0.0, -1.5, 45678.123456789, 1e308, 4.9e-324, -HUGE_VAL}) {
        sqlite3_stmt* const statement = Prepare(L"SELECT ?");
        EXPECT_EQ(kSqliteOk, m_engine.BindDouble(statement, 1, value));
        EXPECT_EQ(kSqliteRow, m_engine.Step(statement));
        EXPECT_EQ(value, m_engine.ColumnDouble(statement, 0));
        EXPECT_EQ(kSqliteOk, m_engine.Finalize(statement));
    }
}

// The engine calls no function that has arguments.
constexpr wchar_t kValueAndKind[] =
    L"SELECT ?, CASE WHEN ?1 IS NULL THEN 'null' WHEN ?1 >= '' AND ?1 < x'' THEN 'text' END";

TEST_F(EngineCall, TextsKeepEveryCharacter) {
    const std::wstring longText(100000, L'\x3042');
    for (const std::wstring& text :
         {std::wstring(), std::wstring(L"plain"), std::wstring(L"'quoted\" %s ?\r\n\t"),
          std::wstring(L"\x00E4\x65E5\x672C\xD83D\xDE00"), longText}) {
        sqlite3_stmt* const statement = Prepare(kValueAndKind);
        EXPECT_EQ(kSqliteOk, m_engine.BindText(statement, 1, text.c_str()));
        EXPECT_EQ(kSqliteRow, m_engine.Step(statement));
        const wchar_t* const column = m_engine.ColumnText(statement, 0);
        ASSERT_NE(nullptr, column);
        EXPECT_EQ(text, column);
        EXPECT_STREQ(L"text", m_engine.ColumnText(statement, 1));
        EXPECT_EQ(kSqliteOk, m_engine.Finalize(statement));
    }
}

TEST_F(EngineCall, NullTextIsNullAndNotEmpty) {
    sqlite3_stmt* const statement = Prepare(kValueAndKind);
    EXPECT_EQ(kSqliteOk, m_engine.BindText(statement, 1, nullptr));
    EXPECT_EQ(kSqliteRow, m_engine.Step(statement));
    EXPECT_EQ(nullptr, m_engine.ColumnText(statement, 0));
    EXPECT_STREQ(L"null", m_engine.ColumnText(statement, 1));
    EXPECT_EQ(kSqliteOk, m_engine.Finalize(statement));
}

TEST_F(EngineCall, ResultsOfTheEngineComeBackUnchanged) {
    constexpr int kRange = 25;
    constexpr int kCannotOpen = 14;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(kSqliteError,
              m_engine.Prepare(m_database.Connection(), L"SELECT * FROM nowhere", &statement));
    EXPECT_EQ(nullptr, statement);
    statement = Prepare(L"SELECT ?");
    EXPECT_EQ(kRange, m_engine.BindInt64(statement, 2, 1));
    EXPECT_EQ(kRange, m_engine.BindText(statement, 2, L""));
    EXPECT_EQ(kRange, m_engine.BindDouble(statement, 2, 1.0));
    EXPECT_EQ(kSqliteOk, m_engine.Finalize(statement));
    sqlite3* connection = nullptr;
    EXPECT_EQ(kCannotOpen, m_engine.Open("C:\\no such folder\\file.db", &connection));
    EXPECT_EQ(kSqliteOk, m_engine.Close(connection));
}

} // namespace tsl::test
