// tslhost import --keep-ids, run as a user runs it: what was exported comes back under its ids.
#include "files/TextActionLog.h"
#include "tests/hostile_input/Chance.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/KeepIds.h"
#include "upkeep/transfer/RecordFeed.h"

namespace tsl::test {

namespace {

using Json = nlohmann::ordered_json;

std::vector<std::string> ExampleLines() {
    const Bytes bytes = ReadBytes(ProgramFolder() / L"example_actions.jsonl");
    return SplitLines(std::string(bytes.begin(), bytes.end()));
}

// The first lines of the examples, all of one log kind.
std::string ExamplesOfKind(size_t count, unsigned kind) {
    std::string text;
    for (const std::string& line : ExampleLines()) {
        if (count-- == 0) break;
        Json action = Json::parse(line);
        action["kind"] = kind;
        text += action.dump() + "\n";
    }
    return text;
}

} // namespace

class KeepIdsImport : public StoreTest {
protected:
    // The export of a store of examples of kind 1; the store is empty afterwards.
    static std::string ExportOfExamples(size_t count) {
        const ConsoleResult imported = RunConsole(L"import -", ExamplesOfKind(count, 1));
        EXPECT_EQ(0, imported.exitCode) << imported.errors;
        const std::string exported = Exported();
        EmptyTheStore();
        return exported;
    }
};

TEST_F(KeepIdsImport, GivesTheSameBytesAgain) {
    const std::string first = ExportOfExamples(200);
    const size_t count = SplitLines(first).size();
    EXPECT_GT(count, 150u);
    const ConsoleResult result = KeepIds(first);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(
        std::to_string(count) +
            " recorded, 0 bad, 0 already there, 0 there with another content, 0 became others",
        Counts(result));
    EXPECT_EQ("", result.errors);
    EXPECT_EQ(first, Exported());
    // Every action is in the replay log too, and the next id lies behind all of them.
    EXPECT_EQ(IdsIn(ActionLogPath(), kActionLogRows), IdsIn(ReplayPath(), kReplayRows));
    const UINT32 highest = Json::parse(SplitLines(first).back())["id"];
    EXPECT_EQ(std::to_string(highest + 1) + "\n", RunConsole(L"id").output);
}

TEST_F(KeepIdsImport, GivesTheSameBytesOfEachKindThatAddsNothing) {
    std::string lines;
    for (const unsigned kind : {4u, 8u, 16u, 32u})
        lines += ExamplesOfKind(InForm(15, 200), kind);
    ASSERT_EQ(0, RunConsole(L"import -", lines).exitCode);
    const std::string first = Exported();
    EmptyTheStore();
    const ConsoleResult result = KeepIds(first);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(first, Exported());
}

// All kinds, resets, deleted items and moves, as the day of the examples brings them.
TEST_F(KeepIdsImport, OfADayGivesTheSameBytesButForKindTwo) {
    ASSERT_EQ(0,
              RunConsole(L"import -", Join(ExampleLines(), 0, InForm<size_t>(60, 5000))).exitCode);
    const std::vector<std::string> first = SplitLines(Exported());
    EmptyTheStore();
    const ConsoleResult result = KeepIds(Join(first, 0, first.size()));
    const std::vector<std::string> second = SplitLines(Exported());
    ASSERT_EQ(first.size(), second.size()) << result.errors;
    size_t others = 0;
    for (size_t index = 0; index < first.size(); ++index) {
        const Json line = Json::parse(first[index]);
        if (line["kind"] == 2 && line["name"] != "externalApplicationLog") {
            EXPECT_NE(first[index], second[index]);
            ++others;
        } else {
            EXPECT_EQ(first[index], second[index]);
        }
    }
    EXPECT_EQ(6, result.exitCode);
    EXPECT_NE(std::string::npos, result.output.find(" 0 bad, 0 already there, 0 there with another "
                                                    "content, " +
                                                    std::to_string(others) + " became others"))
        << result.output;
    Measured("records of a day that came back: " + std::to_string(first.size()) +
             ", of log kind 2 " + std::to_string(others));
}

TEST_F(KeepIdsImport, GoesOnWhereItWasCutOff) {
    const std::string whole = ExportOfExamples(30);
    const std::vector<std::string> lines = SplitLines(whole);
    const ConsoleResult begun = KeepIds(Join(lines, 0, 20));
    EXPECT_EQ(0, begun.exitCode) << begun.errors;
    // The last one did not come into the replay log any more.
    const std::string lastId = Json::parse(lines[19])["id"].dump();
    FileDatabase(ReplayPath())
        .Query("DELETE FROM TslIf_ActionReplay WHERE ActionLogId = " + lastId);
    const ConsoleResult rest = KeepIds(whole);
    EXPECT_EQ(0, rest.exitCode) << rest.errors;
    EXPECT_EQ(
        std::to_string(lines.size() - 20) +
            " recorded, 0 bad, 20 already there, 0 there with another content, 0 became others",
        Counts(rest));
    EXPECT_EQ(whole, Exported());
    EXPECT_EQ(IdsIn(ActionLogPath(), kActionLogRows), IdsIn(ReplayPath(), kReplayRows));
}

TEST_F(KeepIdsImport, GoesOnWhereItWasKilled) {
    const size_t size = InForm<size_t>(40, 200);
    const std::string whole = ExportOfExamples(size);
    Chance chance(20261121);
    const int rounds = InForm(2, 25);
    int interrupted = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        EmptyTheStore();
        {
            RunningConsole import(L"import --keep-ids -", whole);
            // Somewhere between its start and its end; each record is a change.
            const size_t wanted = chance.Below(size - size / 4);
            const auto changes = [] {
                return ReadDatabaseMark(ActionLogPath()).value_or(DatabaseMark()).changes;
            };
            while (import.IsRunning() && changes() < wanted)
                Sleep(1);
            if (import.IsRunning()) ++interrupted;
            import.Kill();
        }
        const int rows = CountRows(ActionLogPath(), kActionLogRows);
        if (rows > 0) {
            UINT32 counter = 0;
            EXPECT_EQ(S_OK, ReadCounter(CounterPath(), counter));
            EXPECT_LE(std::stoul(FileDatabase(ActionLogPath())
                                     .Value("SELECT max(ActionLogId) FROM TslIf_DbActionLog")),
                      counter)
                << "an id would be handed out again";
        }
        const ConsoleResult rest = KeepIds(whole);
        EXPECT_EQ(0, rest.exitCode) << rest.errors;
        EXPECT_NE(std::string::npos,
                  rest.output.find(" 0 bad, " + std::to_string(rows) + " already there"))
            << rest.output;
        EXPECT_EQ(whole, Exported());
        EXPECT_EQ(IdsIn(ActionLogPath(), kActionLogRows), IdsIn(ReplayPath(), kReplayRows));
        const UINT32 highest = Json::parse(SplitLines(whole).back())["id"];
        EXPECT_EQ(std::to_string(highest + 1) + "\n", RunConsole(L"id").output);
    }
    EXPECT_GT(interrupted, 0) << "no import was killed before its end";
    Measured("imports killed on their way that went on to the same bytes: " +
             std::to_string(interrupted) + " of " + std::to_string(rounds));
}

