// Which records of an older store get which log kind, and what else in the folder is left alone.
#include "tests/maintenance/OldStore.h"

namespace tsl::test {

class LogKindOfOldRecord : public OldStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OldStoreTest::SetUp());
        MakeOldStore("no-records.sql");
    }
    // Adds a record; name and log kind as SQL literals.
    static void Add(const std::string& name, const std::string& kind = "NULL") {
        ChangeActionLog("INSERT INTO TslIf_DbActionLog (ActionLogId, ActionName, LogKind) VALUES "
                        "(1, " +
                        name + ", " + kind + ")");
    }
};

TEST_F(LogKindOfOldRecord, IsFourForLocationsInJustTheseLetters) {
    for (const char* const name :
         {"'userLocation'", "'UserLocation'", "'userlocation'", "'userLocation '",
          "' userLocation'", "'userLocations'", "''", "'1'", "'playItem'"}) {
        Add(name);
    }
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_EQ("4 1 1 1 1 1 1 1 1", LogKinds());
}

TEST_F(LogKindOfOldRecord, IsOneForARecordWithoutAName) {
    Add("NULL");
    Add("x'00'");
    Add("17");
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_EQ("1 1 1", LogKinds());
}

TEST_F(LogKindOfOldRecord, TakesThePlaceOfWhateverWasThere) {
    for (const char* const kind : {"0", "1", "2", "32", "'text'", "NULL"}) {
        Add("'playItem'", kind);
        Add("'userLocation'", kind);
    }
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_EQ("1 4 1 4 1 4 1 4 1 4 1 4", LogKinds());
}

TEST_F(LogKindOfOldRecord, IsGivenToThousandsOfRecords) {
    ChangeActionLog(
        "WITH RECURSIVE n(id) AS (VALUES(1) UNION ALL SELECT id + 1 FROM n "
        "WHERE id < 20000) INSERT INTO TslIf_DbActionLog (ActionLogId, ActionName) "
        "SELECT id, CASE id % 10 WHEN 0 THEN 'userLocation' ELSE 'playItem' END FROM n");
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_EQ((std::vector<Row>{{"1", "18000"}, {"4", "2000"}}),
              FileDatabase(ActionLogPath())
                  .Query("SELECT LogKind, count(*) FROM TslIf_DbActionLog GROUP BY 1 ORDER BY 1"));
}

TEST_F(LogKindOfOldRecord, IsNoConcernOfOtherTablesAndFiles) {
    const std::string content =
        "CREATE TABLE TslIf_ContentDeleteProperty (ActionName TEXT,LogKind INTEGER);"
        "CREATE TABLE TslIf_ActionReplay (ActionName TEXT,LogKind INTEGER);"
        "INSERT INTO TslIf_ContentDeleteProperty VALUES ('userLocation',NULL),('deleteItem',2);"
        "INSERT INTO TslIf_ActionReplay VALUES ('userLocation',NULL),('playItem',8);";
    Add("'userLocation'");
    ChangeActionLog(content);
    FileDatabase(ReplayPath(), /*create=*/true).Query(content);
    const Bytes replay = ReadBytes(ReplayPath());
    EXPECT_EQ(S_OK, Maintain());
    EXPECT_EQ("4", LogKinds());
    const FileDatabase file(ActionLogPath());
    EXPECT_EQ((std::vector<Row>{{"userLocation", {}}, {"deleteItem", "2"}}),
              file.Query("SELECT * FROM TslIf_ContentDeleteProperty"));
    EXPECT_EQ((std::vector<Row>{{"userLocation", {}}, {"playItem", "8"}}),
              file.Query("SELECT * FROM TslIf_ActionReplay"));
    EXPECT_EQ(replay, ReadBytes(ReplayPath()));
}

TEST_F(LogKindOfOldRecord, LeavesThePageSizeOfTheFile) {
    for (const char* const size : {"1024", "4096", "2048"}) {
        SCOPED_TRACE(size);
        std::filesystem::remove(ActionLogPath());
        std::filesystem::remove(CounterPath());
        ChangeActionLog(std::string("PRAGMA page_size = ") + size +
                        "; CREATE TABLE TslIf_DbActionLog (ActionName TEXT,LogKind INTEGER);"
                        "CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId "
                        "INTEGER); INSERT INTO TslIf_ActionRecordId VALUES (1,41)");
        EXPECT_EQ(S_OK, Maintain());
        EXPECT_EQ(size, FileDatabase(ActionLogPath()).Value("PRAGMA page_size"));
    }
}

} // namespace tsl::test
