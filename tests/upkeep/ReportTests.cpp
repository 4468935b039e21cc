// The page of tslhost report: well formed, complete in itself, safe, and with the right figures.
#include <gmock/gmock.h>

#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/DamagedStore.h"
#include "tests/upkeep/Markup.h"
#include "upkeep/statistics/Calendar.h"
#include "upkeep/statistics/Figures.h"
#include "upkeep/statistics/ReportPage.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Report : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeStoreFolder();
        MakeSampleStore(m_store);
    }
    void TearDown() override {
        std::error_code error;
        fs::remove(Out(), error);
        StoreTest::TearDown();
    }
    static fs::path Out() { return fs::temp_directory_path() / L"report of the tests.html"; }
    static ConsoleResult RunReport() { return RunConsole(L"report \"" + Out().wstring() + L"\""); }

    void Change(const std::string& statements) const {
        FileDatabase(m_store.actionLog).Query(statements);
    }
    // The page, which must be well formed.
    std::string Page() const {
        const std::string page = ReportPage(ReadStoreFigures(m_store));
        EXPECT_EQ("", ReadMarkup(page).error);
        return page;
    }

    const StorePaths m_store = StoreIn(StoreFolder().wstring());
};

// The cells of a row, the rows of a table by its caption.
std::vector<std::string> RowsOf(const Markup& markup, const std::string& caption) {
    for (const MarkupElement* const table : markup.Named("table")) {
        if (!table->text.starts_with("\n" + caption + "\n")) continue;
        std::vector<std::string> rows;
        std::istringstream lines(table->text);
        for (std::string line; std::getline(lines, line);) {
            if (!line.empty()) rows.push_back(line);
        }
        return rows;
    }
    return {};
}

TEST_F(Report, NeedsNothingButItself) {
    Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = 45000 + ActionLogId / 7.0");
    const std::string page = Page();
    for (const char* const word : {"://", "src=", "<script", "url(", "@import", "<link", "<iframe",
                                   "onload", "onclick", "javascript"}) {
        EXPECT_THAT(page, Not(HasSubstr(word)));
    }
}

TEST_F(Report, ForbidsTheBrowserToLoadOrRunAnything) {
    ASSERT_EQ(0, RunReport().exitCode);
    const Bytes page = ReadBytes(Out());
    const Markup markup = ReadMarkup(std::string(page.begin(), page.end()));
    std::vector<std::string> policies;
    for (const MarkupElement* const meta : markup.Named("meta")) {
        const auto found = meta->attributes.find("http-equiv");
        if (found != meta->attributes.end() && found->second == "Content-Security-Policy")
            policies.push_back(meta->attributes.at("content"));
    }
    EXPECT_EQ(std::vector<std::string>{"default-src 'none'; style-src 'unsafe-inline'; "
                                       "base-uri 'none'; form-action 'none'"},
              policies);
}

TEST_F(Report, IsReadableForEveryone) {
    const Markup markup = ReadMarkup(Page());
    ASSERT_EQ(1u, markup.Named("html").size());
    EXPECT_EQ("en", markup.Named("html")[0]->attributes.at("lang"));
    EXPECT_EQ(1u, markup.Named("h1").size());
    EXPECT_GE(markup.Named("h2").size(), 6u);
    EXPECT_THAT(markup.Named("title").back()->text, HasSubstr("records"));
    size_t images = 0;
    for (const MarkupElement* const svg : markup.Named("svg")) {
        if (svg->attributes.contains("aria-hidden")) continue;
        ++images;
        EXPECT_EQ("img", svg->attributes.at("role"));
        EXPECT_TRUE(svg->attributes.contains("viewBox"));
        EXPECT_NE("", svg->text);
    }
    EXPECT_EQ(3u + 4u + 3u + 2u, images); // charts, actions, applications, users
    EXPECT_EQ(3u, markup.Named("desc").size());
    bool hasViewport = false;
    for (const MarkupElement* const meta : markup.Named("meta")) {
        hasViewport = hasViewport || (meta->attributes.contains("name") &&
                                      meta->attributes.at("name") == "viewport");
    }
    EXPECT_TRUE(hasViewport);
}

