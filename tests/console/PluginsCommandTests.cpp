// tslhost plugins, and a tslhost that lies alone and finds the component as the engine does.
#include <nlohmann/json.hpp>

#include "tests/console/ConsoleRun.h"
#include "tests/registration/RegistrationFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr wchar_t kOtherKey[] =
    L"Software\\Corvane Corporation\\Tessaly\\DB Plugins\\{00000000-0000-0000-0000-000000000001}";

} // namespace

class PluginsCommand : public RegistrationTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(RegistrationTest::SetUp());
        fs::create_directories(Alone().parent_path());
        fs::copy_file(ProgramFolder() / L"tslhost.exe", Alone(),
                      fs::copy_options::overwrite_existing);
    }
    void TearDown() override {
        std::error_code error;
        fs::remove_all(Alone().parent_path(), error);
        RegistrationTest::TearDown();
    }

    // A copy of tslhost without the component beside it.
    static fs::path Alone() {
        return fs::temp_directory_path() / L"tslhost alone" / L"tslhost.exe";
    }
    // A plug-in whose class nobody registered.
    static void AddOther(DWORD order, DWORD enable) {
        MakeKey(kOtherKey);
        WriteStored(kOtherKey, L"Module ID", TextValue(L"Another"));
        WriteStored(kOtherKey, L"Enable", NumberValue(enable));
        WriteStored(kOtherKey, L"Order", NumberValue(order));
    }
};

TEST_F(PluginsCommand, ListsWhatIsRegistered) {
    ASSERT_EQ(S_OK, Register());
    const ConsoleResult result = RunConsole(L"plugins");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(0u, result.output.find("class:    {485C7D34-8D59-482E-84EC-EDCBE646B69D}\n"
                                     "moduleId: TslIfDbActionLog\n"
                                     "enabled:  yes\n"
                                     "order:    32768\n"
                                     "type:     0x0001001F\n"
                                     "path:     "))
        << result.output;
    EXPECT_TRUE(result.output.ends_with("TslIfDbActionLog.dll\nloads:    yes\n")) << result.output;
}

TEST_F(PluginsCommand, ListsInTheEnginesOrderAndSaysWhatDoesNotLoad) {
    ASSERT_EQ(S_OK, Register());
    AddOther(/*order=*/7, /*enable=*/0);
    std::istringstream lines(RunConsole(L"plugins --json").output);
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    const auto first = nlohmann::json::parse(line);
    EXPECT_EQ("Another", first["moduleId"]);
    EXPECT_EQ(false, first["enabled"]);
    EXPECT_EQ("", first["path"]);
    EXPECT_EQ(0u, first["loads"].get<std::string>().find("0x80040154"));
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_EQ("TslIfDbActionLog", nlohmann::json::parse(line)["moduleId"]);
}

TEST_F(PluginsCommand, SaysThatNothingIsRegistered) {
    const ConsoleResult result = RunConsole(L"plugins");
    EXPECT_EQ(1, result.exitCode);
    EXPECT_EQ("", result.output);
    EXPECT_EQ("tslhost: no database plug-in is registered\n", result.errors);
}

TEST_F(PluginsCommand, ProgramAloneFindsTheRegisteredComponent) {
    ASSERT_EQ(S_OK, Register());
    const ConsoleResult result = RunConsoleAt(Alone(), L"record --name a --app 1 --user 1");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ("1\n", result.output);
}

TEST_F(PluginsCommand, ProgramAlonePassesOverWhatIsDisabledOrCannotBeCreated) {
    ASSERT_EQ(S_OK, Register());
    for (const DWORD enable : {0u, 1u}) {
        AddOther(/*order=*/7, enable);
        EXPECT_EQ(0, RunConsoleAt(Alone(), L"id").exitCode);
    }
    WriteStored(kEntryKey, L"Enable", NumberValue(0));
    const ConsoleResult result = RunConsoleAt(Alone(), L"id");
    EXPECT_EQ(5, result.exitCode);
    EXPECT_EQ(0u, result.errors.find(
                      "tslhost: cannot load plug-in "
                      "{00000000-0000-0000-0000-000000000001}: 0x80040154 (the class is not "
                      "registered)"))
        << result.errors;
}

TEST_F(PluginsCommand, ProgramAloneSaysThatThereIsNoComponent) {
    const ConsoleResult result = RunConsoleAt(Alone(), L"id");
    EXPECT_EQ(5, result.exitCode);
    EXPECT_EQ("tslhost: there is no TslIfDbActionLog.dll beside tslhost, and no enabled database "
              "plug-in is registered\n",
              result.errors);
}

TEST_F(PluginsCommand, ComponentThatIsNamedIsNeverReplacedByTheRegisteredOne) {
    ASSERT_EQ(S_OK, Register());
    const ConsoleResult result = RunConsoleAt(Alone(), L"--plugin nothing.dll id");
    EXPECT_EQ(5, result.exitCode);
    EXPECT_NE(std::string::npos, result.errors.find("nothing.dll")) << result.errors;
}

} // namespace tsl::test
