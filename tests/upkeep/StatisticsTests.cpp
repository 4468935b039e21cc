// The figures of a store, beside what SQLite and the files themselves say.
#include "upkeep/statistics/Statistics.h"

#include <gmock/gmock.h>

#include "console/Failure.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/LockWaits.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/statistics/Calendar.h"

namespace tsl {

static bool operator==(const Tally& one, const Tally& other) {
    return one.name == other.name && one.records == other.records;
}

static void PrintTo(const Tally& tally, std::ostream* out) {
    *out << tally.name << ": " << tally.records;
}

} // namespace tsl

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;

class Statistics : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeStoreFolder();
        MakeSampleStore(m_store);
    }

    void Change(const std::string& statements) const {
        FileDatabase(m_store.actionLog).Query(statements);
    }
    // The exit code that a failed reading stands for.
    ExitCode CodeOfFailure() const {
        try {
            ReadStoreFigures(m_store);
        } catch (const CFailure& failure) {
            return failure.Code();
        }
        return ExitCode::Fine;
    }

    const StorePaths m_store = StoreIn(StoreFolder().wstring());
};

TEST_F(Statistics, CountTheSample) {
    const StoreFigures figures = ReadStoreFigures(m_store);
    EXPECT_EQ("TslIf_DbActionLog", figures.tables[0].name);
    EXPECT_EQ(600, figures.tables[0].records);
    EXPECT_EQ(1, figures.tables[0].firstId);
    EXPECT_EQ(600, figures.tables[0].lastId);
    EXPECT_EQ("TslIf_ContentDeleteProperty", figures.tables[1].name);
    EXPECT_EQ(40, figures.tables[1].records);
    EXPECT_EQ("TslIf_ActionReplay", figures.tables[2].name);
    EXPECT_EQ(100, figures.tables[2].records);
    EXPECT_EQ(501, figures.tables[2].firstId);
    EXPECT_EQ(45000.0 + 1 / 1440.0, figures.tables[0].firstTime);
    EXPECT_EQ(45000.0 + 600 / 1440.0, figures.tables[0].lastTime);
    EXPECT_EQ(0, figures.tables[0].undated);
    EXPECT_THAT(figures.users, ElementsAre(Tally{"1", 300}, Tally{"2", 300}));
    EXPECT_THAT(figures.applications,
                ElementsAre(Tally{"0", 200}, Tally{"1", 200}, Tally{"2", 200}));
    EXPECT_THAT(figures.actions, ElementsAre(Tally{"deleteItem", 150}, Tally{"playItem", 150},
                                             Tally{"rateItem", 150}, Tally{"showItem", 150}));
    EXPECT_EQ(601u, figures.nextId);
}

TEST_F(Statistics, NameTheSizesAndFreePagesOfTheFiles) {
    const StoreFigures figures = ReadStoreFigures(m_store);
    const std::wstring* const paths[] = {&m_store.actionLog, &m_store.replayLog, &m_store.counter,
                                         &m_store.userIds};
    for (size_t file = 0; file < figures.files.size(); ++file) {
        EXPECT_EQ(*paths[file], figures.files[file].path);
        EXPECT_EQ(fs::file_size(*paths[file]), figures.files[file].bytes);
    }
    const FileDatabase actionLog(m_store.actionLog);
    EXPECT_EQ(actionLog.Value("PRAGMA page_count"), std::to_string(*figures.files[0].pages));
    EXPECT_EQ(actionLog.Value("PRAGMA freelist_count"),
              std::to_string(*figures.files[0].freePages));
    EXPECT_FALSE(figures.files[2].pages);
}

// Every minute of the sample, and so every full hour, whose times are stored a little too low.
TEST_F(Statistics, PutFullHoursIntoTheirOwnHour) {
    const StoreFigures figures = ReadStoreFigures(m_store);
    ASSERT_EQ(1u, figures.days.size());
    EXPECT_EQ("2023-03-15", IsoDay(figures.days[0].day));
    const auto& wednesday = figures.hours[2];
    EXPECT_EQ(59, wednesday[0]);
    for (size_t hour = 1; hour < 10; ++hour)
        EXPECT_EQ(60, wednesday[hour]) << hour;
    EXPECT_EQ(1, wednesday[10]);
}

