// tslhost export, run as a user runs it.
#include <nlohmann/json.hpp>

#include "console/StorePlace.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/DamagedStore.h"

namespace tsl::test {

namespace {

using Json = nlohmann::ordered_json;

std::vector<Json> Lines(const std::string& text) {
    std::vector<Json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(Json::parse(line));
    return lines;
}

// "1:32 2:1 ", the ids and log kinds of an export.
std::string IdsAndKinds(const std::wstring& arguments) {
    std::string listed;
    for (const Json& line : Lines(RunConsole(L"export " + arguments).output))
        listed += line["id"].dump() + ":" + line["kind"].dump() + " ";
    return listed;
}

using CsvRow = std::vector<std::string>;

// Reads CSV as RFC 4180 has it; throws for what is not so.
std::vector<CsvRow> ParseCsv(const std::string& text) {
    std::vector<CsvRow> rows;
    size_t place = 0;
    while (place < text.size()) {
        CsvRow row;
        for (bool more = true; more;) {
            std::string cell;
            if (text.at(place) == '"') {
                for (++place; text.at(place) != '"' || text.substr(place, 2) == "\"\""; ++place) {
                    if (text[place] == '"') ++place;
                    cell += text[place];
                }
                ++place;
            } else {
                for (; text.at(place) != ',' && text[place] != '\r'; ++place) {
                    if (text[place] == '"' || text[place] == '\n')
                        throw std::runtime_error("a cell that should be quoted");
                    cell += text[place];
                }
            }
            row.push_back(cell);
            more = text.at(place) == ',';
            if (more) {
                ++place;
            } else if (text.substr(place, 2) == "\r\n") {
                place += 2;
            } else {
                throw std::runtime_error("a row that does not end");
            }
        }
        rows.push_back(row);
    }
    return rows;
}

void Import(const std::string& lines) {
    const ConsoleResult result = RunConsole(L"import -", lines);
    ASSERT_EQ(0, result.exitCode) << result.errors;
}

std::string TextOf(const std::filesystem::path& path) {
    const Bytes bytes = ReadBytes(path);
    return std::string(bytes.begin(), bytes.end());
}

} // namespace

class Export : public StoreTest {
protected:
    // Ids 1 to 6, of two users and three log kinds.
    static void MakeRecords() {
        Import(R"({"name":"playItem","app":5,"user":1,"ullValues":[4711]})"
               "\n"
               R"({"name":"playItem","app":5,"user":1,"kind":32})"
               "\n"
               R"({"name":"showItem","app":3,"user":2})"
               "\n"
               R"({"name":"rateItem","app":-3,"user":1,"kind":64})"
               "\n"
               R"({"name":"showItem","app":3,"user":2,"kind":32})"
               "\n"
               R"({"name":"showItem","app":5,"user":4294967295})"
               "\n");
    }
};

TEST_F(Export, LineHasItsMembersInOrderAndTheListsBesideTheRawText) {
    Import(R"({"name":"play\"Item","app":-3,"user":9,"time":"2026-11-20T08:00:00.250Z","kind":32,)"
           R"("ullValues":[18446744073709551615],"usValues":[7],"intValues":[-5,7],)"
           R"("boolValues":[true,false],"stringValues":["a,b"],"moreStringValues":["日本"],)"
           R"("floatValues":[1.5]})");
    const ConsoleResult result = RunConsole(L"export");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(R"({"id":1,"time":"2026-11-20T08:00:00.250Z","user":9,"app":-3,"kind":32,)"
              R"("name":"play\"Item","parameters":"ullValues={18446744073709551615}&usValues={7})"
              R"(&intValues={-5,7}&boolValues={1,0}&stringValues={a%2cb,日本})"
              R"(&floatValues={1.500000}","ullValues":[18446744073709551615],"usValues":[7],)"
              R"("intValues":[-5,7],"boolValues":[true,false],"stringValues":["a,b","日本"],)"
              R"("floatValues":[1.5]})"
              "\n",
              result.output);
}

TEST_F(Export, HasAllUsersAndKindsById) {
    MakeRecords();
    EXPECT_EQ("1:1 2:32 3:1 4:64 5:32 6:1 ", IdsAndKinds(L""));
}

