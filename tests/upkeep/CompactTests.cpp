// tslhost compact
#include "tests/console/ConsoleRun.h"
#include "tests/support/FullForm.h"
#include "tests/support/ImportHook.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/BackupFixture.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/backup/Compact.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

BOOL WINAPI WriteToFullDisk(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

} // namespace

class Compact : public BackupTest {
protected:
    Outcome Run() {
        return OutcomeOf([&] { m_files = CompactStore(Store(), Unheard); });
    }
    const std::vector<CompactedFile>& Files() const { return m_files; }

private:
    std::vector<CompactedFile> m_files;
};

TEST_F(Compact, GivesFreePagesBackAndKeepsAllElse) {
    MakeSample();
    constexpr char kTexts[] = "SELECT group_concat(name || ' ' || sql, ';') FROM sqlite_master";
    const std::string texts = FileDatabase(Store().actionLog).Value(kTexts);
    FileDatabase(Store().actionLog)
        .Query("DELETE FROM TslIf_DbActionLog WHERE ActionLogId % 3 = 0");
    // A later row of a lower id: the order is not that of the ids.
    FileDatabase(Store().actionLog)
        .Query("UPDATE TslIf_DbActionLog SET ActionLogId = 3 WHERE ActionLogId = 599");
    const std::vector<Row> rows = RowsOf(Store().actionLog, kActionLogRows);
    const std::vector<Row> taken = RowsOf(Store().actionLog, kTakenRows);
    const std::vector<Row> replayed = RowsOf(Store().replayLog, kReplayRows);
    const UINT64 before = fs::file_size(Store().actionLog);

    const Outcome outcome = Run();
    ASSERT_EQ(ExitCode::Fine, outcome.code) << outcome.message;
    ASSERT_EQ(2u, Files().size());
    EXPECT_EQ(before, Files()[0].sizeBefore);
    EXPECT_EQ(fs::file_size(Store().actionLog), Files()[0].sizeAfter);
    EXPECT_LT(Files()[0].sizeAfter, before);
    EXPECT_EQ(rows, RowsOf(Store().actionLog, kActionLogRows));
    EXPECT_EQ(taken, RowsOf(Store().actionLog, kTakenRows));
    EXPECT_EQ(replayed, RowsOf(Store().replayLog, kReplayRows));
    const FileDatabase compacted(Store().actionLog);
    EXPECT_EQ(texts, compacted.Value(kTexts));
    EXPECT_EQ("600", compacted.Value("PRAGMA user_version"));
    EXPECT_EQ("2048", compacted.Value("PRAGMA page_size"));
    EXPECT_EQ("0", compacted.Value("PRAGMA freelist_count"));
    EXPECT_EQ("ok", compacted.Value("PRAGMA integrity_check"));
    EXPECT_EQ("600", FileDatabase(Store().replayLog).Value("PRAGMA user_version"));
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
}

TEST_F(Compact, LeavesTheComponentItsRecordsAndIds) {
    std::string lines;
    for (int line = 0; line < 40; ++line) {
        lines += "{\"name\":\"a\",\"app\":1,\"user\":" + std::to_string(1 + line % 2) +
                 ",\"stringValues\":[\"" + std::string(500, 'x') + "\"]}\n";
    }
    ASSERT_EQ(0, RunConsole(L"import -", lines).exitCode);
    ASSERT_EQ(0, RunConsole(L"delete --user 2 --first 1 --yes").exitCode);
    const std::string listed = RunConsole(L"list --json").output;
    EXPECT_THAT(listed, HasSubstr("\"id\":39"));
    ASSERT_EQ(ExitCode::Fine, Run().code);
    EXPECT_LT(Files()[0].sizeAfter, Files()[0].sizeBefore);
    EXPECT_EQ(listed, RunConsole(L"list --json").output);
    EXPECT_EQ(0, RunConsole(L"import -", "{\"name\":\"b\",\"app\":1,\"user\":1}\n").exitCode);
    EXPECT_EQ("21",
              FileDatabase(Store().actionLog).Value("SELECT COUNT(*) FROM TslIf_DbActionLog"));
    EXPECT_EQ("41", FileDatabase(Store().actionLog).Value("PRAGMA user_version"));
}

