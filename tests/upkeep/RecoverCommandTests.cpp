// tslhost recover, run as a user runs it, and the component on what it leaves.
#include <nlohmann/json.hpp>

#include "component/host/CommandCodes.h"
#include "tests/console/ConsoleRun.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"
#include "tests/upkeep/DamagedStore.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;

class RecoverCommand : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        MakeStoreFolder();
        const StorePaths store = MachineStore();
        fs::create_directories(fs::path(store.userIds).parent_path());
        MakeSampleStore(store);
    }

    // Every row is in leaves that nothing leads to any more.
    static void BreakSchema() {
        Bytes bytes = ReadBytes(ActionLogPath());
        std::fill(bytes.begin() + 100, bytes.begin() + 2048, static_cast<unsigned char>(0));
        WriteBytes(ActionLogPath(), bytes);
    }
};

TEST_F(RecoverCommand, LeavesAWholeStoreAlone) {
    const ConsoleResult result = RunConsole(L"recover");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_THAT(result.output, testing::HasSubstr("ualog.db: is whole, left alone\n"));
    EXPECT_THAT(result.output, testing::HasSubstr("uareplay.db: is whole, left alone\n"));
    EXPECT_THAT(result.output, testing::HasSubstr("actionLog.txt: is fine, left alone\n"));
    EXPECT_EQ("", result.errors);
}

TEST_F(RecoverCommand, TellsWhatItSavedAndWhatItCouldNotRead) {
    BreakSchema();
    const ConsoleResult result = RunConsole(L"recover");
    EXPECT_EQ(6, result.exitCode) << result.errors;
    EXPECT_THAT(result.output, testing::HasSubstr("  TslIf_DbActionLog: 600 rows saved\n"));
    EXPECT_THAT(result.output,
                testing::HasSubstr("  TslIf_ContentDeleteProperty: 40 rows saved\n"));
    EXPECT_THAT(result.output, testing::HasSubstr("not read: 1 page\n"));
    EXPECT_THAT(result.output, testing::ContainsRegex("kept as .*ualog.damaged-.*.db\n"));
    EXPECT_EQ(600, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(RecoverCommand, EndsWell) {
    Bytes bytes = ReadBytes(ActionLogPath());
    bytes[0] = 'x';
    WriteBytes(ActionLogPath(), bytes);
    EXPECT_EQ(0, RunConsole(L"recover").exitCode) << "all rows were saved";
}

TEST_F(RecoverCommand, PrintsJson) {
    BreakSchema();
    const ConsoleResult result = RunConsole(L"recover --json");
    const auto json = nlohmann::json::parse(result.output);
    EXPECT_EQ("recovered", json["databases"][0]["outcome"]);
    EXPECT_EQ(600, json["databases"][0]["tables"][0]["rowsSaved"]);
    EXPECT_EQ(1, json["databases"][0]["pagesUnreadable"]);
    EXPECT_TRUE(fs::exists(json["databases"][0]["keptAs"].get<std::string>()));
    EXPECT_EQ("whole", json["databases"][1]["outcome"]);
    EXPECT_EQ("fine", json["counter"]["state"]);
}

TEST_F(RecoverCommand, OnlySaysWhatItWouldDo) {
    BreakSchema();
    const Bytes before = ReadBytes(ActionLogPath());
    const ConsoleResult result = RunConsole(L"recover --dry-run");
    EXPECT_EQ(6, result.exitCode);
    EXPECT_THAT(result.output, testing::HasSubstr("  TslIf_DbActionLog: 600 rows saved\n"));
    EXPECT_THAT(result.output, testing::HasSubstr("  nothing was changed\n"));
    EXPECT_EQ(before, ReadBytes(ActionLogPath()));
}

TEST_F(RecoverCommand, DoesNotWorkWhileAHostHoldsALock) {
    BreakSchema();
    const Bytes before = ReadBytes(ActionLogPath());
    const MutexHolder holder(kSqliteAccessLock);
    const ConsoleResult result = RunConsole(L"recover");
    EXPECT_EQ(3, result.exitCode);
    EXPECT_THAT(result.errors, testing::HasSubstr("another process has held it"));
    EXPECT_EQ(before, ReadBytes(ActionLogPath()));
}

TEST_F(RecoverCommand, HelpHasAnExample) {
    EXPECT_THAT(RunConsole(L"recover --help").output,
                testing::HasSubstr("Example: tslhost recover --dry-run"));
}

TEST_F(RecoverCommand, ComponentRecordsAndAnswersAfterwards) {
    BreakSchema();
    fs::remove(CounterPath());
    ASSERT_EQ(6, RunConsole(L"recover").exitCode);
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    const UINT32 id = NextId();
    EXPECT_EQ(601u, id);
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(id, L"afterwards")));
    EXPECT_EQ(601, CountRows(ActionLogPath(), kActionLogRows));
    const ConsoleResult shown = RunConsole(L"show 300 --json");
    EXPECT_EQ(0, shown.exitCode) << shown.errors;
    EXPECT_THAT(shown.output, testing::HasSubstr("\"id\":300"));
    EXPECT_THAT(RunConsole(L"show 601").output, testing::HasSubstr("afterwards"));
}

} // namespace

} // namespace tsl::test
