// tslhost stats, run as a user runs it.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "console/Table.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/upkeep/DamagedStore.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class StatsCommand : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeStoreFolder();
        fs::create_directories(fs::path(MachineStore().userIds).parent_path());
        MakeSampleStore(MachineStore());
    }
    static std::string Printed(const std::wstring& arguments) {
        const ConsoleResult result = RunConsole(arguments);
        EXPECT_EQ(0, result.exitCode) << result.errors;
        EXPECT_EQ("", result.errors);
        return result.output;
    }
};

TEST_F(StatsCommand, HasASectionForEachGroup) {
    const std::string output = Printed(L"stats");
    for (const char* const part :
         {"Next record id 601\n",
          "\nFiles\n",
          "\nactionLog.txt    24 bytes",
          "\nTables\n",
          "\nTslIf_DbActionLog                600         1      600\n",
          "\nTslIf_ContentDeleteProperty       40         1       40\n",
          "\nTslIf_ActionReplay               100       501      600\n",
          "\nTimes (UTC)\n",
          "\nTslIf_DbActionLog            2023-03-15 00:01:00  2023-03-15 10:00:00        0\n",
          "\nUsers (2)\n",
          "\n    300  50.0 %  2\n",
          "\nApplications (3)\n",
          "\n    200  33.3 %  0\n",
          "\nActions (4)\n",
          "\n    150  25.0 %  deleteItem\n",
          "\nBusiest days (UTC) (1)\n",
          "\n    600  100.0 %  2023-03-15 Wed\n",
          "\nHours of the week (UTC; 9 is up to 60 records)\n",
          "\nTue . . . . . . . . . . . . . . . . . . . . . . . .           0\n",
          "\nWed 9 9 9 9 9 9 9 9 9 9 1 . . . . . . . . . . . . .         600\n"}) {
        EXPECT_THAT(output, HasSubstr(part));
    }
}

TEST_F(StatsCommand, TopLeavesTheOthersToOneLine) {
    const std::string output = Printed(L"stats --top 1");
    EXPECT_THAT(output, HasSubstr("\n    150  25.0 %  deleteItem\n    450  75.0 %  3 others\n"));
    EXPECT_THAT(output, Not(HasSubstr("playItem")));
    EXPECT_THAT(Printed(L"stats"), Not(HasSubstr("others")));
}

TEST_F(StatsCommand, LinesFitEightyColumnsWhateverTheNames) {
    FileDatabase(MachineStore().actionLog)
        .Query("UPDATE TslIf_DbActionLog SET ActionLogId = ActionLogId + 4294966000, ActionName = "
               "CASE ActionLogId % 4 WHEN 0 THEN hex(zeroblob(300)) WHEN 1 THEN "
               "replace(hex(zeroblob(100)), '0', '\u65e5') WHEN 2 THEN char(27) || '[31m' || "
               "char(10) || 'red' ELSE CAST(x'ff41' AS TEXT) END");
    const std::string output = Printed(L"stats");
    EXPECT_THAT(output, AllOf(HasSubstr("\u65e5\u2026\n"),
                              HasSubstr("\uFFFD"
                                        "A\n"),
                              HasSubstr(" [31m red\n"), Not(HasSubstr("\x1b"))));
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(DisplayWidth(line), 80u) << line;
}

TEST_F(StatsCommand, JsonIsOneObjectWithEverything) {
    const std::string output = Printed(L"stats --json --top 1");
    EXPECT_EQ(1, std::ranges::count(output, '\n'));
    const auto json = nlohmann::json::parse(output);
    EXPECT_EQ(601, json["nextId"]);
    EXPECT_EQ(4u, json["files"].size());
    EXPECT_EQ(fs::file_size(MachineStore().actionLog), json["files"][0]["bytes"]);
    EXPECT_GT(json["files"][0]["freePages"], 0);
    EXPECT_EQ(nullptr, json["files"][2]["pages"]);
    EXPECT_EQ(nlohmann::json::parse(R"({"name":"TslIf_ActionReplay","records":100,"firstId":501,
        "lastId":600,"firstTime":"2023-03-15T08:21:00Z","lastTime":"2023-03-15T10:00:00Z",
        "undated":0})"),
              json["tables"][2]);
    EXPECT_EQ(nlohmann::json::parse(R"([{"user":1,"records":300},{"user":2,"records":300}])"),
              json["users"]);
    EXPECT_EQ(3u, json["applications"].size());
    EXPECT_EQ(nlohmann::json::parse(R"({"application":0,"records":200})"), json["applications"][0]);
    EXPECT_EQ(4u, json["actions"].size());
    EXPECT_EQ(nlohmann::json::parse(R"({"name":"deleteItem","records":150})"), json["actions"][0]);
    EXPECT_EQ(nlohmann::json::parse(R"([{"day":"2023-03-15","records":600}])"), json["days"]);
    EXPECT_EQ(7u, json["hoursOfWeek"].size());
    EXPECT_EQ(60, json["hoursOfWeek"][2][9]);
}

TEST_F(StatsCommand, JsonOfAnEmptyStoreHasTheSameMembers) {
    const auto full = nlohmann::json::parse(Printed(L"stats --json"));
    fs::remove(MachineStore().actionLog);
    fs::remove(MachineStore().replayLog);
    const auto empty = nlohmann::json::parse(Printed(L"stats --json"));
    for (const auto& [name, value] : full.items())
        EXPECT_EQ(value.type(), empty[name].type()) << name;
    EXPECT_EQ(nullptr, empty["tables"][0]["firstId"]);
    EXPECT_EQ(nullptr, empty["files"][0]["bytes"]);
    EXPECT_EQ(0u, empty["days"].size());
}

TEST_F(StatsCommand, FailuresAreOneLineAndACode) {
    const fs::path database = MachineStore().actionLog;
    WriteBytes(database, Utf16Bytes(L"no database at all, but a text"));
    const ConsoleResult damaged = RunConsole(L"stats");
    EXPECT_EQ(4, damaged.exitCode);
    EXPECT_EQ("", damaged.output);
    EXPECT_THAT(damaged.errors,
                AllOf(HasSubstr("ualog.db"), HasSubstr("not a database (26); tslhost recover")));
    fs::remove_all(StoreFolder());
    fs::remove(MachineStore().userIds);
    const ConsoleResult missing = RunConsole(L"stats");
    EXPECT_EQ(1, missing.exitCode);
    EXPECT_EQ("", missing.output);
    EXPECT_THAT(missing.errors, HasSubstr("tslhost: there is no action log in C:\\"));
    EXPECT_EQ(1, std::ranges::count(missing.errors, '\n'));
    EXPECT_EQ(2, RunConsole(L"stats --top many").exitCode);
}

TEST_F(StatsCommand, HelpHasAnExample) {
    EXPECT_THAT(Printed(L"stats --help"), HasSubstr("Example: tslhost stats --top 5\n"));
}

} // namespace

} // namespace tsl::test