TEST_F(Compact, BringsAnotherPageSizeBackToThatOfTheComponent) {
    MakeSample();
    const std::vector<Row> rows = RowsOf(Store().actionLog, kActionLogRows);
    FileDatabase(Store().actionLog).Query("PRAGMA page_size = 4096; VACUUM");
    ASSERT_EQ("4096", FileDatabase(Store().actionLog).Value("PRAGMA page_size"));
    ASSERT_EQ(ExitCode::Fine, Run().code);
    EXPECT_EQ("2048", FileDatabase(Store().actionLog).Value("PRAGMA page_size"));
    EXPECT_EQ(rows, RowsOf(Store().actionLog, kActionLogRows));
}

TEST_F(Compact, RefusesADamagedDatabaseAndTouchesNeither) {
    MakeSample();
    const Bytes whole = ReadBytes(Store().replayLog);
    const std::vector<DamagedFile> damaged = DamagedDatabases(whole, 200);
    const size_t step = IsFullForm() ? 1 : damaged.size() / 40;
    size_t refused = 0;
    for (size_t index = 0; index < damaged.size(); index += step) {
        SCOPED_TRACE(damaged[index].how);
        PutInPlace(damaged[index], Store().replayLog);
        const FolderContent before = StoreContent();
        const Outcome outcome = Run();
        if (outcome.code == ExitCode::Fine) {
            EXPECT_EQ("ok", FileDatabase(Store().replayLog).Value("PRAGMA integrity_check"));
            continue;
        }
        ++refused;
        EXPECT_EQ(ExitCode::Damaged, outcome.code) << outcome.message;
        EXPECT_THAT(outcome.message, HasSubstr("tslhost recover"));
        EXPECT_EQ(before, StoreContent());
    }
    EXPECT_GT(refused, 0u);
    Measured("damaged databases: " + std::to_string(refused) + " not compacted");
}

TEST_F(Compact, WaitsForTheLockAndThenGivesUp) {
    MakeSample();
    const FolderContent before = StoreContent();
    const MutexHolder holder(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    const Outcome outcome = Run();
    EXPECT_EQ(ExitCode::Locked, outcome.code);
    EXPECT_THAT(outcome.message, HasSubstr("SQLiteAccess"));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
    EXPECT_EQ(before, StoreContent());
}

TEST_F(Compact, GivesUpWhileSomeoneReads) {
    MakeSample();
    const Bytes before = ReadBytes(Store().actionLog);
    const FileDatabase reader(Store().actionLog);
    reader.Query("BEGIN; SELECT COUNT(*) FROM TslIf_DbActionLog");
    const Outcome outcome = Run();
    EXPECT_EQ(ExitCode::Locked, outcome.code) << outcome.message;
    reader.Query("COMMIT");
    EXPECT_EQ(before, ReadBytes(Store().actionLog));
}

TEST_F(Compact, SaysHowMuchRoomItNeedsWhenTheDiskIsFull) {
    MakeSample();
    const FolderContent before = StoreContent();
    Outcome outcome;
    {
        const ImportHook full("WriteFile", WriteToFullDisk);
        outcome = Run();
    }
    EXPECT_EQ(ExitCode::Denied, outcome.code);
    EXPECT_THAT(outcome.message,
                HasSubstr("ualog.db: the disk is full; free up to " +
                          std::to_string(before.at(Store().actionLog).size()) + " bytes"));
    EXPECT_EQ(before, StoreContent());
}

TEST_F(Compact, IsACommand) {
    EXPECT_EQ(1, RunConsole(L"compact").exitCode) << "nothing there";
    MakeSample();
    fs::remove(Store().replayLog);
    const ConsoleResult text = RunConsole(L"compact");
    EXPECT_EQ(0, text.exitCode) << text.errors;
    EXPECT_THAT(text.output, testing::MatchesRegex("file +before +after\nualog.db .*KB .*KB\n"));
    const ConsoleResult json = RunConsole(L"compact --json");
    EXPECT_THAT(json.output, testing::StartsWith("{\"files\":[{\"name\":\"ualog.db\",\"before\":"));
    EXPECT_FALSE(fs::exists(Store().replayLog));
    EXPECT_THAT(RunConsole(L"compact --help").output, HasSubstr("Example: tslhost compact"));
}

} // namespace tsl::test
