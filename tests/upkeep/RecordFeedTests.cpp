// New records as they come, told to one process while others write.
#include "console/Failure.h"
#include "console/Text.h"
#include "store/Schema.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"
#include "upkeep/transfer/RecordFeed.h"

namespace tsl::test {

namespace {

constexpr char kLine[] = "{\"name\":\"playItem\",\"app\":5,\"user\":1}\n";

void Record(size_t count = 1) {
    std::string lines;
    for (; count > 0; --count)
        lines += kLine;
    ASSERT_EQ(0, RunConsole(L"import -", lines).exitCode);
}

std::string Ids(const std::vector<ExportedRecord>& records) {
    std::string listed;
    for (const ExportedRecord& exported : records)
        listed += std::to_string(exported.record.id) + " ";
    return listed;
}

// Rows of the ids first to last, as a host writes them.
std::string InsertText(UINT32 first, UINT32 last) {
    return "WITH RECURSIVE n(id) AS (SELECT " + std::to_string(first) +
           " UNION ALL SELECT id + 1 FROM n WHERE id < " + std::to_string(last) +
           ") INSERT INTO TslIf_DbActionLog SELECT id, 0, 5, NULL, 1, 'playItem', "
           "'ullValues={' || id || '}', 46000.25, 46000.25, NULL, NULL, 0, 1 FROM n";
}

std::string DeleteText(UINT32 first, UINT32 last) {
    return "DELETE FROM TslIf_DbActionLog WHERE ActionLogId BETWEEN " + std::to_string(first) +
           " AND " + std::to_string(last);
}

} // namespace

class RecordFeed : public StoreTest {
protected:
    // An empty action log.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeCounterFile();
        Execute(ToUtf8(CreateActionTableText(kTablePrefix, kActionLogTable)));
    }

    static void Execute(const std::string& statements) {
        FileDatabase(ActionLogPath(), /*create=*/true).Query(statements);
    }
    static CRecordFeed Feed(std::optional<UINT32> after = {}) {
        return CRecordFeed(ActionLogPath().wstring(), after);
    }
};

TEST_F(RecordFeed, TellsWhatComesWithAllItHolds) {
    CRecordFeed feed = Feed();
    EXPECT_EQ("", Ids(feed.Look()));
    ASSERT_EQ(0, RunConsole(L"record --name playItem --app -3 --user 9 --kind 32 --time "
                            L"2026-11-20T08:00:00Z --string \"a,b\" --string \u65e5\u672c")
                     .exitCode);
    const std::vector<ExportedRecord> records = feed.Look();
    ASSERT_EQ(1u, records.size());
    EXPECT_EQ(RunConsole(L"export").output, ExportJson(records[0]) + "\n");
    EXPECT_EQ("", Ids(feed.Look()));
}

TEST_F(RecordFeed, BeginsBehindTheHighestIdOrTheOneItIsGiven) {
    Execute(InsertText(1, 5));
    CRecordFeed feed = Feed();
    CRecordFeed behindThree = Feed(3);
    CRecordFeed behindAll = Feed(0);
    CRecordFeed farBehind = Feed(1000);
    EXPECT_EQ("", Ids(feed.Look()));
    EXPECT_EQ("4 5 ", Ids(behindThree.Look()));
    EXPECT_EQ("1 2 3 4 5 ", Ids(behindAll.Look()));
    EXPECT_EQ("", Ids(farBehind.Look()));
    Execute(InsertText(6, 7));
    for (CRecordFeed* const each : {&feed, &behindThree, &behindAll, &farBehind}) {
        EXPECT_EQ("6 7 ", Ids(each->Look()));
        EXPECT_EQ("", Ids(each->Look()));
    }
}

TEST_F(RecordFeed, WaitsForAStoreThatIsNotThereYet) {
    std::filesystem::remove_all(StoreFolder());
    CRecordFeed feed = Feed();
    EXPECT_EQ("", Ids(feed.Look()));
    EXPECT_FALSE(std::filesystem::exists(StoreFolder()));
    MakeStoreFolder();
    WriteBytes(ActionLogPath(), {});
    EXPECT_EQ("", Ids(feed.Look()));
    Execute("CREATE TABLE Other (a)");
    EXPECT_EQ("", Ids(feed.Look()));
    Record(2);
    EXPECT_EQ("1 2 ", Ids(feed.Look()));
}

// Another host has taken its id earlier and records later.
TEST_F(RecordFeed, TellsALowerIdThatComesLateOnce) {
    Execute(InsertText(1, 2));
    CRecordFeed feed = Feed();
    feed.Look();
    Execute(InsertText(5, 5));
    EXPECT_EQ("5 ", Ids(feed.Look()));
    Execute(InsertText(4, 4) + ";" + InsertText(6, 6) + ";" + InsertText(3, 3));
    EXPECT_EQ("4 6 3 ", Ids(feed.Look()));
    EXPECT_EQ("", Ids(feed.Look()));
}

