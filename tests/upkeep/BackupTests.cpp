// tslhost backup
#include <thread>

#include "files/UserIdList.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/FullForm.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/BackupFixture.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/backup/Backup.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

// What the engine of the tests says of a database; what it fails with otherwise.
std::string IntegrityOf(const fs::path& database) {
    try {
        return FileDatabase(database).Value("PRAGMA integrity_check(1)");
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

using Backup = BackupTest;

} // namespace

TEST_F(Backup, HoldsTheWholeStore) {
    MakeSample();
    const FolderContent before = StoreContent();
    ASSERT_NO_FATAL_FAILURE(BackUp());
    EXPECT_EQ(before, StoreContent());

    const StorePaths copy = StoreIn(Folder().wstring());
    EXPECT_EQ(ReadBytes(Store().counter), ReadBytes(copy.counter));
    EXPECT_EQ(ReadBytes(Store().userIds), ReadBytes(copy.userIds));
    for (const auto& [from, to, table] :
         {std::tuple(Store().actionLog, copy.actionLog, kActionLogRows),
          std::tuple(Store().actionLog, copy.actionLog, kTakenRows),
          std::tuple(Store().replayLog, copy.replayLog, kReplayRows)}) {
        SCOPED_TRACE(table);
        EXPECT_EQ(RowsOf(from, table), RowsOf(to, table));
        for (const char* const question :
             {"PRAGMA user_version", "PRAGMA page_size", "PRAGMA freelist_count",
              "SELECT group_concat(sql) FROM sqlite_master"})
            EXPECT_EQ(FileDatabase(from).Value(question), FileDatabase(to).Value(question));
    }
    EXPECT_EQ(5u, ContentOf(Folder()).size()) << "four files and the manifest";
}

TEST_F(Backup, ManifestTellsWhatIsInIt) {
    MakeSample();
    ASSERT_NO_FATAL_FAILURE(BackUp());
    const BackupManifest manifest = ReadManifest(Folder().wstring());
    EXPECT_EQ("the tests", manifest.maker);
    ASSERT_EQ(4u, manifest.files.size());
    for (const BackupFile& file : manifest.files) {
        const Bytes bytes = ReadBytes(Folder() / file.name);
        EXPECT_EQ((FileSum{bytes.size(), Sha256Of(std::string(bytes.begin(), bytes.end()))}),
                  file.sum);
    }
    const std::vector<std::pair<std::string, INT64>> rows = {
        {kActionLogRows, 600}, {kTakenRows, 40}, {kReplayRows, 100}};
    EXPECT_EQ(rows, manifest.rows);
    EXPECT_EQ(600u, manifest.counter);
}

TEST_F(Backup, TakesOnlyAnEmptyFolder) {
    MakeSample();
    fs::create_directories(Folder());
    WriteBytes(Folder() / L"letter.txt", {1});
    const FolderContent before = ContentOf(Folder());
    const auto backUp = [&](const fs::path& folder) {
        return OutcomeOf([&] { BackUpStore(Store(), folder.wstring(), "", Unheard); }).code;
    };
    EXPECT_EQ(ExitCode::Usage, backUp(Folder()));
    EXPECT_EQ(ExitCode::Usage, backUp(Folder() / L"letter.txt"));
    EXPECT_EQ(before, ContentOf(Folder()));
    EXPECT_EQ(ExitCode::Fine, backUp(Folder() / L"new" / L"folder" / L""));
    fs::create_directories(Folder() / L"empty");
    EXPECT_EQ(ExitCode::Fine, backUp(Folder() / L"empty"));
    EXPECT_EQ(ExitCode::Usage, backUp(Folder() / L"empty")) << "there is a backup in it";
}

TEST_F(Backup, SaysWhatTheStoreDoesNotHave) {
    MakeSample();
    fs::remove(Store().replayLog);
    fs::remove(Store().userIds);
    ASSERT_NO_FATAL_FAILURE(BackUp());
    EXPECT_EQ((std::vector<std::string>{"uareplay.db", "UserIdList.dat"}),
              ReadManifest(Folder().wstring()).absent);
    EXPECT_FALSE(fs::exists(Store().replayLog)) << "looking must not create it";
}

TEST_F(Backup, OfNoStoreLeavesNoFolder) {
    const Outcome outcome =
        OutcomeOf([&] { BackUpStore(Store(), Folder().wstring(), "", Unheard); });
    EXPECT_EQ(ExitCode::NothingFound, outcome.code);
    EXPECT_FALSE(fs::exists(Folder()));
    EXPECT_TRUE(StoreContent().empty());
}

TEST_F(Backup, OfAFileThatIsStillEmptyKeepsThePageSize) {
    MakeSample();
    WriteBytes(Store().actionLog, {});
    ASSERT_NO_FATAL_FAILURE(BackUp());
    const FileDatabase copy(Folder() / L"ualog.db");
    EXPECT_EQ("2048", copy.Value("PRAGMA page_size"));
    EXPECT_EQ("0", copy.Value("SELECT COUNT(*) FROM sqlite_master"));
}

TEST_F(Backup, TakesAnInterruptedChangeBack) {
    MakeSample();
    const std::vector<Row> rows = RowsOf(Store().actionLog, kActionLogRows);
    ASSERT_NO_FATAL_FAILURE(LeaveJournal(Store()));
    ASSERT_NO_FATAL_FAILURE(BackUp());
    EXPECT_EQ(rows, RowsOf(Folder() / L"ualog.db", kActionLogRows));
}

TEST_F(Backup, WaitsForTheLocksAndThenGivesUp) {
    MakeSample();
    const FolderContent before = StoreContent();
    const std::pair<const wchar_t*, DWORD> timeOuts[] = {
        {kSqliteAccessLock, 3000}, {kLogIdLock, 10000}, {kLoginInfoMutexName, 3000}};
    for (const auto& [lock, timeOut] : timeOuts) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(lock)));
        const MutexHolder holder(lock);
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
        const Outcome outcome =
            OutcomeOf([&] { BackUpStore(Store(), Folder().wstring(), "", Unheard); });
        EXPECT_EQ(ExitCode::Locked, outcome.code) << outcome.message;
        EXPECT_THAT(waits.TimeOuts(lock), ElementsAre(timeOut));
        EXPECT_FALSE(fs::exists(Folder()));
    }
    EXPECT_EQ(before, StoreContent());
    for (const wchar_t* const lock : {kSqliteAccessLock, kLogIdLock, kLoginInfoMutexName})
        EXPECT_TRUE(MutexIsFree(lock));
}

