// tslhost import, run as a user runs it.
#include <windows.h>

#include "tests/console/ConsoleRun.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr char kGoodLine[] = "{\"name\":\"playItem\",\"app\":1,\"user\":1}\n";

} // namespace

class Import : public StoreTest {};

TEST_F(Import, RecordsEveryLineOfStandardInput) {
    const ConsoleResult result = RunConsole(L"import -", std::string(kGoodLine) + kGoodLine);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(0u, result.output.find("2 recorded, 0 bad, ")) << result.output;
    EXPECT_EQ("", result.errors) << "no progress unless it is a terminal";
    EXPECT_EQ(2, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(Import, ReadsAFileWithWindowsLineEndsMarkAndBlankLines) {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / L"\u30c6\u30b9\u30c8.jsonl";
    const std::string text = "\xEF\xBB\xBF{\"name\":\"a\",\"app\":1,\"user\":1}\r\n\r\n"
                             "{\"name\":\"b\",\"app\":1,\"user\":1}";
    WriteBytes(file, Bytes(text.begin(), text.end()));
    const ConsoleResult result = RunConsole(L"import \"" + file.wstring() + L"\"");
    std::filesystem::remove(file);
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(2, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(Import, NamesABadLineAndGoesOn) {
    const ConsoleResult result =
        RunConsole(L"import -", std::string(kGoodLine) + "\nnonsense\n" + kGoodLine +
                                    "{\"name\":\"a\",\"app\":1}\n");
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ(0u, result.errors.find("tslhost: -:3: parse error")) << result.errors;
    EXPECT_NE(std::string::npos, result.errors.find("tslhost: -:5: \"user\" is missing\n"))
        << result.errors;
    EXPECT_EQ(0u, result.output.find("2 recorded, 2 bad, ")) << result.output;
    EXPECT_EQ(2, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(Import, LineThatIsLongerThan16MbIsRefusedAndTheOthersAreRecorded) {
    constexpr size_t kLongest = 16 << 20;
    const auto lineOf = [](size_t size) {
        const std::string frame = R"({"name":"a","app":1,"user":1})";
        return std::string(size - frame.size(), ' ') + frame;
    };
    const ConsoleResult result =
        RunConsole(L"import -", kGoodLine + lineOf(kLongest + 1) + "\n" + kGoodLine +
                                    lineOf(kLongest) + "\n" + std::string(kLongest + 1, ' '));
    EXPECT_EQ(6, result.exitCode);
    EXPECT_EQ("tslhost: -:2: the line is longer than 16 MB\n"
              "tslhost: -:5: the line is longer than 16 MB\n",
              result.errors);
    EXPECT_EQ(0u, result.output.find("3 recorded, 2 bad, ")) << result.output;
    EXPECT_EQ(3, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(Import, ReadsLinesOfEveryLengthAboutThatOfItsParts) {
    constexpr size_t kPart = 1 << 14;
    std::string lines;
    size_t count = 0;
    for (size_t size = kPart - 3; size < kPart + 3; ++size, count += 2) {
        for (const size_t length : {size, size + kPart}) {
            const std::string line(kGoodLine, sizeof kGoodLine - 2);
            lines += line + std::string(length - line.size(), ' ') + "\n";
        }
    }
    lines += std::string("{\"name\":\"\0\"}\n", 13) + "nonsense";
    const ConsoleResult result = RunConsole(L"import -", lines);
    EXPECT_EQ(0u, result.output.find(std::to_string(count) + " recorded, 2 bad, "))
        << result.output << result.errors;
}

TEST_F(Import, SummaryIsJsonWhenAskedFor) {
    const ConsoleResult result = RunConsole(L"import --json -", kGoodLine);
    EXPECT_EQ(0u, result.output.find("{\"recorded\":1,\"bad\":0,\"actionsPerSecond\":"))
        << result.output;
}

TEST_F(Import, MissingFileIsNamedWithCodeFive) {
    const ConsoleResult result = RunConsole(L"import nosuch.jsonl");
    EXPECT_EQ(5, result.exitCode);
    EXPECT_EQ(0u, result.errors.find("tslhost: cannot open nosuch.jsonl: 0x80070002"))
        << result.errors;
}

TEST_F(Import, FailureOfTheStoreEndsItAndSaysHowFarItCame) {
    MakeStoreFolder();
    WriteBytes(ReplayPath(), Bytes(4096, 'x'));
    const ConsoleResult result = RunConsole(L"import -", std::string(kGoodLine) + kGoodLine);
    EXPECT_EQ(4, result.exitCode);
    EXPECT_EQ(0u, result.errors.find("tslhost: -:1: cannot record action 1 (playItem) in "))
        << result.errors;
    EXPECT_NE(std::string::npos, result.errors.find("; 0 actions were recorded before it\n"))
        << result.errors;
}

} // namespace tsl::test
