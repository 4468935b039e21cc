// One row per record id: which older rows go, and how the file's mark rises.
#include "store/LatestRow.h"

#include "tests/support/FileDatabase.h"
#include "tests/support/OpenTarget.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

// The main table of each file.
constexpr Target kActionLog = {L"ualog.db", L"DbActionLog"};
constexpr Target kReplay = {L"uareplay.db", L"ActionReplay"};

class LatestRow : public StoreTest {
protected:
    // Puts rows of these ids and a mark, as the signed number that the header shows, into the file.
    void Prepare(const Target& target, const std::string& ids, INT32 mark) {
        m_target = target;
        {
            CDatabase database;
            ASSERT_EQ(S_OK, OpenTarget(m_store, m_target, &database));
        }
        const FileDatabase file(Path());
        file.Query("DELETE FROM " + Table());
        if (!ids.empty()) file.Query("INSERT INTO " + Table() + " (ActionLogId) VALUES " + ids);
        file.Query("PRAGMA user_version = " + std::to_string(mark));
    }

    enum class End { Commit, RollBack };

    int Remove(UINT32 recordId, End end = End::Commit) {
        CDatabase database;
        EXPECT_EQ(S_OK, OpenTarget(m_store, m_target, &database));
        CTransaction transaction(database);
        EXPECT_EQ(kSqliteOk, transaction.Begin());
        const int result = RemoveOlderRows(m_target, database, recordId);
        if (end == End::Commit) {
            EXPECT_EQ(kSqliteOk, transaction.Commit());
        }
        return result;
    }

    std::filesystem::path Path() const { return StoreFolder() / m_target.fileName; }
    std::string Table() const {
        const std::wstring table = m_target.Table();
        return std::string(table.begin(), table.end());
    }

    // The ids that are left, in their order, with commas.
    std::string Ids() const {
        return FileDatabase(Path()).Value("SELECT COALESCE(GROUP_CONCAT(id, ','), '') FROM "
                                          "(SELECT COALESCE(ActionLogId, 'NULL') AS id FROM " +
                                          Table() + " ORDER BY rowid)");
    }
    std::string Mark() const { return FileDatabase(Path()).Value("PRAGMA user_version"); }

    const CActionLogStore m_store{GetModuleHandleW(nullptr)};
    Target m_target;
};

struct Removal {
    const char* what;
    const char* ids;
    INT32 mark;
    UINT32 recordId;
    const char* idsLeft;
    const char* markAfter;
};

// A mark from 2^31 on shows as a negative number.
const Removal kRemovals[] = {
    {"first row of a new file", "", 0, 1, "", "1"},
    {"id right above the mark", "(1),(2),(3)", 3, 4, "1,2,3", "4"},
    {"id far above the mark", "(1),(2),(3)", 3, 1000, "1,2,3", "1000"},
    {"id above the mark is not looked for", "(1),(2),(9)", 3, 9, "1,2,9", "9"},
    {"id at the mark", "(1),(2),(3)", 3, 3, "1,2", "3"},
    {"id below the mark", "(1),(2),(3)", 3, 2, "1,3", "3"},
    {"all rows of the id", "(2),(1),(2),(3),(2)", 3, 2, "1,3", "3"},
    {"id below the mark that is not there", "(1),(3)", 3, 2, "1,3", "3"},
    {"mark stays when the table is empty", "", 7, 5, "", "7"},
    {"older file, id above its rows", "(1),(40),(2)", 0, 41, "1,40,2", "41"},
    {"older file, id of its highest row", "(1),(40),(2)", 0, 40, "1,2", "40"},
    {"older file, id below its highest row", "(1),(40),(2)", 0, 2, "1,40", "40"},
    {"older file with rows twice", "(1),(40),(1)", 0, 1, "40", "40"},
    {"older file whose rows have no id", "(NULL),(NULL)", 0, 3, "NULL,NULL", "3"},
    {"id 2147483647", "(2147483647)", 2147483647, 2147483647, "", "2147483647"},
    {"mark rises over 2^31", "(2147483647)", 2147483647, 2147483648u, "2147483647", "-2147483648"},
    {"id at a mark above 2^31", "(3000000000)", -1294967296, 3000000000u, "", "-1294967296"},
    {"id above a mark above 2^31", "(3000000000)", -1294967296, 3000000001u, "3000000000",
     "-1294967295"},
    {"id below a mark above 2^31", "(5),(3000000000)", -1294967296, 5, "3000000000", "-1294967296"},
    {"highest id is new", "(4294967294)", -2, 4294967295u, "4294967294", "-1"},
    {"highest id is at the mark", "(1),(4294967295)", -1, 4294967295u, "1", "-1"},
    {"small id below the highest mark", "(1),(4294967295)", -1, 1, "4294967295", "-1"},
    {"older file with the highest id", "(1),(4294967295)", 0, 4294967295u, "1", "-1"},
    {"older file with an id beyond what ids can be", "(1),(4294967296)", 0, 1, "4294967296", "-1"},
};

} // namespace

TEST_F(LatestRow, GoesByTheMarkOfItsFile) {
    for (const Target& target : {kActionLog, kReplay}) {
        for (const Removal& removal : kRemovals) {
            SCOPED_TRACE(removal.what);
            ASSERT_NO_FATAL_FAILURE(Prepare(target, removal.ids, removal.mark));
            EXPECT_EQ(kSqliteOk, Remove(removal.recordId));
            EXPECT_EQ(removal.idsLeft, Ids());
            EXPECT_EQ(removal.markAfter, Mark());
        }
    }
}