TEST_F(Report, FiguresAreThoseOfTheStatistics) {
    Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = 45000 + ActionLogId / 7.0");
    const StoreFigures figures = ReadStoreFigures(m_store);
    const Markup markup = ReadMarkup(Page());
    const std::vector<std::string> days = RowsOf(markup, "Records per day (UTC)");
    EXPECT_EQ(figures.days.size() + 2, days.size());
    EXPECT_EQ("2023-03-1566", days[2]);
    EXPECT_EQ("2023-06-086600", days.back());
    const std::vector<std::string> hours = RowsOf(markup, "Records by hour of the week (UTC)");
    ASSERT_EQ(26u, hours.size());
    std::string noon = "12";
    for (size_t day = 0; day < 7; ++day)
        noon += Grouped(figures.hours[day][12]);
    EXPECT_EQ(noon, hours[14]);
    EXPECT_EQ("deleteItem25.0 % of all records15025.0 %", RowsOf(markup, "Actions")[2]);
    EXPECT_EQ("User 150.0 % of all records30050.0 %", RowsOf(markup, "Users")[2]);
    EXPECT_EQ("TslIf_DbActionLog6001600", RowsOf(markup, "Records and their ids")[2]);
    EXPECT_EQ("UserIdList.dat" + FileSize(*figures.files[3].bytes) + "\u2013\u2013",
              RowsOf(markup, "Files")[5]);
}

TEST_F(Report, FieldsOfTheWeekAndColumnsAreThoseOfTheStatistics) {
    Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = 45000 + ActionLogId / 7.0");
    const StoreFigures figures = ReadStoreFigures(m_store);
    std::vector<std::string> expected;
    for (const DayTally& day : figures.days)
        expected.push_back(IsoDay(day.day) + ": " + Counted(day.records, "record", "records"));
    for (size_t day = 0; day < 7; ++day) {
        for (size_t hour = 0; hour < 24; ++hour) {
            expected.push_back(std::string(WeekdayName(day)) + " " + HourName(hour) +
                               ":00: " + Counted(figures.hours[day][hour], "record", "records"));
        }
    }
    std::vector<std::string> drawn;
    const Markup markup = ReadMarkup(Page());
    for (const MarkupElement* const rectangle : markup.Named("rect")) {
        if (!rectangle->text.empty()) drawn.push_back(rectangle->text);
    }
    EXPECT_EQ(expected, drawn);
}

TEST_F(Report, OthersAreOneLine) {
    Change("UPDATE TslIf_DbActionLog SET ActionName = 'action' || (ActionLogId % 50)");
    const std::vector<std::string> rows = RowsOf(ReadMarkup(Page()), "Actions");
    ASSERT_EQ(2u + 12u + 1u, rows.size());
    EXPECT_EQ("38 others45676.0 %", rows.back());
}

TEST_F(Report, HostileNamesStayNames) {
    const std::string hostile = "</style><script src='http:x'>&amp;\"<!--]]>\x01\x7f\xc2\x85";
    std::string quoted;
    for (const char character : hostile)
        quoted += character == '\'' ? std::string("''") : std::string(1, character);
    Change("UPDATE TslIf_DbActionLog SET ActionName = CASE ActionLogId % 3 WHEN 0 THEN '" + quoted +
           "' WHEN 1 THEN CAST(x'41ff42' AS TEXT) ELSE replace(hex(zeroblob(5000)), '00', "
           "'\u65e5<') END");
    const std::string page = Page();
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("<!--")));
    const Markup markup = ReadMarkup(page);
    std::vector<std::string> names;
    for (const MarkupElement* const name : markup.Named("bdi"))
        names.push_back(name->text);
    EXPECT_THAT(names, ::testing::Contains("</style><script src='http:x'>&amp;\"<!--]]>"
                                           "\u2401\u2421\uFFFD"));
    EXPECT_THAT(names, ::testing::Contains("A\uFFFD"
                                           "B"));
    for (const std::string& name : names)
        EXPECT_LT(name.size(), 130u);
}

