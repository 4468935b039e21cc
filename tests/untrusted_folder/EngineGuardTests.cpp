// What the engine does with what others have left beside a database, or made of it, and how long it
// works.
#include "engine/EngineGuard.h"

#include <sqlite3.h>

#include "console/Text.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"
#include "tests/untrusted_folder/Calls.h"
#include "tests/untrusted_folder/Links.h"

namespace tsl::test {

namespace fs = std::filesystem;

class EngineGuard : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        MakeCounterFile();
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        Record(1);
    }
    void Record(UINT32 id) {
        EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(id, L"playItem")));
    }
    static std::string Ids() {
        return FileDatabase(ActionLogPath())
            .Value("SELECT group_concat(ActionLogId) FROM TslIf_DbActionLog");
    }
    // How the header says that the file is written: 1 with a rollback journal, 2 with a log.
    static int WriteVersion() { return ReadBytes(ActionLogPath()).at(18); }
    static fs::path Beside(const wchar_t* ending) { return ActionLogPath().wstring() + ending; }
};

TEST_F(EngineGuard, BringsAStoreWithAWriteAheadLogBackToTheRollbackJournal) {
    FileDatabase(ActionLogPath()).Query("PRAGMA journal_mode = WAL");
    ASSERT_EQ(2, WriteVersion());
    Record(2);
    EXPECT_EQ(1, WriteVersion());
    EXPECT_EQ("1,2", Ids());
    EXPECT_FALSE(fs::exists(Beside(L"-wal")));
    EXPECT_FALSE(fs::exists(Beside(L"-shm")));
}

TEST_F(EngineGuard, TakesOverWhatAWriteAheadLogHolds) {
    Bytes database;
    Bytes log;
    {
        const FileDatabase other(ActionLogPath());
        other.Query("PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0");
        other.Query("INSERT INTO TslIf_DbActionLog (ActionLogId) VALUES (77)");
        // As a process that was ended leaves them.
        database = ReadBytes(ActionLogPath());
        log = ReadBytes(Beside(L"-wal"));
    }
    WriteBytes(ActionLogPath(), database);
    WriteBytes(Beside(L"-wal"), log);
    Record(2);
    EXPECT_EQ(1, WriteVersion());
    EXPECT_EQ("1,77,2", Ids());
}

TEST_F(EngineGuard, SharesNoMemoryWhileOthersHaveAWriteAheadLogOpen) {
    const FileDatabase other(ActionLogPath());
    other.Query("PRAGMA journal_mode = WAL");
    other.Query("SELECT * FROM TslIf_DbActionLog");
    constexpr HRESULT kBusy = static_cast<HRESULT>(0x80041604);
    CVariant answer;
    EXPECT_EQ(kBusy, Plugin().Request(kCommandQueryRecords,
                                      ContainerBuilder().Array<ULONG>(kKeyRecordIds, {1}), nullptr,
                                      answer.Address()));
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
}

TEST_F(EngineGuard, OpensNoSuperJournal) {
    const ForeignFolder foreign;
    Bytes database;
    Bytes journal;
    {
        const FileDatabase writer(ActionLogPath());
        writer.Query(
            "WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 900) "
            "INSERT INTO TslIf_DbActionLog (ActionLogId, ActionName) SELECT i, "
            "hex(zeroblob(200)) FROM n");
        writer.Query("PRAGMA cache_size = 1");
        writer.Query("BEGIN; UPDATE TslIf_DbActionLog SET ActionName = 'changed'");
        database = ReadBytes(ActionLogPath());
        journal = ReadBytes(Beside(L"-journal"));
        writer.Query("ROLLBACK");
    }
    ASSERT_GT(journal.size(), 1000u);
    // The name of a file that the engine would read and then delete, as the last thing in the
    // journal.
    const std::string name = ToUtf8(foreign.Secret().wstring());
    const auto append = [&](UINT32 number) {
        for (int shift = 24; shift >= 0; shift -= 8)
            journal.push_back(static_cast<unsigned char>(number >> shift));
    };
    UINT32 sum = 0;
    for (const char character : name)
        sum += static_cast<UINT32>(static_cast<signed char>(character));
    append(0x40000000 / kPageSize + 1);
    journal.insert(journal.end(), name.begin(), name.end());
    append(static_cast<UINT32>(name.size()));
    append(sum);
    const Bytes magic = {0xd9, 0xd5, 0x05, 0xf9, 0x20, 0xa1, 0x63, 0xd7};
    journal.insert(journal.end(), magic.begin(), magic.end());
    WriteBytes(ActionLogPath(), database);
    WriteBytes(Beside(L"-journal"), journal);
    MakeAllCalls(Plugin());
    foreign.ExpectUntouched();
    Record(3);
    EXPECT_EQ("0",
              FileDatabase(ActionLogPath())
                  .Value("SELECT COUNT(*) FROM TslIf_DbActionLog WHERE ActionName = 'changed'"))
        << "the journal was rolled back";
}

TEST_F(EngineGuard, EndsWorkThatTakesTooLong) {
    sqlite3* connection = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(":memory:", &connection));
    ASSERT_EQ(SQLITE_OK, LimitWork(connection, /*seconds=*/1));
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(SQLITE_INTERRUPT,
              sqlite3_exec(connection,
                           "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                           "SELECT count(*) FROM n",
                           nullptr, nullptr, nullptr));
    EXPECT_GE(GetTickCount64() - start, 900u);
    // What comes after it on the same connection has had its time too.
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(connection, "SELECT 1", nullptr, nullptr, nullptr));
    EXPECT_EQ(SQLITE_OK, sqlite3_close(connection));
}

} // namespace tsl::test
