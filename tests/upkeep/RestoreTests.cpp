// tslhost restore
#include "files/UserIdList.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/FullForm.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/BackupFixture.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/backup/Manifest.h"
#include "upkeep/backup/Restore.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kThreeRecords[] = "{\"name\":\"a\",\"app\":1,\"user\":1}\n"
                                 "{\"name\":\"b\",\"app\":2,\"user\":1}\n"
                                 "{\"name\":\"c\",\"app\":3,\"user\":1,\"kind\":8}\n";

} // namespace

class Restore : public BackupTest {
protected:
    Outcome Run() {
        return OutcomeOf([&] { m_report = RestoreStore(Folder().wstring(), Store(), Unheard); });
    }
    const RestoreReport& Report() const { return m_report; }
    fs::path Kept(const wchar_t* name) const { return fs::path(m_report.keptFolder) / name; }

private:
    RestoreReport m_report;
};

TEST_F(Restore, GivesTheComponentItsRecordsBackAndNoIdTwice) {
    ASSERT_EQ(0, RunConsole(L"import -", kThreeRecords).exitCode);
    const std::string listed = RunConsole(L"list --json").output;
    const std::string user = RunConsole(L"whoami").output;
    EXPECT_THAT(listed, HasSubstr("\"b\""));
    ASSERT_EQ(0, RunConsole(Typed(L"backup")).exitCode);
    ASSERT_EQ(0, RunConsole(L"import -", kThreeRecords).exitCode);
    ASSERT_EQ(0, RunConsole(L"delete --user 1 --first 1 --yes").exitCode);
    ASSERT_NE(listed, RunConsole(L"list --json").output);

    const ConsoleResult restored = RunConsole(Typed(L"restore"));
    EXPECT_EQ(0, restored.exitCode) << restored.errors;
    EXPECT_THAT(restored.output, HasSubstr(" restored from "));
    EXPECT_THAT(restored.output, HasSubstr("what was there before lies in "));
    EXPECT_THAT(restored.output, HasSubstr("the counter stayed at 6"));
    EXPECT_EQ(listed, RunConsole(L"list --json").output);
    EXPECT_EQ(user, RunConsole(L"whoami").output);
    EXPECT_EQ("7\n", RunConsole(L"id").output);
}

TEST_F(Restore, MakesTheStoreWhereThereIsNone) {
    ASSERT_EQ(0, RunConsole(L"import -", kThreeRecords).exitCode);
    const std::string listed = RunConsole(L"list --json").output;
    const std::string user = RunConsole(L"whoami").output;
    ASSERT_NO_FATAL_FAILURE(BackUp());
    fs::remove_all(StoreFolder().parent_path());
    ASSERT_EQ(ExitCode::Fine, Run().code);
    EXPECT_TRUE(Report().keptFolder.empty());
    EXPECT_EQ(3u, Report().counter);
    EXPECT_FALSE(Report().counterOfStore);
    EXPECT_EQ(listed, RunConsole(L"list --json").output);
    EXPECT_EQ(user, RunConsole(L"whoami").output);
    EXPECT_EQ("4\n", RunConsole(L"id").output);
}

TEST_F(Restore, KeepsWhatWasThere) {
    BackUpAndChange();
    const StorePaths store = Store();
    const Bytes actionLog = ReadBytes(store.actionLog);
    const Bytes replayLog = ReadBytes(store.replayLog);
    const Bytes counter = ReadBytes(store.counter);
    const Bytes userIds = ReadBytes(store.userIds);
    const Outcome outcome = Run();
    ASSERT_EQ(ExitCode::Fine, outcome.code) << outcome.message;
    ExpectSample();
    EXPECT_EQ(StoreFolder(), fs::path(Report().keptFolder).parent_path());
    EXPECT_THAT(fs::path(Report().keptFolder).filename().string(),
                testing::MatchesRegex("before-restore-........-......"));
    EXPECT_EQ(actionLog, ReadBytes(Kept(L"ualog.db")));
    EXPECT_EQ(replayLog, ReadBytes(Kept(L"uareplay.db")));
    EXPECT_EQ(counter, ReadBytes(Kept(L"actionLog.txt")));
    EXPECT_EQ(userIds, ReadBytes(Kept(L"UserIdList.dat")));
    EXPECT_EQ(9u, StoreContent().size() - 2) << "four files, four kept, their folder; two folders";

    const std::wstring first = Report().keptFolder;
    ASSERT_EQ(ExitCode::Fine, Run().code) << "a second one within the second";
    EXPECT_NE(first, Report().keptFolder);
    ExpectSample();
}

