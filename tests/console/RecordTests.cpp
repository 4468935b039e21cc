// tslhost id and tslhost record, run as a user runs them.
#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/MutexHolder.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class Console : public StoreTest {};

TEST_F(Console, IdHandsOutOneAfterTheOther) {
    EXPECT_EQ("1\n", RunConsole(L"id").output);
    const ConsoleResult second = RunConsole(L"id --json");
    EXPECT_EQ("{\"id\":2}\n", second.output);
    EXPECT_EQ(0, second.exitCode);
}

TEST_F(Console, RecordStoresEveryValue) {
    const ConsoleResult result = RunConsole(
        L"record --name playItem --app -3 --user 9 --time 2026-11-21T18:00:00Z --kind 32 "
        L"--string \"a,b\" --string \u65e5\u672c --int -5 --int 7 --ull 18446744073709551615 "
        L"--us 65535 --bool true --bool false --float 1.5");
    ASSERT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ("1\n", result.output);
    EXPECT_EQ("", result.errors);
    const std::vector<Row> expected = {
        {"1", "-3", "9", "playItem",
         "ullValues={18446744073709551615}&usValues={65535}&intValues={-5,7}&boolValues={1,0}"
         "&stringValues={a%2cb,\u65e5\u672c}&floatValues={1.500000}",
         "46347.75", "32"}};
    EXPECT_EQ(expected, FileDatabase(ActionLogPath())
                            .Query("SELECT ActionLogId, AppId, UserId, ActionName, "
                                   "ActionParameters, AppLoggedTime, LogKind "
                                   "FROM TslIf_DbActionLog"));
}

// The first id handed out would otherwise be 1 again, and its record would replace the old one.
TEST_F(Console, ConvertsAnOlderStoreBeforeAnIdIsHandedOut) {
    for (const wchar_t* const command : {L"id", L"record --name a --app 1 --user 1"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(command)));
        std::filesystem::remove_all(StoreFolder());
        MakeStoreFolder();
        {
            const FileDatabase older(ActionLogPath(), /*create=*/true);
            older.Query("CREATE TABLE TslIf_DbActionLog (ActionLogId INTEGER, UsedLog INTEGER, "
                        "AppId INTEGER, AppName TEXT, UserId INTEGER, ActionName TEXT, "
                        "ActionParameters TEXT, AppLoggedTime REAL, PluginLoggedTime REAL, "
                        "PreActionName TEXT, PreActionParameters TEXT, PreLoggedTime INTEGER, "
                        "LogKind INTEGER)");
            older.Query("INSERT INTO TslIf_DbActionLog (ActionLogId) VALUES (1)");
            older.Query("CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER, "
                        "ActionLogId INTEGER)");
            older.Query("INSERT INTO TslIf_ActionRecordId VALUES (1, 41)");
        }
        EXPECT_EQ("43\n", RunConsole(command).output);
        EXPECT_EQ("1", FileDatabase(ActionLogPath())
                           .Value("SELECT LogKind FROM TslIf_DbActionLog WHERE ActionLogId = 1"));
    }
}

TEST_F(Console, CommonOptionsStandBeforeOrAfterTheCommand) {
    EXPECT_EQ("{\"id\":1}\n", RunConsole(L"--json id").output);
    EXPECT_EQ("{\"id\":2}\n", RunConsole(L"record --name a --app 1 --user 1 --json").output);
}

TEST_F(Console, WrongUsageIsOneLineAndCodeTwo) {
    for (const wchar_t* const arguments :
         {L"", L"frobnicate", L"record", L"record --name a --app 1", L"import",
          L"record --name a --app x --user 1", L"record --name a --app 1 --user 1 --us 65536",
          L"record --name a --app 1 --user 1 --kind 0",
          L"record --name a --app 1 --user 1 --time yesterday"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(arguments)));
        const ConsoleResult result = RunConsole(arguments);
        EXPECT_EQ(2, result.exitCode);
        EXPECT_EQ("", result.output);
        EXPECT_EQ(0u, result.errors.find("tslhost: ")) << result.errors;
        EXPECT_EQ(result.errors.size() - 1, result.errors.find('\n')) << result.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(CounterPath())) << "wrong usage must not take an id";
}

TEST_F(Console, NumberThatDoesNotFitIsRefusedAndNotBent) {
    for (const wchar_t* const value :
         {L"--ull 18446744073709551616", L"--ull -5", L"--us 65536", L"--int 2147483648",
          L"--int 010", L"--int 7x", L"--float 1e39", L"--float x", L"--kind 4294967296"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(value)));
        const ConsoleResult result =
            RunConsole(L"record --name a --app 1 --user 1 " + std::wstring(value));
        EXPECT_EQ(2, result.exitCode) << result.output;
    }
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
}

TEST_F(Console, UnknownCommandIsNamed) {
    EXPECT_NE(std::string::npos, RunConsole(L"bogus").errors.find("bogus"));
}

TEST_F(Console, RecordPassesOverIdZeroWhenTheCounterWraps) {
    MakeStoreFolder();
    WriteBytes(CounterPath(), Utf16FileBytes(L"4294967295\t\r\n"));
    EXPECT_EQ("1\n", RunConsole(L"record --name a --app 1 --user 1").output);
    EXPECT_EQ("1",
              FileDatabase(ActionLogPath()).Value("SELECT ActionLogId FROM TslIf_DbActionLog"));
}

TEST_F(Console, HelpIsNoFailure) {
    const ConsoleResult result = RunConsole(L"record --help");
    EXPECT_EQ(0, result.exitCode);
    EXPECT_NE(std::string::npos, result.output.find("--string"));
}

TEST_F(Console, MissingPluginIsNamedWithCodeFive) {
    const ConsoleResult result = RunConsole(L"id --plugin C:\\nowhere\\plugin.dll");
    EXPECT_EQ(5, result.exitCode);
    EXPECT_EQ(0u, result.errors.find("tslhost: cannot load C:\\nowhere\\plugin.dll: 0x8007"))
        << result.errors;
}

TEST_F(Console, NamedPluginIsLoaded) {
    const std::wstring plugin = (ProgramFolder() / L"TslIfDbActionLog.dll").wstring();
    EXPECT_EQ("1\n", RunConsole(L"id --plugin \"" + plugin + L"\"").output);
}

TEST_F(Console, LockedCounterFileIsCodeThree) {
    MakeStoreFolder();
    WriteBytes(CounterPath(), Utf16FileBytes(L"00000041\t\r\n"));
    const CHandle lock(CreateFileW(CounterPath().c_str(), GENERIC_READ, /*shareMode=*/0, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(lock);
    const ConsoleResult result = RunConsole(L"id");
    EXPECT_EQ(3, result.exitCode);
    EXPECT_NE(std::string::npos, result.errors.find("actionLog.txt: 0x80070020")) << result.errors;
}

TEST_F(Console, DamagedReplayLogIsCodeFour) {
    MakeStoreFolder();
    WriteBytes(ReplayPath(), Bytes(4096, 'x'));
    const ConsoleResult result = RunConsole(L"record --name a --app 1 --user 1");
    EXPECT_EQ(4, result.exitCode);
    EXPECT_NE(std::string::npos, result.errors.find("uareplay.db: 0x80041619")) << result.errors;
}

} // namespace tsl::test