TEST_F(Backup, TakesALockThatWasAbandoned) {
    MakeSample();
    const CHandle open(CreateMutexW(nullptr, FALSE, kSqliteAccessLock)); // the mutex stays
    MutexHolder holder(kSqliteAccessLock);
    holder.Kill();
    BackUp();
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
}

TEST_F(Backup, OfADamagedDatabaseIsRefused) {
    MakeSample();
    size_t refused = 0;
    size_t taken = 0;
    for (const bool replay : {false, true}) {
        const fs::path database = replay ? Store().replayLog : Store().actionLog;
        const Bytes whole = ReadBytes(database);
        const std::vector<DamagedFile> damaged = DamagedDatabases(whole, 200);
        const size_t step = IsFullForm() ? 1 : damaged.size() / 20;
        for (size_t index = 0; index < damaged.size(); index += step) {
            SCOPED_TRACE(damaged[index].how);
            PutInPlace(damaged[index], database);
            const Outcome outcome =
                OutcomeOf([&] { BackUpStore(Store(), Folder().wstring(), "", Unheard); });
            if (outcome.code == ExitCode::Fine) {
                EXPECT_EQ("ok", IntegrityOf(database));
                EXPECT_EQ("ok", IntegrityOf(Folder() / database.filename()));
                ++taken;
            } else {
                EXPECT_EQ(ExitCode::Damaged, outcome.code) << outcome.message;
                EXPECT_THAT(outcome.message, HasSubstr("tslhost recover"));
                EXPECT_NE("ok", IntegrityOf(database)) << outcome.message;
                EXPECT_FALSE(fs::exists(Folder()));
                ++refused;
            }
            fs::remove_all(Folder());
        }
        fs::remove_all(database);
        WriteBytes(database, whole);
    }
    EXPECT_GT(refused, 0u);
    EXPECT_GT(taken, 0u);
    Measured("damaged databases: " + std::to_string(refused) + " not backed up, " +
             std::to_string(taken) + " backed up, which are whole for integrity_check");
}