TEST_F(KeepIdsImport, RunAgainFindsEverythingThereAndChangesNothing) {
    const std::string whole =
        ExportLine(3, "playItem") + ExportLine(5, "showItem", 32) + ExportLine(7, "deleteItem");
    ASSERT_EQ(0, KeepIds(whole).exitCode);
    const Bytes database = ReadBytes(ActionLogPath());
    const Bytes replay = ReadBytes(ReplayPath());
    const Bytes counter = ReadBytes(CounterPath());
    const ConsoleResult again = KeepIds(whole);
    EXPECT_EQ(0, again.exitCode) << again.errors;
    EXPECT_EQ("0 recorded, 0 bad, 3 already there, 0 there with another content, 0 became others",
              Counts(again));
    EXPECT_EQ(database, ReadBytes(ActionLogPath()));
    EXPECT_EQ(replay, ReadBytes(ReplayPath()));
    EXPECT_EQ(counter, ReadBytes(CounterPath()));
}

TEST_F(KeepIdsImport, CounterIsRaisedAndNeverLowered) {
    MakeCounterFile(L"00000100");
    ASSERT_EQ(0, KeepIds(ExportLine(7, "playItem")).exitCode);
    EXPECT_EQ("101\n", RunConsole(L"id").output);
    ASSERT_EQ(0,
              KeepIds(ExportLine(4294967294, "playItem") + ExportLine(300, "playItem")).exitCode);
    EXPECT_EQ("4294967295\n", RunConsole(L"id").output);
}

// Without its counter a store is taken for an older one, whose records are given other log kinds.
TEST_F(KeepIdsImport, OfOneRecordIntoNothingKeepsKindAndId) {
    const std::string lines = ExportLine(2, "userLocation", 4) + ExportLine(3, "playItem", 32);
    EXPECT_EQ(0, KeepIds(lines).exitCode);
    EXPECT_EQ(lines, Exported());
    EXPECT_EQ("4\n", RunConsole(L"id").output);
}

// More than are looked at at once; most are there already.
TEST_F(KeepIdsImport, OfMoreThanAPortionGoesOnToo) {
    std::string lines;
    for (UINT32 id = 1; id <= 520; ++id)
        lines += ExportLine(2 * id, "playItem", id % 2 ? 1 : 32, 1 + id % 3);
    ASSERT_EQ(0, KeepIds(Join(SplitLines(lines), 0, 1)).exitCode);
    FileDatabase(ActionLogPath())
        .Query("WITH RECURSIVE n(id) AS (SELECT 2 UNION ALL SELECT id + 1 FROM n WHERE id < 508) "
               "INSERT INTO TslIf_DbActionLog SELECT 2 * id, 0, 5, NULL, 1 + id % 3, 'playItem', "
               "'ullValues={' || (2 * id) || '}', AppLoggedTime, PluginLoggedTime, NULL, NULL, 0, "
               "CASE id % 2 WHEN 1 THEN 1 ELSE 32 END FROM n, TslIf_DbActionLog");
    const ConsoleResult result = KeepIds(lines);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(
        "12 recorded, 0 bad, 508 already there, 0 there with another content, 0 became others",
        Counts(result));
    EXPECT_EQ(lines, Exported());
}

} // namespace tsl::test