TEST_F(Export, IsNarrowedByEachFilter) {
    MakeRecords();
    EXPECT_EQ("3:1 5:32 ", IdsAndKinds(L"--user 2"));
    EXPECT_EQ("3:1 5:32 6:1 ", IdsAndKinds(L"--user 4294967295 --user 2"));
    EXPECT_EQ("2:32 5:32 ", IdsAndKinds(L"--kind 32"));
    EXPECT_EQ("5:32 ", IdsAndKinds(L"--kind 32 --user 2"));
    EXPECT_EQ("2:32 3:1 4:64 ", IdsAndKinds(L"--first 2 --last 4"));
    EXPECT_EQ("3:1 5:32 6:1 ", IdsAndKinds(L"--name showItem"));
    EXPECT_EQ("4:64 ", IdsAndKinds(L"--app -3"));
    EXPECT_EQ("6:1 ", IdsAndKinds(L"--app 5 --name showItem"));
    EXPECT_EQ("2:32 5:32 ", IdsAndKinds(L"--kind 32 --since 2020-01-01T00:00:00Z"));
    EXPECT_EQ("", IdsAndKinds(L"--until 2020-01-01T00:00:00Z"));
}

TEST_F(Export, OfNothingIsEmptyAndCodeOne) {
    for (const wchar_t* const arguments : {L"export", L"export --user 77"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(arguments)));
        const ConsoleResult result = RunConsole(arguments);
        EXPECT_EQ(1, result.exitCode) << result.errors;
        EXPECT_EQ("", result.output);
        EXPECT_EQ("", result.errors);
    }
    EXPECT_EQ(1u, ParseCsv(RunConsole(L"export --format csv").output).size());
}

TEST_F(Export, ChangesNothing) {
    MakeRecords();
    const Bytes database = ReadBytes(ActionLogPath());
    const Bytes counter = ReadBytes(CounterPath());
    for (const wchar_t* const arguments : {L"export", L"export --first 1000 --last 4294967295"}) {
        RunConsole(arguments);
        EXPECT_EQ(database, ReadBytes(ActionLogPath()));
        EXPECT_EQ(counter, ReadBytes(CounterPath()));
    }
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
}

// 600 records of two users and two kinds: more than are fetched at once.
TEST_F(Export, HasEveryRecordOfALargerStoreOnce) {
    MakeStoreFolder();
    MakeSampleStore(StoreIn(StoreFolder().wstring()));
    const std::vector<Json> lines = Lines(RunConsole(L"export").output);
    ASSERT_EQ(static_cast<size_t>(kSampleRecords), lines.size());
    for (size_t index = 0; index < lines.size(); ++index) {
        const size_t id = index + 1;
        EXPECT_EQ(id, lines[index]["id"]);
        EXPECT_EQ(id % 10 == 9 ? 2 : 1, lines[index]["kind"]);
        EXPECT_EQ(1 + id % 2, lines[index]["user"]);
        EXPECT_EQ(Json::array({id}), lines[index]["ullValues"]);
    }
}

TEST_F(Export, RawCsvIsReadBackAsItWas) {
    Import(R"({"name":"=cmd|' /C calc'!A0","app":5,"user":1,"stringValues":["a","\"q\""]})"
           "\n"
           R"({"name":"one,\"two\"","app":5,"user":2,"kind":32,"ullValues":[1,2]})"
           "\n"
           R"({"name":"line\r\nend","app":5,"user":1,"boolValues":[true]})"
           "\n"
           R"({"name":"日本 ","app":5,"user":1})"
           "\n");
    const std::string csv = RunConsole(L"export --format csv --raw").output;
    const std::vector<CsvRow> rows = ParseCsv(csv);
    const std::vector<Json> lines = Lines(RunConsole(L"export").output);
    ASSERT_EQ(5u, rows.size());
    ASSERT_EQ(4u, lines.size());
    const CsvRow titles = {"id",         "time",         "user",       "app",      "kind",
                           "name",       "parameters",   "ullValues",  "usValues", "intValues",
                           "boolValues", "stringValues", "floatValues"};
    EXPECT_EQ(titles, rows[0]);
    for (size_t index = 0; index < lines.size(); ++index) {
        const CsvRow& row = rows[index + 1];
        ASSERT_EQ(titles.size(), row.size()) << index;
        for (size_t column = 0; column < titles.size(); ++column) {
            SCOPED_TRACE(titles[column] + " of " + std::to_string(index));
            const bool isThere = lines[index].contains(titles[column]);
            const Json value = isThere ? lines[index][titles[column]] : Json("");
            EXPECT_EQ(value.is_string() ? value.get<std::string>() : value.dump(), row[column]);
        }
    }
    EXPECT_EQ("=cmd|' /C calc'!A0", rows[1][5]) << "nothing is added against formulas";
    EXPECT_NE(std::string::npos, csv.find(",\"line\r\nend\",")) << csv;
}