TEST_F(Restore, RefusesASpoiledBackupAndTouchesNothing) {
    BackUpAndChange();
    const FolderContent before = StoreContent();
    const FolderContent backup = ContentOf(Folder());
    ASSERT_EQ(5u, backup.size());
    for (const auto& [path, whole] : backup) {
        SCOPED_TRACE(path.string());
        for (const size_t place : {size_t{0}, whole.size() / 2, whole.size() - 1}) {
            Bytes spoiled = whole;
            spoiled[place] ^= 4;
            WriteBytes(path, spoiled);
            EXPECT_EQ(ExitCode::Damaged, Run().code) << place;
        }
        WriteBytes(path, Bytes(whole.begin(), whole.end() - 1));
        EXPECT_EQ(ExitCode::Damaged, Run().code) << "shorter";
        Bytes longer = whole;
        longer.push_back(0);
        WriteBytes(path, longer);
        EXPECT_EQ(ExitCode::Damaged, Run().code) << "longer";
        fs::remove(path);
        EXPECT_EQ(ExitCode::Damaged, Run().code) << "missing";
        fs::create_directory(path);
        EXPECT_EQ(ExitCode::Damaged, Run().code) << "a folder";
        fs::remove(path);
        WriteBytes(path, whole);
        EXPECT_EQ(before, StoreContent());
    }
    EXPECT_EQ(ExitCode::Fine, Run().code);
}

TEST_F(Restore, WantsTheFolderOfABackup) {
    MakeSample();
    const FolderContent before = StoreContent();
    EXPECT_EQ(ExitCode::Usage, Run().code);
    fs::create_directories(Folder());
    EXPECT_EQ(ExitCode::Damaged, Run().code);
    EXPECT_EQ(before, StoreContent());
}

TEST_F(Restore, WaitsForTheLocksAndThenGivesUp) {
    BackUpAndChange();
    const FolderContent before = StoreContent();
    const std::pair<const wchar_t*, DWORD> timeOuts[] = {
        {kSqliteAccessLock, 3000}, {kLogIdLock, 10000}, {kLoginInfoMutexName, 3000}};
    for (const auto& [lock, timeOut] : timeOuts) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(lock)));
        const MutexHolder holder(lock);
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
        EXPECT_EQ(ExitCode::Locked, Run().code);
        EXPECT_THAT(waits.TimeOuts(lock), ElementsAre(timeOut));
    }
    EXPECT_EQ(before, StoreContent());
    for (const wchar_t* const lock : {kSqliteAccessLock, kLogIdLock, kLoginInfoMutexName})
        EXPECT_TRUE(MutexIsFree(lock));
}

TEST_F(Restore, PutsAllBackWhenAFileIsInUse) {
    BackUpAndChange();
    const FolderContent before = StoreContent();
    const StorePaths store = Store();
    for (const std::wstring& path :
         {store.counter, store.actionLog, store.replayLog, store.userIds}) {
        SCOPED_TRACE(testing::PrintToString(path));
        Outcome outcome;
        {
            const CHandle user(CreateFileW(path.c_str(), GENERIC_READ,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                           OPEN_EXISTING, 0, nullptr));
            ASSERT_TRUE(user);
            outcome = Run();
        }
        EXPECT_EQ(ExitCode::Locked, outcome.code) << outcome.message;
        EXPECT_THAT(outcome.message, HasSubstr("another program uses the file"));
        EXPECT_EQ(before, StoreContent());
    }
}

