// How statements are run: results, rows, and that they are always finalized.
#include <gtest/gtest.h>

#include <string>

#include "store/Database.h"
#include "store/SqliteResult.h"

namespace tsl::test {

namespace {

class Statement : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(S_OK, m_engine.Load(GetModuleHandleW(nullptr), /*initializeOnly=*/false));
        ASSERT_EQ(kSqliteOk, m_database.Open(m_engine, L":memory:"));
        ASSERT_EQ(kSqliteOk, Run(L"CREATE TABLE t (a INTEGER)"));
    }

    int Run(const std::wstring& text) { return ExecuteStatement(m_database, text); }

    INT64 Number(const std::wstring& query) {
        CStatement statement(m_database);
        EXPECT_EQ(kSqliteOk, statement.Prepare(query));
        EXPECT_EQ(kSqliteRow, statement.Step());
        return statement.ColumnInt64(0);
    }

    // A statement that is still alive keeps its table from being dropped.
    void ExpectNothingIsLeftOpen() { EXPECT_EQ(kSqliteOk, Run(L"DROP TABLE t")); }

    SqliteApi m_engine;
    CDatabase m_database;
};

} // namespace

TEST_F(Statement, ThatIsDoneGivesTheResultOfFinalizing) {
    EXPECT_EQ(kSqliteOk, Run(L"INSERT INTO t VALUES (1)"));
    EXPECT_EQ(kSqliteOk, Run(L"DELETE FROM t WHERE a = 99"));
    EXPECT_EQ(kSqliteOk, Run(L"SELECT * FROM t WHERE a = 99"));
    ExpectNothingIsLeftOpen();
}

TEST_F(Statement, ThatYieldsARowIsFinalizedButStaysARow) {
    ASSERT_EQ(kSqliteOk, Run(L"INSERT INTO t VALUES (1)"));
    const int result = Run(L"SELECT * FROM t");
    EXPECT_EQ(kSqliteRow, result);
    EXPECT_EQ(static_cast<HRESULT>(0x80041700), SqliteResultToHresult(result));
    ExpectNothingIsLeftOpen();
}

TEST_F(Statement, OfWrongSyntaxGivesTheResultOfPreparing) {
    EXPECT_EQ(kSqliteError, Run(L"SELEKT 1"));
    EXPECT_EQ(kSqliteError, Run(L"SELECT * FROM nowhere"));
}

TEST_F(Statement, ThatFailsInItsStepGivesThatResultAndIsFinalized) {
    constexpr int kConstraint = 19;
    ASSERT_EQ(kSqliteOk, Run(L"CREATE TABLE once (a INTEGER UNIQUE)"));
    ASSERT_EQ(kSqliteOk, Run(L"INSERT INTO once VALUES (1)"));
    EXPECT_EQ(kConstraint, Run(L"INSERT INTO once VALUES (1)"));
    EXPECT_EQ(kSqliteOk, Run(L"DROP TABLE once"));
}

TEST_F(Statement, WithoutContentIsTheMisuseThatSteppingNothingIs) {
    constexpr int kMisuse = 21;
    EXPECT_EQ(kMisuse, Run(L""));
    EXPECT_EQ(kMisuse, Run(L"-- a remark"));
}

TEST_F(Statement, RunsOnlyTheFirstOfATextWithTwo) {
    EXPECT_EQ(kSqliteOk, Run(L"INSERT INTO t VALUES (1); INSERT INTO t VALUES (2);"));
    EXPECT_EQ(1, Number(L"SELECT COUNT(*) FROM t"));
}

TEST_F(Statement, TakesDoubleQuotedTexts) {
    ASSERT_EQ(kSqliteOk, Run(L"INSERT INTO t VALUES (\"text\")"));
    EXPECT_EQ(1, Number(L"SELECT COUNT(*) FROM t WHERE a = 'text'"));
}

TEST_F(Statement, IsFinalizedWhenItGoes) {
    ASSERT_EQ(kSqliteOk, Run(L"INSERT INTO t VALUES (1)"));
    {
        CStatement statement(m_database);
        ASSERT_EQ(kSqliteOk, statement.Prepare(L"SELECT a FROM t"));
        ASSERT_EQ(kSqliteRow, statement.Step());
        EXPECT_NE(kSqliteOk, Run(L"DROP TABLE t")) << "an open statement goes unnoticed";
    }
    ExpectNothingIsLeftOpen();
}

TEST_F(Statement, FinalizedTwiceIsHarmless) {
    CStatement statement(m_database);
    EXPECT_EQ(kSqliteOk, statement.Finalize());
    ASSERT_EQ(kSqliteOk, statement.Prepare(L"SELECT 1"));
    ASSERT_EQ(kSqliteRow, statement.Step());
    EXPECT_EQ(kSqliteOk, statement.Finalize());
    EXPECT_EQ(kSqliteOk, statement.Finalize());
}

TEST_F(Statement, PreparedAgainLetsTheFirstTextGo) {
    ASSERT_EQ(kSqliteOk, Run(L"INSERT INTO t VALUES (1)"));
    CStatement statement(m_database);
    ASSERT_EQ(kSqliteOk, statement.Prepare(L"SELECT a FROM t"));
    ASSERT_EQ(kSqliteRow, statement.Step());
    ASSERT_EQ(kSqliteOk, statement.Prepare(L"SELECT 7"));
    ASSERT_EQ(kSqliteRow, statement.Step());
    EXPECT_EQ(7, statement.ColumnInt64(0));
    ExpectNothingIsLeftOpen();
}

TEST_F(Statement, StoresBoundValues) {
    ASSERT_EQ(kSqliteOk, Run(L"CREATE TABLE row (i INTEGER, s TEXT, n TEXT, d REAL)"));
    CStatement statement(m_database);
    ASSERT_EQ(kSqliteOk, statement.Prepare(L"INSERT INTO row VALUES (?,?,?,?)"));
    EXPECT_EQ(kSqliteOk, statement.BindInt64(1, 4294967295));
    EXPECT_EQ(kSqliteOk, statement.BindText(2, L"a'b"));
    EXPECT_EQ(kSqliteOk, statement.BindText(3, nullptr));
    EXPECT_EQ(kSqliteOk, statement.BindDouble(4, 0.25));
    EXPECT_EQ(kSqliteOk, statement.Run());
    EXPECT_EQ(1, Number(L"SELECT COUNT(*) FROM row WHERE i = 4294967295 AND s = 'a''b' "
                        L"AND n IS NULL AND d = 0.25"));
}

} // namespace tsl::test