TEST_F(Export, CsvHasNoTextThatASpreadsheetTakesForAFormula) {
    const std::pair<std::string, std::string> cases[] = {
        {"=cmd|' /C calc'!A0", "'=cmd|' /C calc'!A0"},
        {"+1+cmd", "'+1+cmd"},
        {"-1+cmd", "'-1+cmd"},
        {"@SUM(A1)", "'@SUM(A1)"},
        {"\t=1", "' =1"},
        {"\rx", "' x"},
        {"\nx", "' x"},
        {"  =1", "'  =1"},
        {"\u00A0=1", "'\u00A0=1"},
        {"\"=1\"", "'\"=1\""},
        {"'=1", "''=1"},
        {"\uFF1D"
         "1",
         "'\uFF1D"
         "1"},
        {"-inf", "'-inf"},
        {"-5", "-5"},
        {"-5.25e-3", "-5.25e-3"},
        {"17", "17"},
        {"playItem", "playItem"},
        {"a=1", "a=1"},
        {"a-b", "a-b"},
        {"", ""},
    };
    std::string lines;
    for (const auto& [name, cell] : cases)
        lines += Json({{"name", name}, {"app", -5}, {"user", 1}}).dump() + "\n";
    Import(lines);
    const std::vector<CsvRow> rows = ParseCsv(RunConsole(L"export --format csv").output);
    const std::vector<CsvRow> raw = ParseCsv(RunConsole(L"export --format csv --raw").output);
    ASSERT_EQ(std::size(cases) + 1, rows.size());
    ASSERT_EQ(rows.size(), raw.size());
    for (size_t index = 0; index < std::size(cases); ++index) {
        EXPECT_EQ(cases[index].second, rows[index + 1][5]);
        EXPECT_EQ(cases[index].first, raw[index + 1][5]);
        EXPECT_EQ("-5", rows[index + 1][3]);
    }
}

// The parameter text of a record that no host of today writes.
TEST_F(Export, CsvGuardsTheParametersToo) {
    MakeRecords();
    FileDatabase(ActionLogPath())
        .Query("UPDATE TslIf_DbActionLog SET ActionParameters = '=1+1' WHERE ActionLogId = 1");
    EXPECT_EQ("'=1+1", ParseCsv(RunConsole(L"export --format csv").output)[1][6]);
}

TEST_F(Export, RawIsSaidOfCsvOnly) {
    const ConsoleResult result = RunConsole(L"export --raw");
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ("tslhost: --raw is said of --format csv only\n", result.errors);
}

TEST_F(Export, FileIsWrittenWholeOrStaysAsItWas) {
    MakeRecords();
    const auto path = std::filesystem::temp_directory_path() / L"Ausfuhr \u65e5.jsonl";
    WriteBytes(path, Bytes(7, 'x'));
    const std::wstring output = L" --output \"" + path.wstring() + L"\"";
    EXPECT_EQ(5, RunConsole(L"export --plugin nosuch.dll" + output).exitCode);
    EXPECT_EQ("xxxxxxx", TextOf(path));
    const ConsoleResult result = RunConsole(L"export" + output);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ("6 records exported\n", result.output);
    EXPECT_EQ(RunConsole(L"export").output, TextOf(path));
    EXPECT_EQ("{\"records\":2}\n", RunConsole(L"export --json --kind 32" + output).output);
    EXPECT_EQ(2u, Lines(TextOf(path)).size());
    std::filesystem::remove(path);
    const ConsoleResult nowhere = RunConsole(L"export --output nosuch\\file.jsonl");
    EXPECT_EQ(5, nowhere.exitCode);
    EXPECT_EQ(0u, nowhere.errors.find("tslhost: cannot write nosuch\\file.jsonl: 0x80070003"))
        << nowhere.errors;
}