TEST_F(Restore, CommandGivesUpWhileADatabaseIsOpen) {
    BackUpAndChange();
    const FolderContent before = StoreContent();
    {
        const FileDatabase host(Store().actionLog);
        host.Query("BEGIN; SELECT COUNT(*) FROM TslIf_DbActionLog");
        EXPECT_EQ(3, RunConsole(Typed(L"restore")).exitCode);
    }
    EXPECT_EQ(before, StoreContent());
}

TEST_F(Restore, SetsJournalsAside) {
    BackUpAndChange();
    const std::vector<Row> rows = RowsOf(Folder() / L"ualog.db", kActionLogRows);
    ASSERT_NO_FATAL_FAILURE(LeaveJournal(Store()));
    const Bytes changed = ReadBytes(Store().actionLog);
    const Bytes journal = ReadBytes(JournalOf(Store().actionLog));
    ASSERT_EQ(ExitCode::Fine, Run().code);
    EXPECT_FALSE(fs::exists(JournalOf(Store().actionLog)));
    EXPECT_EQ(rows, RowsOf(Store().actionLog, kActionLogRows));
    EXPECT_EQ(changed, ReadBytes(Kept(L"ualog.db")));
    EXPECT_EQ(journal, ReadBytes(Kept(L"ualog.db-journal")));
    EXPECT_EQ(9, CountRows(Kept(L"ualog.db"), kActionLogRows)) << "the engine can still use both";
}

// The engine would play it into the new database, whatever the header says.
TEST_F(Restore, SetsAWriteAheadLogAside) {
    MakeSample();
    BackUp();
    const std::vector<Row> rows = RowsOf(Folder() / L"ualog.db", kActionLogRows);
    Bytes log;
    Bytes changed;
    {
        const FileDatabase host(Store().actionLog);
        host.Query("PRAGMA journal_mode = WAL; UPDATE TslIf_DbActionLog SET ActionName = 'other'");
        log = ReadBytes(Store().actionLog + L"-wal");
        changed = ReadBytes(Store().actionLog);
    }
    WriteBytes(Store().actionLog, changed); // as a process leaves both that ends then
    WriteBytes(Store().actionLog + L"-wal", log);
    ASSERT_EQ(ExitCode::Fine, Run().code);
    EXPECT_EQ(rows, RowsOf(Store().actionLog, kActionLogRows));
    EXPECT_EQ(log, ReadBytes(Kept(L"ualog.db-wal")));
}

TEST_F(Restore, KeepsTheHigherCounter) {
    MakeSample();
    BackUp();
    for (const auto& [own, expected] :
         {std::pair(L"00000599\t\r\n", 600u), std::pair(L"00000601\t\r\n", 601u),
          std::pair(L"", 600u), std::pair(L"nonsense", 600u)}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(own)));
        WriteBytes(Store().counter, Utf16FileBytes(own));
        ASSERT_EQ(ExitCode::Fine, Run().code);
        EXPECT_EQ(expected, Report().counter);
        EXPECT_EQ(expected == 601, Report().counterOfStore);
        EXPECT_EQ(std::to_string(expected + 1) + "\n", RunConsole(L"id").output);
    }
}

