// tslhost ids, show, list, all, take and whoami, run as a user runs them.
#include <nlohmann/json.hpp>

#include "tests/console/ConsoleRun.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class QueryCommands : public StoreTest {
protected:
    // Ids 1 to 5: three of user 1 (kinds 1, 32, 1), two of user 2.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        const ConsoleResult result = RunConsole(
            L"import -",
            R"({"name":"playItem","app":5,"user":1,"time":"2026-11-20T08:00:00Z","ullValues":[4711]})"
            "\n"
            R"({"name":"playItem","app":5,"user":1,"kind":32,"stringValues":["a,b",""]})"
            "\n"
            R"({"name":"showItem","app":3,"user":2})"
            "\n"
            R"({"name":"deleteItem","app":3,"user":1,"ullValues":[7,8],"stringValues":["x","y z"]})"
            "\n"
            R"({"name":"showItem","app":3,"user":2})"
            "\n");
        ASSERT_EQ(0, result.exitCode) << result.errors;
    }
};

TEST_F(QueryCommands, IdsAreThoseOfTheUser) {
    EXPECT_EQ("1\n2\n4\n", RunConsole(L"ids").output);
    EXPECT_EQ("3\n5\n", RunConsole(L"ids --user 2").output);
    EXPECT_EQ("1\n2\n3\n4\n5\n", RunConsole(L"ids --user 1 --user 2").output);
    EXPECT_EQ("{\"id\":3}\n{\"id\":5}\n", RunConsole(L"ids --user 2 --json").output);
}

TEST_F(QueryCommands, IdsAreFilteredByIdKindAndTime) {
    EXPECT_EQ("4\n", RunConsole(L"ids --first 2").output);
    EXPECT_EQ("1\n", RunConsole(L"ids --last 3").output);
    EXPECT_EQ("2\n", RunConsole(L"ids --kind 32").output);
    EXPECT_EQ("1\n2\n4\n", RunConsole(L"ids --since 2020-01-01T00:00:00Z").output);
    EXPECT_EQ("", RunConsole(L"ids --until 2020-01-01T00:00:00Z").output);
    EXPECT_EQ("2\n", RunConsole(L"ids --kind 32 --since 2020-01-01T00:00:00Z").output);
}

TEST_F(QueryCommands, LookingNeverMovesTheCounter) {
    EXPECT_EQ(1, RunConsole(L"ids --first 1000").exitCode);
    EXPECT_EQ("6\n", RunConsole(L"id").output);
}

TEST_F(QueryCommands, NothingFoundIsCodeOne) {
    for (const wchar_t* const arguments :
         {L"ids --user 77", L"list --user 77", L"list --name nosuch", L"show 77", L"take 77"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(arguments)));
        const ConsoleResult result = RunConsole(arguments);
        EXPECT_EQ(1, result.exitCode) << result.errors;
        EXPECT_EQ("", result.output);
    }
}

TEST_F(QueryCommands, AllNamesTheDeletedItemsThatAreKeptUntilTheyAreTaken) {
    EXPECT_EQ("4\n", RunConsole(L"all").output);
    EXPECT_EQ("{\"id\":4}\n", RunConsole(L"all --json").output);
    EXPECT_EQ("id: 4\nfirstUll: 7\nsecondUll: 8\nfirstText: x\ntextHandedOn: y z\n",
              RunConsole(L"take 4").output);
    EXPECT_EQ(1, RunConsole(L"all").exitCode);
}

TEST_F(QueryCommands, ShowPrintsATableInTheOrderAskedFor) {
    const ConsoleResult result = RunConsole(L"show 2 1");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(0u, result.output.find("id  time")) << result.output;
    const size_t second = result.output.find("\n 2  ");
    const size_t first = result.output.find("\n 1  2026-11-20T08:00:00Z ");
    ASSERT_NE(std::string::npos, second) << result.output;
    ASSERT_NE(std::string::npos, first) << result.output;
    EXPECT_LT(second, first);
}

TEST_F(QueryCommands, ShowNamesWhatIsMissing) {
    const ConsoleResult result = RunConsole(L"show 1 77");
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ("tslhost: there is no record 77\n", result.errors);
}

TEST_F(QueryCommands, JsonHasTheDecodedListsBesideTheRawText) {
    const auto record = nlohmann::json::parse(RunConsole(L"show 2 --json").output);
    EXPECT_EQ("stringValues={a%2cb,}", record["parameters"]);
    EXPECT_EQ(nlohmann::json::parse("[\"a,b\",\"\"]"), record["values"]["stringValues"]);
    EXPECT_EQ(2, record["id"]);
    EXPECT_EQ(1, record["user"]);
    EXPECT_EQ(5, record["app"]);
    const auto dated = nlohmann::json::parse(RunConsole(L"show 1 --json").output);
    EXPECT_EQ("2026-11-20T08:00:00Z", dated["time"]);
    EXPECT_EQ(nlohmann::json::parse("[4711]"), dated["values"]["ullValues"]);
}

TEST_F(QueryCommands, ListShowsTheNewestFirstAndFilters) {
    const auto ids = [](const std::wstring& arguments) {
        std::string listed;
        std::istringstream lines(RunConsole(L"list --json " + arguments).output);
        for (std::string line; std::getline(lines, line);) {
            listed += nlohmann::json::parse(line)["id"].dump() + " ";
        }
        return listed;
    };
    EXPECT_EQ("4 2 1 ", ids(L""));
    EXPECT_EQ("4 2 ", ids(L"-n 2"));
    EXPECT_EQ("2 1 ", ids(L"--name playItem"));
    EXPECT_EQ("4 ", ids(L"--app 3"));
    EXPECT_EQ("5 4 3 ", ids(L"--user 1 --user 2 --app 3"));
}

TEST_F(QueryCommands, FirstAboveLastIsWrongUsage) {
    EXPECT_EQ(2, RunConsole(L"ids --first 5 --last 2").exitCode);
}

TEST_F(QueryCommands, WhoamiNamesTheUserAndKeepsTheId) {
    const auto first = nlohmann::json::parse(RunConsole(L"whoami --json").output);
    EXPECT_EQ(1, first["id"]);
    EXPECT_EQ(0u, first["sid"].get<std::string>().find("S-1-"));
    EXPECT_EQ(first, nlohmann::json::parse(RunConsole(L"whoami --json").output));
}

} // namespace tsl::test