TEST_F(Statistics, DaysAndHoursAreThoseOfSqlitesCalendar) {
    Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = 45000 + ActionLogId * 1.37");
    const FileDatabase database(m_store.actionLog);
    const auto countBy = [&](const std::string& format) {
        return database.Query("SELECT strftime('" + format +
                              "', PluginLoggedTime + 2415018.5), COUNT(*) FROM TslIf_DbActionLog "
                              "GROUP BY 1 ORDER BY 1");
    };
    const StoreFigures figures = ReadStoreFigures(m_store);
    std::vector<Row> days;
    for (const DayTally& day : figures.days)
        days.push_back({IsoDay(day.day), std::to_string(day.records)});
    EXPECT_EQ(countBy("%Y-%m-%d"), days);
    std::vector<Row> hours;
    for (size_t day = 0; day < 7; ++day) {
        for (size_t hour = 0; hour < 24; ++hour) {
            const std::int64_t records = figures.hours[day][hour];
            if (records == 0) continue;
            hours.push_back(
                {std::to_string(day + 1) + " " + HourName(hour), std::to_string(records)});
        }
    }
    EXPECT_EQ(countBy("%u %H"), hours);
}

TEST_F(Statistics, TimesThatAreNoDatesAreCountedApart) {
    Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = CASE ActionLogId WHEN 1 THEN NULL "
           "WHEN 2 THEN 1.99 WHEN 3 THEN -1e300 WHEN 4 THEN 2958466.0 WHEN 5 THEN 9e999 "
           "WHEN 6 THEN 'noon' WHEN 7 THEN x'00ff' WHEN 8 THEN 2.0 ELSE 2958465.999999999 END "
           "WHERE ActionLogId < 10");
    const StoreFigures figures = ReadStoreFigures(m_store);
    EXPECT_EQ(600, figures.tables[0].records);
    EXPECT_EQ(7, figures.tables[0].undated);
    EXPECT_EQ(2.0, figures.tables[0].firstTime);
    ASSERT_EQ(3u, figures.days.size());
    EXPECT_EQ("1900-01-01", IsoDay(figures.days.front().day));
    EXPECT_EQ("9999-12-31", IsoDay(figures.days.back().day));
    std::int64_t dated = 0;
    for (const auto& day : figures.hours) {
        for (const std::int64_t records : day)
            dated += records;
    }
    EXPECT_EQ(593, dated);
}

TEST_F(Statistics, NamesThatAreNoTextStayReadable) {
    Change("UPDATE TslIf_DbActionLog SET ActionName = CASE ActionLogId % 4 WHEN 0 THEN NULL "
           "WHEN 1 THEN '' WHEN 2 THEN CAST(x'41ff42' AS TEXT) ELSE 'caf\u00e9' END");
    EXPECT_THAT(ReadStoreFigures(m_store).actions, ElementsAre(Tally{"", 300},
                                                               Tally{"A\uFFFD"
                                                                     "B",
                                                                     150},
                                                               Tally{"caf\u00e9", 150}));
}

TEST_F(Statistics, WhatIsMissingCountsAsEmpty) {
    Change("DROP TABLE TslIf_ContentDeleteProperty");
    fs::remove(m_store.replayLog);
    fs::remove(m_store.userIds);
    fs::remove(m_store.counter);
    const StoreFigures figures = ReadStoreFigures(m_store);
    EXPECT_EQ(600, figures.tables[0].records);
    EXPECT_EQ(0, figures.tables[1].records);
    EXPECT_EQ(0, figures.tables[2].records);
    EXPECT_FALSE(figures.tables[2].firstId);
    EXPECT_FALSE(figures.tables[2].firstTime);
    EXPECT_FALSE(figures.files[1].bytes);
    EXPECT_EQ(1u, figures.nextId);
    EXPECT_FALSE(figures.IsEmpty());
}

TEST_F(Statistics, EmptyTablesAreAnEmptyStore) {
    Change("DELETE FROM TslIf_DbActionLog; DELETE FROM TslIf_ContentDeleteProperty");
    fs::remove(m_store.replayLog);
    const StoreFigures figures = ReadStoreFigures(m_store);
    EXPECT_TRUE(figures.IsEmpty());
    EXPECT_FALSE(figures.tables[0].lastId);
    EXPECT_TRUE(figures.days.empty());
    EXPECT_EQ(601u, figures.nextId);
}