TEST_F(Restore, LeavesCounterAndUsersWhereTheBackupHasNone) {
    MakeSample();
    fs::remove(Store().counter);
    fs::remove(Store().userIds);
    fs::remove(Store().replayLog);
    BackUp();
    fs::remove_all(StoreFolder().parent_path());
    MakeSample();
    const Bytes counter = ReadBytes(Store().counter);
    const Bytes users = ReadBytes(Store().userIds);
    const Bytes replayLog = ReadBytes(Store().replayLog);
    const ConsoleResult restored = RunConsole(Typed(L"restore --json"));
    EXPECT_EQ(0, restored.exitCode) << restored.errors;
    EXPECT_THAT(restored.output,
                HasSubstr("\"counter\":600,\"counterStayed\":true,\"userIdsStayed\":true}"));
    EXPECT_EQ(counter, ReadBytes(Store().counter));
    EXPECT_EQ(users, ReadBytes(Store().userIds));
    EXPECT_FALSE(fs::exists(Store().replayLog)) << "its records are younger than the backup";
    FolderContent content = StoreContent();
    EXPECT_EQ(1, std::ranges::count_if(content,
                                       [&](const auto& file) {
                                           return file.first.filename() == L"uareplay.db" &&
                                                  file.second == replayLog;
                                       }))
        << "kept";
}

TEST_F(Restore, SetsTheCounterAsideForAStoreOfTheOlderForm) {
    MakeStoreFolder();
    {
        const FileDatabase older(Store().actionLog, /*create=*/true);
        older.Query("CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER, ActionLogId "
                    "INTEGER)");
    }
    BackUp();
    fs::remove(Store().actionLog);
    MakeSample();
    ASSERT_EQ(ExitCode::Fine, Run().code);
    EXPECT_FALSE(fs::exists(Store().counter)) << "with one it would never be converted";
    EXPECT_EQ(Utf16FileBytes(L"00000600\t\r\n"), ReadBytes(Kept(L"actionLog.txt")));
}

TEST_F(Restore, ReplacesAFolderThatLiesInThePlaceOfAFile) {
    BackUpAndChange();
    const StorePaths store = Store();
    for (const std::wstring& path : {store.actionLog, store.counter}) {
        fs::remove(path);
        fs::create_directory(path);
        WriteBytes(fs::path(path) / L"letter.txt", {1, 2});
    }
    const Outcome outcome = Run();
    ASSERT_EQ(ExitCode::Fine, outcome.code) << outcome.message;
    ExpectSample();
    EXPECT_EQ((Bytes{1, 2}), ReadBytes(Kept(L"ualog.db") / L"letter.txt"));
}

// Whoever made the backup wrote its manifest, with a sum that is right.
TEST_F(Restore, TellsAHostileTimeOfABackupHarmlessly) {
    BackUpAndChange();
    BackupManifest manifest = ReadManifest(Folder().wstring());
    manifest.time = "\x1b]0;x\x07"
                    "b\u009b31m\u202Et" +
                    std::string(100'000, 'z');
    fs::remove(Folder() / kManifestName);
    WriteManifest(Folder().wstring(), manifest);
    const ConsoleResult restored = RunConsole(Typed(L"restore"));
    EXPECT_EQ(0, restored.exitCode) << restored.errors;
    EXPECT_THAT(restored.output, HasSubstr(", made  ]0;x b 31m tzzz"));
    EXPECT_LT(restored.output.size(), 1500u);
    const ConsoleResult again = RunConsole(Typed(L"restore --json"));
    EXPECT_THAT(again.output, HasSubstr("\"time\":\"\\u001b]0;x\\u0007b\\u009b31m\\u202etzzz"));
}

TEST_F(Restore, IsACommand) {
    EXPECT_EQ(2, RunConsole(L"restore").exitCode);
    EXPECT_EQ(2, RunConsole(Typed(L"restore")).exitCode);
    EXPECT_THAT(RunConsole(L"restore --help").output, HasSubstr("Example: tslhost restore"));
    BackUpAndChange();
    WriteBytes(Folder() / L"ualog.db", {1});
    const ConsoleResult refused = RunConsole(Typed(L"restore"));
    EXPECT_EQ(4, refused.exitCode);
    EXPECT_EQ("tslhost: the backup is damaged: ualog.db is not what its manifest says\n",
              refused.errors);
}

} // namespace tsl::test
