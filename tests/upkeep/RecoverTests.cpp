// What recovery does to a store: saves rows byte for byte, each in its table, keeps what was there,
// mends the counter, and changes nothing that is whole.
#include "tests/upkeep/RecoverFixture.h"

#include "base/Handle.h"
#include "console/Failure.h"
#include "tests/support/StoreChecks.h"
#include "upkeep/recovery/FileReplacement.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;

constexpr char kMain[] = "TslIf_DbActionLog";
constexpr char kKept[] = "TslIf_ContentDeleteProperty";
constexpr size_t kPageSize = 2048;

std::string Counter(const StorePaths& store) {
    const Bytes bytes = ReadBytes(store.counter);
    std::string digits;
    for (const unsigned char byte : bytes) {
        if (byte >= '0' && byte <= '9') digits += static_cast<char>(byte);
    }
    return digits;
}

class Recovery : public RecoverTest {
protected:
    // The engine can read nothing of it any more.
    void BreakHeader() { Patch(Store().actionLog, 0, Bytes(16, 'x')); }
    // Nothing leads to the tables any more.
    void BreakSchema() { Patch(Store().actionLog, 100, Bytes(kPageSize - 100, 0)); }
};

TEST_F(Recovery, LeavesAWholeStoreAlone) {
    const RecoverReport report = Recover();
    EXPECT_EQ(Outcome::Whole, report.databases[0].outcome);
    EXPECT_EQ(Outcome::Whole, report.databases[1].outcome);
    EXPECT_EQ(CounterState::Fine, report.counter.state);
    EXPECT_EQ(WholeActionLog(), ReadBytes(Store().actionLog));
    EXPECT_EQ(WholeReplayLog(), ReadBytes(Store().replayLog));
    EXPECT_EQ("00000600", Counter(Store()));
    EXPECT_TRUE(FilesAside().empty());
}

TEST_F(Recovery, ThatIsForcedKeepsEveryRow) {
    const RowCounts main = Rows(Store().actionLog, kMain);
    const RowCounts kept = Rows(Store().actionLog, kKept);
    const RowCounts replayed = Rows(Store().replayLog, "TslIf_ActionReplay");
    const RecoverReport report = Recover({.force = true, .dryRun = false, .onProgress = {}});
    for (const DatabaseReport& database : report.databases) {
        EXPECT_EQ(Outcome::Recovered, database.outcome);
        EXPECT_EQ("", database.damage);
        EXPECT_FALSE(database.IsPartly());
        ExpectWhole(database.path);
    }
    EXPECT_EQ(main, Rows(Store().actionLog, kMain));
    EXPECT_EQ(kept, Rows(Store().actionLog, kKept));
    EXPECT_EQ(replayed, Rows(Store().replayLog, "TslIf_ActionReplay"));
    EXPECT_EQ(2u, FilesAside().size());
}

TEST_F(Recovery, OfAStoreThatIsNotThereDoesNothing) {
    for (const std::wstring& path : {Store().actionLog, Store().replayLog, Store().counter})
        fs::remove(path);
    const RecoverReport report = Recover();
    EXPECT_EQ(Outcome::Missing, report.databases[0].outcome);
    EXPECT_EQ(std::nullopt, report.counter.written);
    EXPECT_FALSE(fs::exists(Store().actionLog));
    EXPECT_FALSE(fs::exists(Store().counter));
}

TEST_F(Recovery, ReadsAFileThatTheEngineRefuses) {
    const RowCounts main = Rows(Store().actionLog, kMain);
    const RowCounts kept = Rows(Store().actionLog, kKept);
    BreakHeader();
    const DatabaseReport report = Recover().databases[0];
    EXPECT_EQ("it is no database", report.damage);
    EXPECT_FALSE(report.IsPartly());
    EXPECT_EQ(main, Rows(Store().actionLog, kMain));
    EXPECT_EQ(kept, Rows(Store().actionLog, kKept));
}

TEST_F(Recovery, TakesTheStoresPageSizeWhereTheHeaderTellsAnother) {
    const RowCounts main = Rows(Store().actionLog, kMain);
    Patch(Store().actionLog, 16, {0x10, 0x00});
    Recover();
    EXPECT_EQ(main, Rows(Store().actionLog, kMain));
}

