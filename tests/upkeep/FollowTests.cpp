// tslhost follow, run as a user runs it.
#include <nlohmann/json.hpp>

#include "tests/console/ConsoleRun.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

void Record(size_t count = 1) {
    for (; count > 0; --count)
        ASSERT_EQ(0, RunConsole(L"record --name playItem --app 5 --user 1").exitCode);
}

// Waits for what a follower writes; false when it does not come.
template <class Condition>
bool Comes(Condition condition) {
    for (const ULONGLONG end = GetTickCount64() + 20'000; GetTickCount64() < end; Sleep(20)) {
        if (condition()) return true;
    }
    return false;
}

} // namespace

class Follow : public StoreTest {};

TEST_F(Follow, PrintsWhatOtherProcessesRecordInFixedColumns) {
    RunningConsole follow(L"follow --after 0 --interval 50");
    EXPECT_TRUE(Comes([&] { return follow.Output().find("parameters\n") != std::string::npos; }));
    ASSERT_EQ(0, RunConsole(L"record --name playItem --app 5 --user 1 --ull 4711 --time "
                            L"2026-11-20T08:00:00Z")
                     .exitCode);
    ASSERT_EQ(0, RunConsole(L"record --name aNameThatIsLongerThanItsColumn --app -1234567 --user "
                            L"4294967295 --time 2026-11-20T08:00:00.5Z")
                     .exitCode);
    EXPECT_TRUE(Comes([&] { return follow.Output().find("4294967295") != std::string::npos; }));
    EXPECT_EQ(
        "     id  time                      user   app  action            parameters\n"
        "      1  2026-11-20T08:00:00Z         1     5  playItem          ullValues={471\u2026\n"
        "      2  2026-11-20T08:00:00.500Z  4294967295  -1234567  "
        "aNameThatIsLongerThanIt\u2026\n",
        follow.Output());
    EXPECT_TRUE(follow.IsRunning());
}

TEST_F(Follow, HoldsNoLockWhileItWaits) {
    Record();
    RunningConsole follow(L"follow --after 0 --interval 200 --json");
    ASSERT_TRUE(Comes([&] { return !follow.Output().empty(); }));
    size_t held = 0;
    for (int looks = 0; looks < 50; ++looks) {
        if (!MutexIsFree(kSqliteAccessLock) || !MutexIsFree(kLogIdLock)) ++held;
        Sleep(5);
    }
    EXPECT_EQ(0u, held);
    const ULONGLONG start = GetTickCount64();
    Record();
    EXPECT_LT(GetTickCount64() - start, 3000u) << "a host waited for a lock";
    EXPECT_TRUE(Comes([&] { return follow.Output().find("\"id\":2") != std::string::npos; }));
}

TEST_F(Follow, LinesOfJsonAreThoseOfAnExport) {
    Record(3);
    const std::string exported = RunConsole(L"export").output;
    RunningConsole follow(L"follow --after 0 --json");
    EXPECT_TRUE(Comes([&] { return follow.Output() == exported; })) << follow.Output();
}

TEST_F(Follow, IsNarrowedToAUserAndAKind) {
    const std::string lines = R"({"name":"a","app":1,"user":1})"
                              "\n"
                              R"({"name":"b","app":1,"user":2,"kind":32})"
                              "\n"
                              R"({"name":"c","app":1,"user":2})"
                              "\n"
                              R"({"name":"d","app":1,"user":1,"kind":32})"
                              "\n";
    ASSERT_EQ(0, RunConsole(L"import -", lines).exitCode);
    const auto names = [](const std::wstring& arguments) {
        RunningConsole follow(L"follow --after 0 --json --interval 50 " + arguments);
        std::string listed;
        Comes([&] { return !follow.Output().empty(); });
        std::istringstream stream(follow.Output());
        for (std::string line; std::getline(stream, line);)
            listed += nlohmann::json::parse(line)["name"].get<std::string>();
        return listed;
    };
    EXPECT_EQ("bc", names(L"--user 2"));
    EXPECT_EQ("bd", names(L"--kind 32"));
    EXPECT_EQ("d", names(L"--kind 32 --user 1"));
}

TEST_F(Follow, WrongUsageIsCodeTwo) {
    for (const wchar_t* const arguments :
         {L"follow --interval 9", L"follow --after -1", L"follow --kind 0", L"follow --user x"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(arguments)));
        EXPECT_EQ(2, RunConsole(arguments).exitCode);
    }
}

TEST_F(Follow, DamagedStoreIsCodeFour) {
    MakeStoreFolder();
    WriteBytes(ActionLogPath(), Bytes(4096, 'x'));
    const ConsoleResult result = RunConsole(L"follow");
    EXPECT_EQ(4, result.exitCode);
    EXPECT_NE(std::string::npos, result.errors.find("ualog.db: file is not a database (26)"))
        << result.errors;
}

// In a console of its own, to which the test attaches itself for a moment.
TEST_F(Follow, EndsWellWhenItIsInterrupted) {
    Record();
    RunningConsole follow(L"follow --after 0 --json", /*input=*/{}, CREATE_NO_WINDOW);
    ASSERT_TRUE(Comes([&] { return !follow.Output().empty(); }));
    FreeConsole();
    ASSERT_TRUE(AttachConsole(follow.ProcessId())) << GetLastError();
    SetConsoleCtrlHandler(nullptr, TRUE); // the test itself goes on
    EXPECT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << GetLastError();
    EXPECT_EQ(0, follow.WaitForEnd().exitCode);
    FreeConsole();
    SetConsoleCtrlHandler(nullptr, FALSE);
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
}

} // namespace tsl::test
