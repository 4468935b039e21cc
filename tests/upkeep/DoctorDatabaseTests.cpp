// What an examination says of a database.
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/DoctorFixture.h"
#include "upkeep/doctor/DatabaseCheck.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// The columns of a table as the component makes it, but for how the statement begins.
constexpr char kColumns[] =
    "(ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,ActionName "
    "TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,PreActionName TEXT, "
    "PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER)";

} // namespace

class DoctorOfDatabases : public DoctorTest {
protected:
    void ChangeActionLog(const std::string& statements) const {
        FileDatabase(Store().actionLog).Query(statements);
    }
    Finding AfterChange(const std::string& statements,
                        std::string_view subject = "ualog.db") const {
        ChangeActionLog(statements);
        return Worst(subject);
    }

    static void ExpectNoCopyIsLeft() {
        for (const auto& entry : fs::directory_iterator(fs::temp_directory_path()))
            EXPECT_FALSE(entry.path().filename().wstring().starts_with(L"tslhost-doctor"));
    }

    // The files as a process leaves them that ends in the middle of a change.
    void InterruptAChange() const {
        const auto journal = JournalOf(Store().actionLog);
        Bytes changed;
        Bytes left;
        {
            const FileDatabase database(Store().actionLog);
            database.Query("PRAGMA cache_size = 1; BEGIN; UPDATE TslIf_DbActionLog SET AppId = 77");
            changed = ReadBytes(Store().actionLog);
            left = ReadBytes(journal);
            database.Query("ROLLBACK");
        }
        ASSERT_NE(ReadBytes(Store().actionLog), changed);
        WriteBytes(Store().actionLog, changed);
        WriteBytes(journal, left);
    }
};

TEST_F(DoctorOfDatabases, TableWithOtherColumnsIsDamage) {
    EXPECT_DAMAGE(AfterChange("ALTER TABLE TslIf_DbActionLog ADD COLUMN More TEXT"),
                  "has other columns");
}

TEST_F(DoctorOfDatabases, ColumnWithoutTheBlankBeforeItIsAWarning) {
    EXPECT_WARNING(AfterChange("PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = "
                               "replace(sql, ', Pre', ',Pre')"),
                   "another program has written its text");
}

TEST_F(DoctorOfDatabases, TableThatWasRenamedIntoPlaceIsAWarning) {
    EXPECT_WARNING(AfterChange(std::string("ALTER TABLE TslIf_DbActionLog RENAME TO Old; CREATE "
                                           "TABLE New ") +
                               kColumns +
                               "; INSERT INTO New SELECT * FROM Old; DROP TABLE Old; ALTER TABLE "
                               "New RENAME TO TslIf_DbActionLog"),
                   "another program has written its text");
}

TEST_F(DoctorOfDatabases, TablesOfOthersAreAWarning) {
    EXPECT_WARNING(AfterChange("CREATE TABLE Notes (a); CREATE INDEX ById ON TslIf_DbActionLog "
                               "(ActionLogId)"),
                   "not the component's: index ById, table Notes");
}

TEST_F(DoctorOfDatabases, TriggerIsDamage) {
    EXPECT_DAMAGE(AfterChange("CREATE TRIGGER t BEFORE INSERT ON TslIf_DbActionLog BEGIN SELECT "
                              "RAISE(ABORT, 'no'); END"),
                  "trigger t can keep records out");
}

TEST_F(DoctorOfDatabases, MissingTableOfKeptRecordsIsFine) {
    EXPECT_OK(AfterChange("DROP TABLE TslIf_ContentDeleteProperty", "ualog.db schema"));
    EXPECT_EQ("exact, 1 of 2 tables", Worst("ualog.db schema").text);
}

TEST_F(DoctorOfDatabases, DatabaseOfSomebodyElseIsDamage) {
    EXPECT_DAMAGE(AfterChange("DROP TABLE TslIf_ContentDeleteProperty; DROP TABLE "
                              "TslIf_DbActionLog; CREATE TABLE Notes (a)"),
                  "none of the component's tables, but table Notes");
}

TEST_F(DoctorOfDatabases, EmptyFileIsAWarning) {
    WriteBytes(Store().actionLog, {});
    EXPECT_WARNING(Worst("ualog.db"), "empty");
}

TEST_F(DoctorOfDatabases, OtherPageSizeIsAWarning) {
    EXPECT_WARNING(AfterChange("PRAGMA page_size = 4096; VACUUM"), " of 4096 bytes, 0 free; ");
}

TEST_F(DoctorOfDatabases, PagesAreCounted) {
    const FileDatabase database(Store().actionLog);
    EXPECT_EQ(database.Value("PRAGMA page_count") + " of 2048 bytes, " +
                  database.Value("PRAGMA freelist_count") + " free",
              Worst("ualog.db pages").text);
}