TEST_F(RecordFeed, TellsALowerIdThatComesLateAlsoBehindManyRows) {
    Execute(InsertText(1, 1000) + ";" + InsertText(1002, 2000));
    CRecordFeed feed = Feed();
    feed.Look();
    Execute(InsertText(1001, 1001));
    EXPECT_EQ("1001 ", Ids(feed.Look()));
}

// SQLite numbers a new row one above the highest, so a deleted row's number comes again.
TEST_F(RecordFeed, TellsARecordThatTookADeletedOnesRow) {
    for (const UINT32 rows : {5u, 1000u}) {
        SCOPED_TRACE(rows);
        Execute("DELETE FROM TslIf_DbActionLog;" + InsertText(1, rows - 1) + ";" +
                InsertText(rows + 1, rows + 2));
        CRecordFeed feed = Feed();
        feed.Look();
        Execute(DeleteText(rows + 1, rows + 2) + ";" + InsertText(rows, rows));
        EXPECT_EQ(std::to_string(rows) + " ", Ids(feed.Look()));
        Execute(InsertText(rows + 3, rows + 3));
        EXPECT_EQ(std::to_string(rows + 3) + " ", Ids(feed.Look()));
    }
}

TEST_F(RecordFeed, TellsWhatComesAfterAllWasDeleted) {
    for (const UINT32 rows : {5u, 1000u}) {
        SCOPED_TRACE(rows);
        Execute("DELETE FROM TslIf_DbActionLog;" + InsertText(1, rows));
        CRecordFeed feed = Feed();
        feed.Look();
        Execute(DeleteText(1, rows) + ";" + InsertText(rows + 1, rows + 3));
        EXPECT_EQ(std::to_string(rows + 1) + " " + std::to_string(rows + 2) + " " +
                      std::to_string(rows + 3) + " ",
                  Ids(feed.Look()));
        Execute(DeleteText(1, rows + 3));
        EXPECT_EQ("", Ids(feed.Look()));
        Execute(InsertText(rows + 5, rows + 5));
        EXPECT_EQ(std::to_string(rows + 5) + " ", Ids(feed.Look()));
        Execute(InsertText(rows + 4, rows + 4));
        EXPECT_EQ(std::to_string(rows + 4) + " ", Ids(feed.Look()));
    }
}

TEST_F(RecordFeed, TellsAResetAndNothingTwice) {
    std::filesystem::remove(ActionLogPath());
    Record(3);
    CRecordFeed feed = Feed();
    feed.Look();
    ASSERT_EQ(0, RunConsole(L"reset --user 1").exitCode);
    EXPECT_EQ("4 ", Ids(feed.Look()));
    Record();
    EXPECT_EQ("5 ", Ids(feed.Look()));
}

TEST_F(RecordFeed, TellsARecordThatIsWrittenAgainOnlyOnce) {
    std::filesystem::remove(ActionLogPath());
    Record(2);
    CRecordFeed feed = Feed();
    feed.Look();
    Record();
    EXPECT_EQ("3 ", Ids(feed.Look()));
    MakeCounterFile(L"00000002");
    Record();
    EXPECT_EQ("", Ids(feed.Look()));
    Record();
    EXPECT_EQ("4 ", Ids(feed.Look()));
}

// Rows get other numbers then.
TEST_F(RecordFeed, TellsNothingTwiceAfterTheFileWasCompacted) {
    for (const UINT32 rows : {100u, 1000u}) {
        SCOPED_TRACE(rows);
        Execute("DELETE FROM TslIf_DbActionLog;" + InsertText(1, rows) + ";" + DeleteText(20, 40));
        CRecordFeed feed = Feed();
        feed.Look();
        Execute("VACUUM");
        EXPECT_EQ("", Ids(feed.Look()));
        Execute(DeleteText(50, 60));
        Execute("VACUUM; " + InsertText(rows + 2, rows + 2));
        EXPECT_EQ(std::to_string(rows + 2) + " ", Ids(feed.Look()));
        Execute(InsertText(rows + 1, rows + 1));
        EXPECT_EQ(std::to_string(rows + 1) + " ", Ids(feed.Look()));
    }
}

TEST_F(RecordFeed, GoesOnInAnotherFileThatWasPutInPlace) {
    Execute(InsertText(1, 10));
    const Bytes older = ReadBytes(ActionLogPath());
    Execute(InsertText(11, 20));
    CRecordFeed feed = Feed();
    feed.Look();
    std::filesystem::remove(ActionLogPath());
    WriteBytes(ActionLogPath(), older);
    EXPECT_EQ("", Ids(feed.Look()));
    Execute(InsertText(11, 12));
    EXPECT_EQ("11 12 ", Ids(feed.Look()));
}

TEST_F(RecordFeed, HasNothingOpenBetweenTwoLooks) {
    Execute(InsertText(1, 3));
    CRecordFeed feed = Feed(0);
    EXPECT_EQ("1 2 3 ", Ids(feed.Look()));
    EXPECT_FALSE(MutexExists(kSqliteAccessLock));
    EXPECT_FALSE(MutexExists(kLogIdLock));
    const CHandle alone(CreateFileW(ActionLogPath().c_str(), GENERIC_READ | GENERIC_WRITE,
                                    /*shareMode=*/0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                                    nullptr));
    EXPECT_TRUE(alone) << "the file is open";
}

