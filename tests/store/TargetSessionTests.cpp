// The connections of the operations: what they make, and that a write is one transaction.
#include "store/TargetSession.h"

#include "tests/support/FileDatabase.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr auto kMappedCannotOpen = static_cast<HRESULT>(0x8004160D);

class Session : public StoreTest {
protected:
    static int Insert(const CDatabase& database) {
        return ExecuteStatement(database,
                                L"INSERT INTO TslIf_DbActionLog (ActionLogId) VALUES (7)");
    }
    // The names in the file, with commas.
    static std::string Names() {
        return FileDatabase(ActionLogPath())
            .Value("SELECT COALESCE(GROUP_CONCAT(name), '') FROM sqlite_master");
    }
    static std::string RowCount() {
        return FileDatabase(ActionLogPath()).Value("SELECT COUNT(*) FROM TslIf_DbActionLog");
    }

    const CActionLogStore m_store{GetModuleHandleW(nullptr)};
};

} // namespace

TEST_F(Session, ThatReadsMakesFileAndTable) {
    const CTableSession session(m_store, Target{});
    EXPECT_TRUE(session.IsOpen());
    EXPECT_EQ(S_OK, session.Opened());
    EXPECT_EQ("TslIf_DbActionLog", Names()) << "at once";
}

TEST_F(Session, ThatWritesKeepsFileTableAndRowsWithItsEnd) {
    {
        CWriteSession session(m_store, Target{});
        ASSERT_TRUE(session.IsOpen());
        ASSERT_EQ(kSqliteOk, session.Begun());
        EXPECT_EQ(kSqliteOk, session.End(Insert(session.Database())));
    }
    EXPECT_EQ("TslIf_DbActionLog", Names());
    EXPECT_EQ("1", RowCount());
}

TEST_F(Session, ThatWritesLeavesNothingOfAFailure) {
    {
        CWriteSession session(m_store, Target{});
        ASSERT_EQ(kSqliteOk, session.Begun());
        ASSERT_EQ(kSqliteOk, Insert(session.Database()));
        constexpr int kConstraint = 19;
        EXPECT_EQ(kConstraint, session.End(kConstraint));
    }
    EXPECT_EQ("", Names());
}

TEST_F(Session, ThatIsNotEndedLeavesNothing) {
    {
        const CWriteSession session(m_store, Target{});
        ASSERT_EQ(kSqliteOk, session.Begun());
        ASSERT_EQ(kSqliteOk, Insert(session.Database()));
    }
    EXPECT_EQ("", Names());
}

// An index has the table's name.
TEST_F(Session, ThatCannotMakeItsTableIsATransactionAllTheSame) {
    MakeStoreFolder();
    FileDatabase(ActionLogPath(), /*create=*/true)
        .Query("CREATE TABLE t (a); CREATE INDEX TslIf_DbActionLog ON t (a)");
    {
        const CWriteSession session(m_store, Target{});
        ASSERT_TRUE(session.IsOpen());
        EXPECT_EQ(kSqliteOk, session.Begun());
        ASSERT_EQ(kSqliteOk, ExecuteStatement(session.Database(), L"INSERT INTO t VALUES (1)"));
    }
    EXPECT_EQ("0", FileDatabase(ActionLogPath()).Value("SELECT COUNT(*) FROM t"));
}

TEST_F(Session, ThatCannotOpenItsFileTellsWhy) {
    fs::create_directories(ActionLogPath());
    const CTableSession reading(m_store, Target{});
    const CWriteSession writing(m_store, Target{});
    EXPECT_FALSE(reading.IsOpen());
    EXPECT_FALSE(writing.IsOpen());
    EXPECT_EQ(kMappedCannotOpen, reading.Opened());
    EXPECT_EQ(kMappedCannotOpen, writing.Opened());
    EXPECT_NE(kSqliteOk, writing.Begun());
}

} // namespace tsl::test