TEST_F(Export, FileThatCannotBeReplacedIsToldAndNothingIsLeftBeside) {
    MakeRecords();
    const auto path = std::filesystem::temp_directory_path() / L"tslhost_export_folder";
    std::filesystem::create_directory(path);
    EXPECT_EQ(5, RunConsole(L"export --output \"" + path.wstring() + L"\"").exitCode);
    EXPECT_TRUE(FilesInTheMaking(path.parent_path()).empty());
    std::filesystem::remove(path);
}

// Older versions left the rows that a new one of the same id should have replaced.
TEST_F(Export, IdThatIsThereTwiceHasTheKindOfItsLatestRow) {
    MakeRecords();
    FileDatabase(ActionLogPath())
        .Query("INSERT INTO TslIf_DbActionLog SELECT ActionLogId, UsedLog, AppId, AppName, 2, "
               "'later', ActionParameters, AppLoggedTime, PluginLoggedTime, PreActionName, "
               "PreActionParameters, PreLoggedTime, 16 FROM TslIf_DbActionLog WHERE ActionLogId = "
               "2");
    EXPECT_EQ("1:1 2:16 3:1 4:64 5:32 6:1 ", IdsAndKinds(L""));
    EXPECT_EQ("5:32 ", IdsAndKinds(L"--kind 32"));
    EXPECT_EQ("2:16 ", IdsAndKinds(L"--kind 16"));
    EXPECT_EQ("1:1 4:64 ", IdsAndKinds(L"--user 1"));
    EXPECT_EQ("2:16 ", IdsAndKinds(L"--name later"));
}

// A host whose recording another one in its process has switched on records under it.
TEST_F(Export, HasLogKindZeroToo) {
    MakeRecords();
    FileDatabase(ActionLogPath())
        .Query("UPDATE TslIf_DbActionLog SET LogKind = 0 WHERE ActionLogId = 3");
    EXPECT_EQ("1:1 2:32 3:0 4:64 5:32 6:1 ", IdsAndKinds(L""));
    const ConsoleResult imported =
        RunConsole(L"import --keep-ids -", RunConsole(L"export --user 2").output);
    EXPECT_EQ(6, imported.exitCode);
    EXPECT_EQ("tslhost: -:1: \"kind\" must be at least 1: kind 0 switches recording off\n",
              imported.errors);
}

TEST_F(Export, RowsThatTheComponentCannotBeAskedForAreTold) {
    MakeRecords();
    FileDatabase(ActionLogPath())
        .Query("UPDATE TslIf_DbActionLog SET LogKind = NULL WHERE ActionLogId IN (2, 3)");
    const ConsoleResult result = RunConsole(L"export");
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ(4u, Lines(result.output).size());
    EXPECT_EQ("tslhost: 2 records without an id, a user or a log kind that the component knows: "
              "left out\n",
              result.errors);
}

TEST_F(Export, NumbersThatAreNoneInJsonAreTexts) {
    Import(R"({"name":"a","app":1,"user":1,"floatValues":["inf","-inf","nan","-nan",0.5]})");
    const Json line = Lines(RunConsole(L"export").output).at(0);
    EXPECT_EQ("floatValues={inf,-inf,nan,-nan,0.500000}", line["parameters"]);
    EXPECT_EQ(Json::parse(R"(["inf","-inf","nan","-nan",0.5])"), line["floatValues"]);
}

TEST_F(Export, DamagedStoreIsCodeFour) {
    MakeRecords();
    WriteBytes(ActionLogPath(), Bytes(4096, 'x'));
    const ConsoleResult result = RunConsole(L"export");
    EXPECT_EQ(4, result.exitCode);
    EXPECT_NE(std::string::npos, result.errors.find("ualog.db: file is not a database (26)"))
        << result.errors;
}

} // namespace tsl::test