TEST_F(RecordFeed, TakesNoLockWhereNothingHasChanged) {
    Execute(InsertText(1, 3));
    CRecordFeed feed = Feed();
    feed.Look();
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    EXPECT_EQ("", Ids(feed.Look()));
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), testing::IsEmpty());
}

TEST_F(RecordFeed, TriesAgainWhereTheLockIsHeld) {
    CRecordFeed feed = Feed(0);
    Execute(InsertText(1, 1));
    {
        const MutexHolder holder(kSqliteAccessLock);
        const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
        EXPECT_EQ("", Ids(feed.Look()));
        EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), testing::ElementsAre(3000));
    }
    EXPECT_EQ("1 ", Ids(feed.Look()));
}

TEST_F(RecordFeed, TriesAgainWhereTheFileIsBusyAndDoesNotKeepTheLock) {
    CRecordFeed feed = Feed(0);
    Execute(InsertText(1, 1));
    {
        const FileDatabase other(ActionLogPath());
        other.Query("BEGIN EXCLUSIVE");
        const ULONGLONG start = GetTickCount64();
        EXPECT_EQ("", Ids(feed.Look()));
        EXPECT_LT(GetTickCount64() - start, 1000u);
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
        other.Query(InsertText(2, 2));
        other.Query("COMMIT");
    }
    EXPECT_EQ("1 2 ", Ids(feed.Look()));
}

// A host that is killed in the middle of a change leaves its journal; the next one rolls it back.
TEST_F(RecordFeed, TellsNothingOfAChangeThatWasInterrupted) {
    Execute(InsertText(1, 2000));
    CRecordFeed feed = Feed();
    feed.Look();
    Bytes halfDone;
    Bytes journal;
    const std::filesystem::path journalPath = ActionLogPath().wstring() + L"-journal";
    {
        const FileDatabase host(ActionLogPath());
        host.Query("PRAGMA cache_size = 5; BEGIN");
        host.Query(InsertText(2001, 3000));
        halfDone = ReadBytes(ActionLogPath());
        journal = ReadBytes(journalPath);
        host.Query("ROLLBACK");
    }
    WriteBytes(ActionLogPath(), halfDone);
    WriteBytes(journalPath, journal);
    EXPECT_EQ("", Ids(feed.Look()));
    EXPECT_EQ(halfDone, ReadBytes(ActionLogPath())) << "to look changes nothing";
    EXPECT_TRUE(std::filesystem::exists(journalPath));
    MakeCounterFile(L"00002000");
    Record();
    EXPECT_FALSE(std::filesystem::exists(journalPath));
    EXPECT_EQ("2001 ", Ids(feed.Look()));
}

TEST_F(RecordFeed, EndsAtADamagedDatabase) {
    for (const Bytes& bytes : {Bytes(4096, 'x'), ReadBytes(ProgramFolder() / L"tslhost.exe")}) {
        WriteBytes(ActionLogPath(), bytes);
        try {
            Feed(0).Look();
            ADD_FAILURE() << "no failure";
        } catch (const CFailure& failure) {
            EXPECT_EQ(ExitCode::Damaged, failure.Code()) << failure.what();
        }
    }
    std::filesystem::remove(ActionLogPath());
    std::filesystem::create_directory(ActionLogPath());
    try {
        Feed(0).Look();
        ADD_FAILURE() << "no failure";
    } catch (const CFailure& failure) {
        EXPECT_EQ(ExitCode::Denied, failure.Code()) << failure.what();
    }
}

// A follower misses nothing and repeats nothing while hosts write as fast as they can.
TEST_F(RecordFeed, TellsEveryRecordOfSeveralHostsOnce) {
    std::filesystem::remove(ActionLogPath());
    const size_t each = InForm<size_t>(25, 1000);
    std::string lines;
    for (size_t count = 0; count < each; ++count)
        lines += kLine;
    CRecordFeed feed = Feed(0);
    std::vector<UINT32> told;
    size_t late = 0;
    const auto look = [&] {
        for (const ExportedRecord& exported : feed.Look()) {
            if (!told.empty() && exported.record.id < told.back()) ++late;
            told.push_back(exported.record.id);
        }
    };
    {
        RunningConsole first(L"import -", lines);
        RunningConsole second(L"import -", lines);
        RunningConsole third(L"import -", lines);
        while (first.IsRunning() || second.IsRunning() || third.IsRunning()) {
            look();
            Sleep(5);
        }
        EXPECT_EQ(0, first.WaitForEnd().exitCode);
        EXPECT_EQ(0, second.WaitForEnd().exitCode);
        EXPECT_EQ(0, third.WaitForEnd().exitCode);
    }
    look();
    std::ranges::sort(told);
    std::vector<UINT32> expected(3 * each);
    for (size_t index = 0; index < expected.size(); ++index)
        expected[index] = static_cast<UINT32>(index + 1);
    EXPECT_EQ(expected, told);
    Measured("records of three hosts that a follower told once: " + std::to_string(told.size()) +
             ", of them behind a higher id " + std::to_string(late));
}

} // namespace tsl::test