TEST_F(DoctorOfDatabases, MarkBelowTheHighestIdIsDamage) {
    EXPECT_DAMAGE(AfterChange("PRAGMA user_version = 599", "ualog.db mark"),
                  "no id is above 599, but 600 is there");
    EXPECT_OK(AfterChange("PRAGMA user_version = 0", "ualog.db mark"));
    EXPECT_OK(AfterChange("PRAGMA user_version = 700", "ualog.db mark"));
    // An unsigned number: 4294967295.
    EXPECT_OK(AfterChange("PRAGMA user_version = -1", "ualog.db mark"));
}

TEST_F(DoctorOfDatabases, RecordThatIsThereTwiceIsDamage) {
    EXPECT_DAMAGE(AfterChange("INSERT INTO TslIf_DbActionLog SELECT * FROM TslIf_DbActionLog WHERE "
                              "ActionLogId IN (7, 8)"),
                  "TslIf_DbActionLog: 2 rows more than there are ids");
}

TEST_F(DoctorOfDatabases, RowWithoutARecordIdIsDamage) {
    for (const char* const id : {"NULL", "0", "-1", "4294967296", "'x'", "1.5"}) {
        SCOPED_TRACE(id);
        EXPECT_DAMAGE(AfterChange("UPDATE TslIf_DbActionLog SET ActionLogId = " + std::string(id) +
                                  " WHERE rowid = 7"),
                      "the id of 1 row is no record id");
    }
}

TEST_F(DoctorOfDatabases, HeaderThatKeepsTheComponentFromWritingIsDamage) {
    Bytes file = ReadBytes(Store().actionLog);
    file[18] = 9;
    WriteBytes(Store().actionLog, file);
    EXPECT_EQ("ok", FileDatabase(Store().actionLog).Value("PRAGMA integrity_check"));
    EXPECT_DAMAGE(Worst("ualog.db"), "a format that cannot be written");
}

TEST_F(DoctorOfDatabases, InterruptedChangeIsLookedAtInACopy) {
    ASSERT_NO_FATAL_FAILURE(InterruptAChange());
    const Findings findings = ExamineUnchanged();
    EXPECT_WARNING(WorstOf(findings, "ualog.db journal"), "left by a change that was interrupted");
    EXPECT_OK(WorstOf(findings, "ualog.db rows"));
    EXPECT_FALSE(HasDamage(findings));
    ExpectNoCopyIsLeft();
}

TEST_F(DoctorOfDatabases, LargeOneIsExaminedWithoutTheLock) {
    ChangeActionLog("UPDATE TslIf_DbActionLog SET ActionParameters = hex(zeroblob(5000))");
    ASSERT_GT(fs::file_size(Store().actionLog), 4u << 20);
    for (const auto& [path, kind, keepsLock] :
         {std::tuple(Store().actionLog, kActionLogDatabase, false),
          std::tuple(Store().replayLog, kReplayDatabase, true)}) {
        std::optional<CStoreLock> lock;
        lock.emplace(kSqliteAccessLock, /*timeoutMilliseconds=*/1000);
        KnownIds ids;
        Findings findings;
        CheckDatabase(path, kind, lock, ids, findings);
        EXPECT_EQ(keepsLock, lock.has_value());
        EXPECT_EQ(600u, ids.highestInUse);
        EXPECT_OK(WorstOf(findings, kind.name));
    }
    EXPECT_OK(Worst("ualog.db"));
    ExpectNoCopyIsLeft();
}

TEST_F(DoctorOfDatabases, JournalThatIsNotNeededStays) {
    WriteBytes(JournalOf(Store().actionLog), Bytes(512, 0));
    EXPECT_WARNING(Worst("ualog.db journal"), "not needed");
    WriteBytes(JournalOf(Store().replayLog), {});
    EXPECT_WARNING(Worst("uareplay.db journal"), "not needed");
}

TEST_F(DoctorOfDatabases, WriteAheadLogIsAWarningAndGetsNoFiles) {
    EXPECT_WARNING(AfterChange("PRAGMA journal_mode = WAL"), "write-ahead log");
}

TEST_F(DoctorOfDatabases, DatabaseThatAnotherProgramLocksIsAWarning) {
    const FileDatabase other(Store().actionLog);
    other.Query("BEGIN EXCLUSIVE");
    const Findings findings = ExamineUnchanged();
    EXPECT_WARNING(WorstOf(findings, "ualog.db"), "in use by another program");
    EXPECT_OK(WorstOf(findings, "uareplay.db"));
}

} // namespace tsl::test