TEST_F(Recovery, TellsTheTablesApartWithoutTheSchema) {
    const RowCounts main = Rows(Store().actionLog, kMain);
    const RowCounts kept = Rows(Store().actionLog, kKept);
    BreakSchema();
    const DatabaseReport report = Recover().databases[0];
    EXPECT_TRUE(report.IsPartly()) << "a page could not be read";
    EXPECT_EQ(main, Rows(Store().actionLog, kMain));
    EXPECT_EQ(kept, Rows(Store().actionLog, kKept));
}

TEST_F(Recovery, KnowsKeptRecordsByTheirNamesWhereTheTablesDiffer) {
    Change(Store().actionLog, std::string("DELETE FROM ") + kKept +
                                  " WHERE ActionLogId > 3; UPDATE " + kKept +
                                  " SET ActionName = 'AutoDeleteItem', UserId = 9");
    const RowCounts main = Rows(Store().actionLog, kMain);
    const RowCounts kept = Rows(Store().actionLog, kKept);
    ASSERT_EQ(3u, kept.size());
    BreakSchema();
    Recover();
    EXPECT_EQ(main, Rows(Store().actionLog, kMain));
    EXPECT_EQ(kept, Rows(Store().actionLog, kKept));
}

TEST_F(Recovery, FindsTheLeavesOfALostRoot) {
    const RowCounts main = Rows(Store().actionLog, kMain);
    Patch(Store().actionLog, kPageSize, Bytes(kPageSize, 0xAA));
    const DatabaseReport report = Recover().databases[0];
    EXPECT_EQ(1u, report.tables[0].unread.pages);
    EXPECT_GT(report.orphanPages, 30u);
    EXPECT_EQ(main, Rows(Store().actionLog, kMain));
    EXPECT_EQ(40, CountRows(Store().actionLog, kKept));
}

TEST_F(Recovery, DoesNotBringBackDeletedRows) {
    // The list of free pages, in which deleted rows may still lie, leads nowhere.
    Patch(Store().actionLog, 32, {0, 0, 0xFF, 0xFF});
    const DatabaseReport report = Recover().databases[0];
    EXPECT_EQ(Outcome::Recovered, report.outcome);
    EXPECT_GT(report.skippedPages, 0u);
    EXPECT_EQ(600, CountRows(Store().actionLog, kMain));
    EXPECT_EQ(40, CountRows(Store().actionLog, kKept));
}

TEST_F(Recovery, KeepsOddValuesByteForByte) {
    Change(Store().actionLog,
           std::string("UPDATE ") + kMain +
               " SET AppName = CAST(x'FF00C328' AS TEXT) WHERE ActionLogId = 1; UPDATE " + kMain +
               " SET ActionName = x'0001FF' WHERE ActionLogId = 2; UPDATE " + kMain +
               " SET UserId = 'no number', PreLoggedTime = 1.5 WHERE ActionLogId = 3; UPDATE " +
               kMain +
               " SET PreActionName = '', LogKind = NULL, UsedLog = -1 "
               "WHERE ActionLogId = 4; UPDATE " +
               kMain + " SET AppLoggedTime = 45000 WHERE ActionLogId = 5");
    const RowCounts main = Rows(Store().actionLog, kMain);
    BreakHeader();
    Recover();
    EXPECT_EQ(main, Rows(Store().actionLog, kMain)) << "read page by page";
    Recover({.force = true, .dryRun = false, .onProgress = {}});
    EXPECT_EQ(main, Rows(Store().actionLog, kMain)) << "read by the engine";
}

TEST_F(Recovery, KeepsTheLastRowOfAnId) {
    Change(Store().actionLog, std::string("INSERT INTO ") + kMain +
                                  " (ActionLogId, AppId, LogKind) VALUES (7, 99, 1)");
    const DatabaseReport report = Recover().databases[0];
    EXPECT_EQ(1u, report.tables[0].rows.superseded);
    const FileDatabase recovered(Store().actionLog);
    EXPECT_EQ("99", recovered.Value("SELECT AppId FROM TslIf_DbActionLog WHERE ActionLogId = 7"));
    EXPECT_EQ("600", recovered.Value("PRAGMA user_version"));
    EXPECT_EQ("7", recovered.Value("SELECT ActionLogId FROM TslIf_DbActionLog ORDER BY rowid DESC "
                                   "LIMIT 1"));
}

