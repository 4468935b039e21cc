// tslhost doctor as a person and a program see it.
#include <nlohmann/json.hpp>
#include <sstream>

#include "base/Handle.h"
#include "console/Output.h"
#include "console/Table.h"
#include "tests/console/ConsoleRun.h"
#include "tests/upkeep/DoctorFixture.h"

namespace tsl::test {

namespace {

std::vector<std::string> LinesOf(const std::string& output) {
    std::vector<std::string> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// A console of the program's own in the place of its output.
class ConsoleOutput {
public:
    ConsoleOutput() {
        FreeConsole(); // one that the tests may have been started in
        AllocConsole();
        m_given = GetStdHandle(STD_OUTPUT_HANDLE);
        m_screen = CHandle(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                       0, nullptr));
        SetStdHandle(STD_OUTPUT_HANDLE, m_screen.Get());
    }
    ConsoleOutput(const ConsoleOutput&) = delete;
    ConsoleOutput& operator=(const ConsoleOutput&) = delete;
    ~ConsoleOutput() {
        // The console takes the handles along that it has given.
        SetStdHandle(STD_OUTPUT_HANDLE, m_given);
        m_screen = CHandle();
        FreeConsole();
        for (const auto& [kind, handle] : m_before)
            SetStdHandle(kind, handle);
    }
    bool IsThere() const { return static_cast<bool>(m_screen); }

private:
    std::map<DWORD, HANDLE> m_before = {{STD_INPUT_HANDLE, GetStdHandle(STD_INPUT_HANDLE)},
                                        {STD_OUTPUT_HANDLE, GetStdHandle(STD_OUTPUT_HANDLE)},
                                        {STD_ERROR_HANDLE, GetStdHandle(STD_ERROR_HANDLE)}};
    HANDLE m_given = nullptr;
    CHandle m_screen;
};

using DoctorCommand = DoctorTest;

TEST_F(DoctorCommand, PrintsALineForEachFindingWithin80Columns) {
    const ConsoleResult result = RunConsole(L"doctor");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_NE(std::string::npos,
              result.output.find("\nok       actionLog.txt       next id is 601\n"))
        << result.output;
    EXPECT_NE(std::string::npos,
              result.output.find("\nok       LogId lock          free; waited "));
    for (const std::string& line : LinesOf(result.output)) {
        // A path has no place to be broken at.
        const bool isPath = line.find('\\') != std::string::npos;
        EXPECT_TRUE(DisplayWidth(line) <= 80 || isPath) << line;
    }
}

TEST_F(DoctorCommand, EndsWith4ForDamageAndSaysWhatMendsIt) {
    WriteBytes(Store().counter, Utf16FileBytes(L"00000007\t\r\n"));
    const FolderState before = StateOf(StoreFolder().parent_path());
    const ConsoleResult result = RunConsole(L"doctor");
    EXPECT_EQ(4, result.exitCode) << result.errors;
    EXPECT_NE(std::string::npos,
              result.output.find("\nerror    actionLog.txt       next id is 8,"));
    EXPECT_NE(std::string::npos,
              result.output.find("\n" + std::string(29, ' ') + "mend: tslhost recover\n"))
        << result.output;
    EXPECT_TRUE(before == StateOf(StoreFolder().parent_path()));
}

TEST_F(DoctorCommand, PipeGetsNoColours) {
    EXPECT_EQ(std::string::npos, RunConsole(L"doctor").output.find('\x1b'));
}

TEST_F(DoctorCommand, TerminalGetsColoursUnlessTheyAreForbidden) {
    const ConsoleOutput terminal;
    ASSERT_TRUE(terminal.IsThere());
    EXPECT_EQ("\x1b[32mok\x1b[0m", Coloured("ok", Colour::Green));
    SetEnvironmentVariableW(L"NO_COLOR", L"");
    EXPECT_EQ("\x1b[31mok\x1b[0m", Coloured("ok", Colour::Red));
    SetEnvironmentVariableW(L"NO_COLOR", L"1");
    EXPECT_EQ("ok", Coloured("ok", Colour::Yellow));
    SetEnvironmentVariableW(L"NO_COLOR", nullptr);
}

TEST_F(DoctorCommand, JsonHasOneObjectALine) {
    WriteBytes(Store().userIds, {});
    const ConsoleResult result = RunConsole(L"doctor --json");
    EXPECT_EQ(4, result.exitCode);
    const std::vector<std::string> lines = LinesOf(result.output);
    ASSERT_GT(lines.size(), 10u);
    for (const std::string& line : lines)
        EXPECT_EQ(5u, nlohmann::json::parse(line).size()) << line;
    const auto last = nlohmann::json::parse(lines.back());
    EXPECT_EQ("error", last["level"]);
    EXPECT_EQ("UserIdList.dat", last["subject"]);
    EXPECT_EQ(true, last["damage"]);
    EXPECT_NE("", last["remedy"]);
}

TEST_F(DoctorCommand, SurvivesWhatIsNoUtf8) {
    Bytes file = ReadBytes(Store().actionLog);
    const std::string name = "TslIf_ContentDeleteProperty (";
    const auto at = std::search(file.begin(), file.end(), name.begin(), name.end());
    ASSERT_NE(file.end(), at);
    *(at + 7) = 0xFF;
    WriteBytes(Store().actionLog, file);
    EXPECT_EQ(4, RunConsole(L"doctor").exitCode);
    EXPECT_EQ(4, RunConsole(L"doctor --json").exitCode);
}

TEST_F(DoctorCommand, HelpHasAnExample) {
    const ConsoleResult result = RunConsole(L"doctor --help");
    EXPECT_EQ(0, result.exitCode);
    EXPECT_NE(std::string::npos, result.output.find("Example: tslhost doctor --json"));
}

} // namespace

} // namespace tsl::test