// The row that is written afterwards in the same transaction is the one that stays.
TEST_F(LatestRow, IsTheOneThatIsInsertedNext) {
    ASSERT_NO_FATAL_FAILURE(Prepare(kActionLog, "(1),(2),(3)", 3));
    {
        CDatabase database;
        ASSERT_EQ(S_OK, OpenTarget(m_store, m_target, &database));
        CTransaction transaction(database);
        ASSERT_EQ(kSqliteOk, transaction.Begin());
        ASSERT_EQ(kSqliteOk, RemoveOlderRows(m_target, database, 2));
        ASSERT_EQ(kSqliteOk,
                  ExecuteStatement(database, L"REPLACE INTO TslIf_DbActionLog "
                                             L"(ActionLogId, ActionName) VALUES (2, 'new')"));
        ASSERT_EQ(kSqliteOk, transaction.Commit());
    }
    EXPECT_EQ("1,3,2", Ids());
    EXPECT_EQ("new", FileDatabase(Path()).Value(
                         "SELECT ActionName FROM TslIf_DbActionLog WHERE ActionLogId = 2"));
}

TEST_F(LatestRow, RollbackLeavesRowsAndMarkAsTheyWere) {
    const Removal undone[] = {
        {"id below the mark", "(1),(2),(3)", 3, 2, "1,2,3", "3"},
        {"id above the mark", "(1),(2),(3)", 3, 8, "1,2,3", "3"},
        {"older file", "(1),(2),(3)", 0, 3, "1,2,3", "0"},
    };
    for (const Removal& removal : undone) {
        SCOPED_TRACE(removal.what);
        ASSERT_NO_FATAL_FAILURE(Prepare(kActionLog, removal.ids, removal.mark));
        EXPECT_EQ(kSqliteOk, Remove(removal.recordId, End::RollBack));
        EXPECT_EQ(removal.idsLeft, Ids());
        EXPECT_EQ(removal.markAfter, Mark());
    }
}

TEST_F(LatestRow, OfATableWithoutMarkGoesByItsRowsAndLeavesTheMark) {
    const Target targets[] = {
        {L"ualog.db", L"ContentDeleteProperty"},
        {L"uareplay.db", L"ContentDeleteProperty"},
        {L"uareplay.db", L"DbActionLog"},
        {L"ualog.db", L"ActionReplay"},
    };
    const Removal removals[] = {
        {"id above the mark of the file", "(5),(90),(6)", 10, 90, "5,6", "10"},
        {"id below the mark of the file", "(5),(90),(5)", 10, 5, "90", "10"},
        {"file without mark", "(5),(90)", 0, 90, "5", "0"},
        {"id that is not there", "(5),(90)", 10, 4294967295u, "5,90", "10"},
        {"highest id", "(5),(4294967295)", 10, 4294967295u, "5", "10"},
        {"first row", "", 0, 1, "", "0"},
    };
    for (const Target& target : targets) {
        for (const Removal& removal : removals) {
            SCOPED_TRACE(removal.what);
            ASSERT_NO_FATAL_FAILURE(Prepare(target, removal.ids, removal.mark));
            EXPECT_EQ(kSqliteOk, Remove(removal.recordId));
            EXPECT_EQ(removal.idsLeft, Ids());
            EXPECT_EQ(removal.markAfter, Mark());
        }
    }
}

TEST_F(LatestRow, LeavesOtherTablesOfTheFileAlone) {
    ASSERT_NO_FATAL_FAILURE(Prepare({L"ualog.db", L"ContentDeleteProperty"}, "(1),(2)", 0));
    ASSERT_NO_FATAL_FAILURE(Prepare(kActionLog, "(1),(2)", 2));
    EXPECT_EQ(kSqliteOk, Remove(2));
    EXPECT_EQ("1", Ids());
    m_target = m_target.WithTable(L"ContentDeleteProperty");
    EXPECT_EQ("1,2", Ids());
}

TEST_F(LatestRow, FailureOfTheEngineIsHandedOn) {
    ASSERT_NO_FATAL_FAILURE(Prepare(kActionLog, "(1),(2)", 2));
    // An index from which nothing can be deleted.
    FileDatabase(Path()).Query("CREATE INDEX damaged ON TslIf_DbActionLog (UserId)");
    const std::string root =
        FileDatabase(Path()).Value("SELECT rootpage FROM sqlite_master WHERE name = 'damaged'");
    Bytes file = ReadBytes(Path());
    file[(std::stoul(root) - 1) * kPageSize] = 0xFF;
    WriteBytes(Path(), file);
    constexpr int kCorrupt = 11;
    EXPECT_EQ(kCorrupt, Remove(2, End::RollBack));
    EXPECT_EQ("1,2", Ids());
    EXPECT_EQ(kSqliteOk, Remove(3)) << "nothing is deleted for an id above the mark";
    EXPECT_EQ("3", Mark());
}

TEST_F(LatestRow, MissingTableIsAFailureAndLeavesTheMark) {
    ASSERT_NO_FATAL_FAILURE(Prepare(kActionLog, "", 0));
    {
        CDatabase database;
        ASSERT_EQ(S_OK, OpenTarget(m_store, m_target, &database));
        ASSERT_EQ(kSqliteOk, ExecuteStatement(database, L"DROP TABLE TslIf_DbActionLog"));
        CTransaction transaction(database);
        ASSERT_EQ(kSqliteOk, transaction.Begin());
        EXPECT_EQ(kSqliteError, RemoveOlderRows(m_target, database, 1));
        ASSERT_EQ(kSqliteOk, transaction.Commit());
    }
    EXPECT_EQ("0", Mark());
}

} // namespace tsl::test