TEST_F(Recovery, SavesWhatIsThereOfARowThatIsCut) {
    // Row 600 has a text of some pages, the last of which is among the last in use.
    const std::string text = FileDatabase(Store().actionLog)
                                 .Value("SELECT ActionParameters FROM TslIf_DbActionLog "
                                        "WHERE ActionLogId = 600");
    Bytes bytes = WholeActionLog();
    const std::string start = "ullValues={600}";
    const auto place = std::search(bytes.begin(), bytes.end(), start.begin(), start.end());
    ASSERT_NE(bytes.end(), place);
    const size_t leaf = static_cast<size_t>(place - bytes.begin()) / kPageSize;
    bytes.resize((leaf + 1) * kPageSize);
    WriteBytes(Store().actionLog, bytes);
    const DatabaseReport report = Recover().databases[0];
    EXPECT_EQ(1u, report.tables[0].rows.incomplete);
    EXPECT_TRUE(report.IsPartly());
    const Row row = FileDatabase(Store().actionLog)
                        .Query("SELECT UserId, ActionName, ActionParameters, AppLoggedTime "
                               "FROM TslIf_DbActionLog WHERE ActionLogId = 600")[0];
    EXPECT_EQ("1", row[0]);
    EXPECT_EQ("playItem", row[1]);
    EXPECT_TRUE(text.starts_with(row[2].value()));
    EXPECT_LT(row[2]->size(), text.size());
    EXPECT_EQ(std::nullopt, row[3]);
}

TEST_F(Recovery, TakesAnInterruptedChangeBackFirst) {
    const RowCounts main = Rows(Store().actionLog, kMain);
    Bytes changed;
    Bytes journal;
    {
        const FileDatabase database(Store().actionLog);
        database.Query("PRAGMA cache_size = 2; BEGIN; UPDATE TslIf_DbActionLog SET UserId = 77");
        changed = ReadBytes(Store().actionLog);
        journal = ReadBytes(JournalOf(Store().actionLog));
        database.Query("ROLLBACK");
    }
    ASSERT_NE(WholeActionLog(), changed);
    WriteBytes(Store().actionLog, changed);
    WriteBytes(JournalOf(Store().actionLog), journal);
    EXPECT_EQ(Outcome::Whole, Recover().databases[0].outcome) << "the component does it itself";
    EXPECT_EQ(changed, ReadBytes(Store().actionLog));

    const DatabaseReport report =
        Recover({.force = true, .dryRun = false, .onProgress = {}}).databases[0];
    EXPECT_EQ(main, Rows(Store().actionLog, kMain));
    EXPECT_FALSE(fs::exists(JournalOf(Store().actionLog)));
    EXPECT_EQ(changed, ReadBytes(report.keptAs));
    EXPECT_EQ(journal, ReadBytes(JournalOf(report.keptAs)));
}

TEST_F(Recovery, PutsADatabaseIntoThePlaceOfAFolder) {
    fs::remove(Store().actionLog);
    fs::create_directory(Store().actionLog);
    WriteBytes(fs::path(Store().actionLog) / L"inside.txt", {1, 2, 3});
    const DatabaseReport report = Recover().databases[0];
    ExpectWhole(Store().actionLog);
    EXPECT_EQ((Bytes{1, 2, 3}), ReadBytes(fs::path(report.keptAs) / L"inside.txt"));
}

TEST_F(Recovery, RaisesACounterThatIsBehindMissingOrUnreadable) {
    for (const wchar_t* const text : {L"00000599\t\r\n", L"", L"no number\t\r\n"}) {
        WriteBytes(Store().counter, Utf16FileBytes(text));
        EXPECT_EQ(600u, Recover().counter.written);
        EXPECT_EQ("00000600", Counter(Store()));
    }
    WriteBytes(Store().counter, {0x00, 0x01, 0x02});
    EXPECT_EQ(600u, Recover().counter.written);
    fs::remove(Store().counter);
    EXPECT_EQ(CounterState::Missing, Recover().counter.state);
    EXPECT_EQ("00000600", Counter(Store()));
}

