// Transactions on a file that others read and write too.
#include <thread>

#include "store/Database.h"
#include "tests/support/EngineSleeps.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr int kBusy = 5;

class Transaction : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeStoreFolder();
        FileDatabase(ActionLogPath(), /*create=*/true).Query("CREATE TABLE t (a INTEGER)");
        ASSERT_EQ(S_OK, m_engine.Load(GetModuleHandleW(nullptr), /*initializeOnly=*/false));
        ASSERT_EQ(kSqliteOk, m_database.Open(m_engine, ActionLogPath().wstring()));
    }
    void TearDown() override {
        m_database.Close();
        StoreTest::TearDown();
    }

    int Insert() { return ExecuteStatement(m_database, L"INSERT INTO t VALUES (1)"); }
    static std::string Count() {
        return FileDatabase(ActionLogPath()).Value("SELECT COUNT(*) FROM t");
    }

    SqliteApi m_engine;
    CDatabase m_database;
};

} // namespace

TEST_F(Transaction, KeepsWhatIsCommitted) {
    {
        CTransaction transaction(m_database);
        ASSERT_EQ(kSqliteOk, transaction.Begin());
        ASSERT_EQ(kSqliteOk, Insert());
        ASSERT_EQ(kSqliteOk, transaction.Commit());
    }
    EXPECT_EQ("1", Count());
}

TEST_F(Transaction, ThatGoesWithoutACommitIsRolledBack) {
    {
        CTransaction transaction(m_database);
        ASSERT_EQ(kSqliteOk, transaction.Begin());
        ASSERT_EQ(kSqliteOk, Insert());
    }
    EXPECT_EQ("0", Count());
    EXPECT_EQ(kSqliteOk, Insert()) << "the connection is not free for the next statement";
    EXPECT_EQ("1", Count());
}

TEST_F(Transaction, ThatIsRolledBackMayBeBegunAnew) {
    CTransaction transaction(m_database);
    transaction.RollBack();
    ASSERT_EQ(kSqliteOk, transaction.Begin());
    ASSERT_EQ(kSqliteOk, Insert());
    transaction.RollBack();
    transaction.RollBack();
    EXPECT_EQ("0", Count());
    ASSERT_EQ(kSqliteOk, transaction.Begin());
    ASSERT_EQ(kSqliteOk, Insert());
    ASSERT_EQ(kSqliteOk, transaction.Commit());
    EXPECT_EQ("1", Count());
}

// As the engine does with a failing disk.
TEST_F(Transaction, ThatTheEngineEndedMayBeBegunAnew) {
    CTransaction transaction(m_database);
    ASSERT_EQ(kSqliteOk, transaction.Begin());
    ASSERT_EQ(kSqliteOk, Insert());
    ASSERT_EQ(kSqliteOk, ExecuteStatement(m_database, L"ROLLBACK"));
    transaction.RollBack();
    EXPECT_EQ(kSqliteOk, transaction.Begin());
    EXPECT_EQ("0", Count());
}

TEST_F(Transaction, ThatWasNeverBegunLeavesOthersAlone) {
    ASSERT_EQ(kSqliteOk, ExecuteStatement(m_database, L"BEGIN"));
    ASSERT_EQ(kSqliteOk, Insert());
    {
        const CTransaction transaction(m_database);
    }
    ASSERT_EQ(kSqliteOk, ExecuteStatement(m_database, L"COMMIT"));
    EXPECT_EQ("1", Count());
}

TEST_F(Transaction, TellsABusyFileAtItsBegin) {
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN IMMEDIATE");
    CTransaction transaction(m_database);
    const EngineSleeps sleeps;
    EXPECT_EQ(kBusy, transaction.Begin());
    EXPECT_EQ(1u, sleeps.Waits(kWriteWait));
    other.Query("COMMIT");
    EXPECT_EQ(kSqliteOk, transaction.Begin());
}

TEST_F(Transaction, BeginsWhenTheOtherWriterHasLeft) {
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN EXCLUSIVE");
    std::thread leaving([&] {
        Sleep(300);
        other.Query("COMMIT");
    });
    CTransaction transaction(m_database);
    EXPECT_EQ(kSqliteOk, transaction.Begin());
    leaving.join();
}

TEST_F(Transaction, TakesTheWriteLockAtOnce) {
    CTransaction transaction(m_database);
    ASSERT_EQ(kSqliteOk, transaction.Begin());
    const FileDatabase other(ActionLogPath());
    EXPECT_THROW(other.Query("BEGIN IMMEDIATE"), std::runtime_error);
    EXPECT_EQ("0", other.Value("SELECT COUNT(*) FROM t")) << "readers are kept out too";
}

TEST_F(Transaction, CommitsWhenTheReadersHaveLeft) {
    const FileDatabase reader(ActionLogPath());
    CTransaction transaction(m_database);
    ASSERT_EQ(kSqliteOk, transaction.Begin());
    ASSERT_EQ(kSqliteOk, Insert());
    reader.Query("BEGIN");
    ASSERT_EQ("0", reader.Value("SELECT COUNT(*) FROM t"));
    std::thread leaving([&] {
        Sleep(300);
        reader.Query("COMMIT");
    });
    EXPECT_EQ(kSqliteOk, transaction.Commit());
    leaving.join();
    EXPECT_EQ("1", Count());
}

TEST_F(Transaction, WhoseCommitFailsIsRolledBack) {
    const FileDatabase other(ActionLogPath());
    {
        CTransaction transaction(m_database);
        ASSERT_EQ(kSqliteOk, transaction.Begin());
        ASSERT_EQ(kSqliteOk, Insert());
        other.Query("BEGIN");
        ASSERT_EQ("0", other.Value("SELECT COUNT(*) FROM t"));
        const EngineSleeps sleeps;
        EXPECT_EQ(kBusy, transaction.Commit());
        EXPECT_EQ(1u, sleeps.Waits(kWriteWait)) << "a reader may take its time, but not all of it";
    }
    other.Query("COMMIT");
    EXPECT_EQ("0", Count());
    EXPECT_EQ(kSqliteOk, Insert());
}

TEST_F(Transaction, IsUndoneWhenTheConnectionIsClosed) {
    ASSERT_EQ(kSqliteOk, ExecuteStatement(m_database, L"BEGIN IMMEDIATE"));
    ASSERT_EQ(kSqliteOk, Insert());
    m_database.Close();
    EXPECT_FALSE(m_database);
    EXPECT_EQ("0", Count());
}

} // namespace tsl::test