TEST_F(Backup, IsOfOneMomentWhileAHostRecords) {
    std::string lines;
    const int records = InForm(30, 300);
    for (int line = 0; line < records; ++line)
        lines += "{\"name\":\"a\",\"app\":1,\"user\":1}\n";
    ASSERT_EQ(0, RunConsole(L"import -", lines).exitCode);
    ConsoleResult imported;
    std::thread host([&] { imported = RunConsole(L"import -", lines); });
    int made = 0;
    bool changing = false;
    for (INT64 last = 0; last < 2 * records && made < 10'000; ++made) {
        fs::remove_all(Folder());
        const Outcome outcome =
            OutcomeOf([&] { BackUpStore(Store(), Folder().wstring(), "", Unheard); });
        EXPECT_EQ(ExitCode::Fine, outcome.code) << outcome.message;
        if (outcome.code != ExitCode::Fine) break;
        const BackupManifest manifest = ReadManifest(Folder().wstring());
        const FileDatabase copy(Folder() / L"ualog.db");
        last = std::stoll(copy.Value("SELECT MAX(ActionLogId) FROM TslIf_DbActionLog"));
        EXPECT_EQ(last, manifest.rows[0].second) << "the ids have no gaps";
        EXPECT_LE(last, manifest.counter);
        Sleep(20); // the host must get its turn
        changing = changing || (last > records && last < 2 * records);
    }
    host.join();
    EXPECT_EQ(0, imported.exitCode) << imported.errors;
    EXPECT_TRUE(changing) << "no backup was made while the host recorded";
    Measured(std::to_string(made) + " backups while a host recorded " + std::to_string(records) +
             " actions");
}

TEST_F(Backup, IsACommand) {
    MakeSample();
    const ConsoleResult made = RunConsole(Typed(L"backup"));
    EXPECT_EQ(0, made.exitCode) << made.errors;
    EXPECT_THAT(made.output, HasSubstr("TslIf_DbActionLog: 600 rows\n"));
    EXPECT_THAT(made.output, HasSubstr("last record id: 600\n"));
    EXPECT_THAT(made.output, HasSubstr("backed up to "));
    EXPECT_EQ("", made.errors) << "no progress in a pipe";
    EXPECT_EQ("tslhost 1.0.0", ReadManifest(Folder().wstring()).maker);

    EXPECT_EQ(2, RunConsole(Typed(L"backup")).exitCode);
    EXPECT_EQ(2, RunConsole(L"backup").exitCode);
    EXPECT_THAT(RunConsole(L"backup --help").output, HasSubstr("Example: tslhost backup"));
    fs::remove_all(Folder());
    EXPECT_THAT(RunConsole(Typed(L"backup --json")).output,
                HasSubstr("\"rows\":{\"TslIf_DbActionLog\":600,\"TslIf_ContentDeleteProperty\":40,"
                          "\"TslIf_ActionReplay\":100},\"counter\":600}"));
}

TEST_F(Backup, OfAStoreWithAWriteAheadLogIsWholeByItself) {
    MakeSample();
    FileDatabase(Store().actionLog).Query("PRAGMA journal_mode = WAL");
    BackUp();
    EXPECT_EQ(5u, ContentOf(Folder()).size()) << "four files and the manifest";
    EXPECT_EQ("delete", FileDatabase(Folder() / L"ualog.db").Value("PRAGMA journal_mode"));
}

TEST_F(Backup, CommandNamesTheOneThatMends) {
    MakeSample();
    WriteBytes(Store().replayLog, Bytes(4096, 'x'));
    const ConsoleResult refused = RunConsole(Typed(L"backup"));
    EXPECT_EQ(4, refused.exitCode);
    EXPECT_THAT(refused.errors, HasSubstr("uareplay.db: "));
    EXPECT_THAT(refused.errors, HasSubstr("; tslhost recover saves its records\n"));
    EXPECT_EQ("", refused.output);
}

} // namespace tsl::test