TEST_F(Statistics, CounterFileWithoutALineMakesTwoTheNextId) {
    WriteBytes(m_store.counter, {});
    EXPECT_EQ(2u, ReadStoreFigures(m_store).nextId);
}

TEST_F(Statistics, NoFileAtAllIsNothingFound) {
    fs::remove_all(StoreFolder());
    EXPECT_EQ(ExitCode::NothingFound, CodeOfFailure());
    EXPECT_FALSE(fs::exists(StoreFolder()));
}

TEST_F(Statistics, DamagedDatabasesAreToldAsSuch) {
    const Bytes text = {'n', 'o', ' ', 'd', 'a', 't', 'a', 'b', 'a', 's', 'e'};
    WriteBytes(m_store.actionLog, text);
    EXPECT_EQ(ExitCode::Damaged, CodeOfFailure());
    fs::remove(m_store.actionLog);
    FileDatabase(m_store.actionLog, /*create=*/true)
        .Query("CREATE TABLE TslIf_DbActionLog (ActionLogId, UserId)");
    EXPECT_EQ(ExitCode::Damaged, CodeOfFailure());
}

// The answer may be any but a crash or an endless wait.
TEST_F(Statistics, SurviveEveryDamagedDatabase) {
    const Bytes whole = ReadBytes(m_store.actionLog);
    size_t told = 0;
    for (const DamagedFile& file : DamagedDatabases(whole, 200)) {
        SCOPED_TRACE(file.how);
        PutInPlace(file, m_store.actionLog);
        told += CodeOfFailure() == ExitCode::Fine ? 0 : 1;
    }
    EXPECT_GT(told, 50u);
}

// A rollback journal that has to be played back first is not for a reader to play back.
TEST_F(Statistics, InterruptedChangeIsLeftToAHost) {
    const fs::path aside = StoreFolder() / L"aside";
    {
        const FileDatabase database(m_store.actionLog);
        database.Query("PRAGMA cache_size = 1; BEGIN; UPDATE TslIf_DbActionLog SET ActionName = "
                       "hex(zeroblob(400))");
        fs::create_directory(aside);
        for (const std::wstring& file : {m_store.actionLog, JournalOf(m_store.actionLog)})
            WriteBytes(aside / fs::path(file).filename(), ReadBytes(file));
    }
    fs::remove(m_store.actionLog);
    for (const std::wstring& file : {m_store.actionLog, JournalOf(m_store.actionLog)})
        fs::rename(aside / fs::path(file).filename(), file);
    EXPECT_EQ(ExitCode::Denied, CodeOfFailure());
    EXPECT_TRUE(fs::exists(JournalOf(m_store.actionLog)));
    EXPECT_EQ("600", FileDatabase(m_store.actionLog)
                         .Value("SELECT COUNT(*) FROM TslIf_DbActionLog "
                                "WHERE length(ActionName) < 20"));
    EXPECT_EQ(600, ReadStoreFigures(m_store).tables[0].records);
}

TEST_F(Statistics, NothingIsChangedAndNoLockKept) {
    std::map<fs::path, Bytes> before;
    for (const auto& entry : fs::directory_iterator(StoreFolder()))
        before[entry.path()] = ReadBytes(entry.path());
    ReadStoreFigures(m_store);
    std::map<fs::path, Bytes> after;
    for (const auto& entry : fs::directory_iterator(StoreFolder()))
        after[entry.path()] = ReadBytes(entry.path());
    EXPECT_EQ(before, after);
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    EXPECT_TRUE(MutexIsFree(kLogIdLock));
    for (const auto& [path, bytes] : before)
        EXPECT_TRUE(fs::remove(path)) << path; // nobody has it open
}

TEST_F(Statistics, LockThatIsHeldIsWaitedForAndTold) {
    const MutexHolder holder(kSqliteAccessLock);
    const LockWaits waits(HeldLocks::AreGivenUpAtOnce);
    EXPECT_EQ(ExitCode::Locked, CodeOfFailure());
    EXPECT_THAT(waits.TimeOuts(kSqliteAccessLock), ElementsAre(3000));
}

} // namespace

} // namespace tsl::test