// Columns of numbers can hold texts too.
TEST_F(Report, HostileUsersAndApplicationsStayNames) {
    Change("UPDATE TslIf_DbActionLog SET UserId = '<script>u', AppId = '<img src=x>'");
    const std::string page = Page();
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("<img")));
    EXPECT_THAT(page, HasSubstr("&lt;script&gt;u"));
    EXPECT_THAT(page, HasSubstr("&lt;img src=x&gt;"));
}

TEST_F(Report, ManyDaysAreDrawnAsFewColumns) {
    for (const double days : {0.0, 1.0, 50.0, 1000.0, 4'000.0}) {
        SCOPED_TRACE(days);
        Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = 45000 + ActionLogId * " +
               std::to_string(days) + " / 10");
        const Markup markup = ReadMarkup(Page());
        // Each of the lists has bars, too.
        const size_t columns = markup.Named("rect", "column").size() - 4 - 3 - 2;
        EXPECT_GE(columns, 1u);
        EXPECT_LE(columns, 120u);
    }
}

TEST_F(Report, RecordsWithoutDatesAreTold) {
    Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = NULL WHERE ActionLogId <= 7");
    EXPECT_THAT(Page(), HasSubstr("7 records have no date"));
    Change("UPDATE TslIf_DbActionLog SET PluginLoggedTime = -1");
    EXPECT_THAT(Page(), HasSubstr("No record has a date from 1900 to 9999."));
}

TEST_F(Report, EmptyStoreIsAPageThatSaysSo) {
    Change("DELETE FROM TslIf_DbActionLog; DELETE FROM TslIf_ContentDeleteProperty");
    fs::remove(m_store.replayLog);
    const std::string page = Page();
    EXPECT_THAT(page, HasSubstr("This store is empty"));
    EXPECT_TRUE(ReadMarkup(page).Named("svg").empty());
    fs::remove(m_store.actionLog);
    EXPECT_THAT(Page(), HasSubstr("This store is empty"));
}

TEST_F(Report, CommandWritesThePageInPlaceOfAnOlderOne) {
    for (int run = 0; run < 2; ++run) {
        const ConsoleResult result = RunReport();
        EXPECT_EQ(0, result.exitCode) << result.errors;
        EXPECT_THAT(result.output, HasSubstr("report of the tests.html\n"));
        const Bytes page = ReadBytes(Out());
        EXPECT_EQ("", ReadMarkup(std::string(page.begin(), page.end())).error);
        WriteBytes(Out(), Bytes(500'000, 'x'));
    }
    EXPECT_TRUE(FilesInTheMaking(Out().parent_path()).empty());
}

TEST_F(Report, MissingStoreIsNoPage) {
    fs::remove_all(StoreFolder());
    const ConsoleResult result = RunReport();
    EXPECT_EQ(1, result.exitCode);
    EXPECT_THAT(result.errors, HasSubstr("there is no action log"));
    EXPECT_FALSE(fs::exists(Out()));
}

TEST_F(Report, PageThatCannotBeWrittenLeavesNothingBehind) {
    fs::create_directory(Out());
    const ConsoleResult inPlaceOfFolder = RunReport();
    EXPECT_EQ(5, inPlaceOfFolder.exitCode);
    EXPECT_THAT(inPlaceOfFolder.errors, HasSubstr("tslhost: cannot write "));
    EXPECT_TRUE(FilesInTheMaking(Out().parent_path()).empty());
    EXPECT_EQ(5, RunConsole(L"report no\\such\\folder\\page.html").exitCode);
    EXPECT_EQ(2, RunConsole(L"report").exitCode);
}

} // namespace

} // namespace tsl::test
