// What tslhost import --keep-ids does not record, or not as it was, and how that is told.
#include "tests/support/FileDatabase.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/KeepIds.h"

namespace tsl::test {

namespace {

using Json = nlohmann::ordered_json;

} // namespace

class KeepIdsRefusals : public StoreTest {};

TEST_F(KeepIdsRefusals, RecordWithAnotherContentIsToldAndLeftAlone) {
    const std::string good = ExportLine(3, "playItem");
    ASSERT_EQ(0, KeepIds(good).exitCode);
    const std::string before = Exported();
    struct Case {
        const char* member;
        Json value;
    };
    for (const Case& c : {Case{"name", "showItem"}, Case{"user", 2}, Case{"app", 6},
                          Case{"time", "2026-11-20T08:00:00.001Z"}, Case{"kind", 32},
                          Case{"parameters", "ullValues={4}"}}) {
        SCOPED_TRACE(c.member);
        Json other = Json::parse(good);
        other[c.member] = c.value;
        const ConsoleResult result =
            KeepIds("\n" + other.dump() + "\n" + ExportLine(9, "rateItem"));
        EXPECT_EQ(6, result.exitCode);
        EXPECT_EQ("tslhost: -:2: record 3 is there with another content (" + std::string(c.member) +
                      ") and was left alone\n",
                  result.errors);
        EXPECT_EQ(0u, Exported().find(before));
    }
}

TEST_F(KeepIdsRefusals, LineWithoutItsIdOrWithOneTwiceIsBad) {
    const ConsoleResult result =
        KeepIds(R"({"name":"a","app":1,"user":1})"
                "\n"
                R"({"id":0,"name":"a","app":1,"user":1})"
                "\n" +
                ExportLine(4, "first") + ExportLine(4, "second") + "nonsense\n" +
                R"({"id":5,"name":"old","app":1,"user":1,"time":"-1.000000"})" + "\n");
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ("1 recorded, 5 bad, 0 already there, 0 there with another content, 0 became others",
              Counts(result));
    for (const char* const message :
         {"tslhost: -:1: \"id\" is missing\n",
          "tslhost: -:2: \"id\" must be an integer from 1 to 4294967295\n",
          "tslhost: -:4: there is another line with the id 4 before it\n",
          "tslhost: -:5: parse error", "tslhost: -:6: \"-1.000000\" is no ISO 8601 time"}) {
        EXPECT_NE(std::string::npos, result.errors.find(message)) << result.errors;
    }
    EXPECT_EQ("first",
              FileDatabase(ActionLogPath()).Value("SELECT ActionName FROM TslIf_DbActionLog"));
}

TEST_F(KeepIdsRefusals, ActionThatLeavesNoRecordIsRefusedAndNothingIsWritten) {
    const ConsoleResult result =
        KeepIds(ExportLine(1, "viaMoveContent") + ExportLine(2, "PLAYitem", 8) +
                ExportLine(3, "showExternalLink") + ExportLine(4, "tweet", 16) +
                ExportLine(5, "ViaMoveContent") + ExportLine(6, "tweet"));
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ("tslhost: -:1: a content move is carried out in the host's content and leaves no "
              "record\n"
              "tslhost: -:2: log kind 8 keeps PLAYitem out of the action log\n"
              "tslhost: -:3: log kind 1 keeps showExternalLink out of the action log\n"
              "tslhost: -:4: log kind 16 keeps tweet out of the action log\n",
              result.errors);
    EXPECT_EQ("5,6", IdsIn(ActionLogPath(), kActionLogRows));
    EXPECT_EQ("5,6", IdsIn(ReplayPath(), kReplayRows));
}

TEST_F(KeepIdsRefusals, ResetIsRecordedOnlyWhereItDeletesNothing) {
    const ConsoleResult result =
        KeepIds(ExportLine(1, "veSettingReset") + ExportLine(2, "playItem") +
                ExportLine(3, "playItem", 1, 2) + ExportLine(4, "VESettingReset") +
                ExportLine(5, "veSettingReset", 32) + ExportLine(6, "veSettingReset", 1, 0));
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ("tslhost: -:4: a setting reset would delete 2 records of user 1 under log kind 1\n",
              result.errors);
    EXPECT_EQ("1,2,3,5,6", IdsIn(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(0, KeepIds(ExportLine(1, "veSettingReset")).exitCode) << "already there";
    EXPECT_EQ("1,2,3,5,6", IdsIn(ActionLogPath(), kActionLogRows));
}

TEST_F(KeepIdsRefusals, KeptDeletedItemsAreNotReplacedByOthers) {
    ASSERT_EQ(0, RunConsole(L"import -", R"({"name":"deleteItem","app":5,"user":1,"ullValues":[7],)"
                                         R"("intValues":[1,2,3]})")
                     .exitCode);
    const std::string exported = Exported();
    // Only what is kept is left.
    FileDatabase(ActionLogPath()).Query("DELETE FROM TslIf_DbActionLog");
    const ConsoleResult result = KeepIds(exported);
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ("tslhost: -:1: a record of deleted items is kept under the id 1 and would be "
              "replaced\n",
              result.errors);
    EXPECT_EQ("ullValues={7}&intValues={1,2,3}",
              FileDatabase(ActionLogPath())
                  .Value("SELECT ActionParameters FROM TslIf_ContentDeleteProperty"));
    EmptyTheStore();
    EXPECT_EQ(0, KeepIds(exported).exitCode);
    EXPECT_EQ(exported, Exported());
    EXPECT_EQ("1\n", RunConsole(L"all").output) << "and can be taken again";
}

TEST_F(KeepIdsRefusals, RecordsThatBecameOthersAreCountedAndTheFirstTold) {
    std::string lines;
    for (UINT32 id = 1; id <= 7; ++id)
        lines += ExportLine(id, "playItem", 2);
    const ConsoleResult result = KeepIds(lines + ExportLine(8, "playItem"));
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ("8 recorded, 0 bad, 0 already there, 0 there with another content, 7 became others",
              Counts(result));
    EXPECT_EQ(5u, SplitLines(result.errors).size());
    EXPECT_EQ(0u,
              result.errors.find("tslhost: -:1: record 1 became another: log kind 2 adds values "
                                 "while recording\n"))
        << result.errors;
    // The lists do not give the parameters.
    Json unlike = Json::parse(ExportLine(20, "playItem"));
    unlike["parameters"] = "ullValues={ 20 }";
    EXPECT_EQ("tslhost: -:1: record 20 became another (parameters)\n",
              KeepIds(unlike.dump() + "\n").errors);
}

TEST_F(KeepIdsRefusals, CounterThatCannotBeRaisedEndsItBeforeAnythingIsWritten) {
    MakeCounterFile();
    const CHandle open(CreateFileW(CounterPath().c_str(), GENERIC_READ, /*shareMode=*/0, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const ConsoleResult result = KeepIds(ExportLine(7, "playItem"));
    EXPECT_EQ(3, result.exitCode);
    EXPECT_NE(std::string::npos, result.errors.find("cannot raise the counter in "))
        << result.errors;
    EXPECT_EQ(0, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(KeepIdsRefusals, LockThatIsHeldEndsItBeforeAnythingIsWritten) {
    MakeCounterFile();
    const MutexHolder holder(kSqliteAccessLock);
    const ConsoleResult result = KeepIds(ExportLine(7, "playItem"));
    EXPECT_EQ(3, result.exitCode);
    EXPECT_NE(std::string::npos, result.errors.find("cannot lock ")) << result.errors;
    EXPECT_EQ(0, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(KeepIdsRefusals, FailureOfTheStoreSaysHowFarItCame) {
    MakeCounterFile();
    WriteBytes(ReplayPath(), Bytes(4096, 'x'));
    const ConsoleResult result = KeepIds(ExportLine(1, "playItem"));
    EXPECT_EQ(4, result.exitCode);
    EXPECT_EQ(0u, result.errors.find("tslhost: -:1: cannot record action 1 (playItem) in "))
        << result.errors;
    EXPECT_NE(std::string::npos, result.errors.find("; 0 actions were recorded before it\n"))
        << result.errors;
}

TEST_F(KeepIdsRefusals, SummaryIsJsonWhenAskedFor) {
    const ConsoleResult result =
        RunConsole(L"import --json --keep-ids -", ExportLine(1, "playItem"));
    EXPECT_EQ(0u, result.output.find("{\"recorded\":1,\"bad\":0,\"alreadyThere\":0,"
                                     "\"otherContent\":0,\"becameOthers\":0,"
                                     "\"actionsPerSecond\":"))
        << result.output;
}

TEST_F(KeepIdsRefusals, WithoutItIdsAreNewAndThoseOfTheLinesNotLookedAt) {
    const ConsoleResult result =
        RunConsole(L"import -", ExportLine(70, "playItem") + ExportLine(70, "b"));
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(0u, result.output.find("2 recorded, 0 bad, ")) << result.output;
    EXPECT_EQ("1,2", IdsIn(ActionLogPath(), kActionLogRows));
}

} // namespace tsl::test