TEST_F(Recovery, NeverLowersTheCounter) {
    WriteBytes(Store().counter, Utf16FileBytes(L"00004711\t\r\n"));
    BreakHeader();
    EXPECT_EQ(std::nullopt, Recover().counter.written);
    EXPECT_EQ("00004711", Counter(Store()));
}

TEST_F(Recovery, LeavesACounterThatCannotBeReadAndTellsIt) {
    WriteBytes(Store().counter, Utf16FileBytes(L"00004711\t\r\n"));
    {
        const CHandle held(CreateFileW(Store().counter.c_str(), GENERIC_READ, /*shareMode=*/0,
                                       nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_THROW(Recover(), CFailure);
    }
    EXPECT_EQ("00004711", Counter(Store()));
}

TEST_F(Recovery, DoesNotHandOutTheIdsOfDeletedRecordsAgain) {
    Change(Store().actionLog, std::string("DELETE FROM ") + kMain + " WHERE ActionLogId > 550");
    fs::remove(Store().counter);
    EXPECT_EQ(600u, Recover().counter.written);
}

TEST_F(Recovery, TellsWhatItDidBeforeAStepFailed) {
    BreakHeader();
    fs::remove(Store().counter);
    fs::create_directory(Store().counter);
    try {
        Recover();
        FAIL() << "the counter cannot be written";
    } catch (const CFailure& failure) {
        EXPECT_THAT(failure.what(), testing::HasSubstr("ualog.db was recovered, and kept as "));
    }
    ExpectWhole(Store().actionLog);
}

TEST_F(Recovery, LeavesTheIdOfAnOlderStoreToItsConversion) {
    fs::remove(Store().counter);
    Change(Store().actionLog,
           "CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER); "
           "INSERT INTO TslIf_ActionRecordId VALUES (1, 640)");
    EXPECT_EQ(Outcome::Whole, Recover().databases[0].outcome);
    EXPECT_FALSE(fs::exists(Store().counter));
    BreakHeader();
    EXPECT_EQ(Outcome::Recovered, Recover().databases[0].outcome);
    EXPECT_FALSE(fs::exists(Store().counter));
    EXPECT_EQ("640", FileDatabase(Store().actionLog)
                         .Value("SELECT ActionLogId FROM TslIf_ActionRecordId "
                                "WHERE CurrentRecordId = 1"));
    EXPECT_EQ(600, CountRows(Store().actionLog, kMain));
}

TEST_F(Recovery, ThatIsDryChangesNothing) {
    BreakHeader();
    WriteBytes(Store().counter, Utf16FileBytes(L"00000001\t\r\n"));
    const Bytes before = ReadBytes(Store().actionLog);
    const RecoverReport report = Recover({.force = false, .dryRun = true, .onProgress = {}});
    EXPECT_EQ(600u, report.databases[0].tables[0].rows.saved);
    EXPECT_EQ(600u, report.counter.written);
    EXPECT_EQ(before, ReadBytes(Store().actionLog));
    EXPECT_EQ("00000001", Counter(Store()));
    EXPECT_TRUE(FilesAside().empty());
}

TEST_F(Recovery, ThatFailsLeavesAllAsItWas) {
    BreakHeader();
    WriteBytes(JournalOf(Store().actionLog), Bytes(10, 0));
    const Bytes before = ReadBytes(Store().actionLog);
    {
        // Another program that lets nobody rename the file.
        const CHandle open(CreateFileW(Store().actionLog.c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_THROW(Recover(), CFailure);
    }
    EXPECT_EQ(before, ReadBytes(Store().actionLog));
    EXPECT_EQ(std::vector{fs::path(JournalOf(Store().actionLog))}, FilesAside());
    EXPECT_EQ(Outcome::Recovered, Recover().databases[0].outcome);
}

TEST_F(Recovery, FindsANameThatIsFree) {
    const SYSTEMTIME time{2026, 11, 6, 21, 15, 30, 0, 0};
    const std::wstring first = NameForKeeping(Store().actionLog, time);
    EXPECT_EQ(L"ualog.damaged-20261121-153000.db", fs::path(first).filename().wstring());
    WriteBytes(first, {});
    const std::wstring second = NameForKeeping(Store().actionLog, time);
    EXPECT_EQ(L"ualog.damaged-20261121-153000-2.db", fs::path(second).filename().wstring());
}

} // namespace

} // namespace tsl::test
