// Texts that others have written into files and that would steer a terminal: none of tslhost's
// output does.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/console/ConsoleRun.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

// A window title, a line that is rewritten, a colour by C1, a text that is turned, other lines.
constexpr char kHostile[] = "a\x1b]0;x\x07"
                            "b\rc\x7f"
                            "d\u009b31me\u202Ef\u2066g\u2028h\u200Fi\u061Cj";

// The first character of the text that would steer a terminal, but line ends; empty when there is
// none.
std::string SteeringIn(const std::string& text) {
    for (size_t place = 0; place < text.size(); ++place) {
        const auto byte = static_cast<unsigned char>(text[place]);
        const std::string rest = text.substr(place, 3);
        const bool low = (byte < 0x20 && byte != '\n') || byte == 0x7F;
        const bool high =
            rest[0] == '\xC2' && rest.size() > 1 && static_cast<unsigned char>(rest[1]) < 0xA0;
        bool known = low || high || rest.starts_with("\u061C");
        for (const char* const other :
             {"\u200E", "\u200F", "\u2028", "\u2029", "\u202A", "\u202B", "\u202C", "\u202D",
              "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"})
            known = known || rest == other;
        if (known)
            return nlohmann::json(text.substr(place, 12))
                .dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    }
    return {};
}

size_t CountOf(const std::string& text, char character) {
    return static_cast<size_t>(std::ranges::count(text, character));
}

} // namespace

class HostileText : public StoreTest {
protected:
    static std::string Line(const nlohmann::json& members) {
        nlohmann::json line = {{"name", "a"}, {"app", 1}, {"user", 1}};
        line.update(members);
        return line.dump() + "\n";
    }
    // Runs it and expects that nothing of what it says steers a terminal.
    static ConsoleResult Run(const std::wstring& arguments, const std::string& input = {}) {
        ConsoleResult result = RunConsole(arguments, input);
        EXPECT_EQ("", SteeringIn(result.output)) << result.output;
        EXPECT_EQ("", SteeringIn(result.errors)) << result.errors;
        return result;
    }
    static void RecordHostileName() {
        const ConsoleResult result =
            RunConsole(L"import -", Line({{"name", kHostile}, {"stringValues", {kHostile}}}));
        ASSERT_EQ(0, result.exitCode) << result.errors;
    }
};

TEST_F(HostileText, OfAKeyIsNamedHarmlessly) {
    const ConsoleResult result = Run(L"import -", Line({{kHostile, 1}}));
    EXPECT_EQ(6, result.exitCode);
    EXPECT_THAT(result.errors, HasSubstr("tslhost: -:1: \"a ]0;x b c d 31me f g h i j\" is not"));
    EXPECT_EQ(1u, CountOf(result.errors, '\n')) << result.errors;
}

TEST_F(HostileText, OfAKeyIsCutInTheMessage) {
    const std::string key(100'000, 'k');
    const ConsoleResult result = Run(L"import -", Line({{key + "end", 1}}));
    EXPECT_THAT(result.errors, HasSubstr("kend\" is not known\n"));
    EXPECT_THAT(result.errors, HasSubstr("k\u2026k"));
    EXPECT_LT(result.errors.size(), 400u);
}

TEST_F(HostileText, OfALineThatIsNoJsonIsToldHarmlessly) {
    for (const std::string& line :
         {std::string(kHostile), "{\"a\":\"" + std::string(kHostile),
          "{\"" + std::string(100'000, 'x'), "\"\xFF" + std::string(kHostile)}) {
        const ConsoleResult result = Run(L"import -", line + "\n");
        EXPECT_EQ(6, result.exitCode);
        EXPECT_THAT(result.errors, HasSubstr("tslhost: -:1: parse error"));
        EXPECT_LT(result.errors.size(), 500u);
    }
}

TEST_F(HostileText, OfATimeIsToldHarmlessly) {
    const ConsoleResult result = Run(L"import -", Line({{"time", kHostile}}));
    EXPECT_EQ(6, result.exitCode);
    EXPECT_THAT(result.errors, HasSubstr("is no ISO 8601 time"));
    EXPECT_LT(Run(L"import -", Line({{"time", std::string(100'000, 't')}})).errors.size(), 400u);
}

TEST_F(HostileText, OfANameThatCannotBeRecordedIsToldHarmlessly) {
    MakeStoreFolder();
    WriteBytes(ReplayPath(), Bytes(4096, 'x'));
    const ConsoleResult result = Run(L"import -", Line({{"name", kHostile}}));
    EXPECT_EQ(4, result.exitCode);
    const std::string longName(100'000, 'n');
    const std::string errors = Run(L"import -", Line({{"name", longName}})).errors;
    EXPECT_THAT(errors, HasSubstr("uareplay.db: 0x"));
    EXPECT_LT(errors.size(), 700u);
}

TEST_F(HostileText, OfFileNamesIsToldHarmlessly) {
    const ConsoleResult result = Run(L"import \"nosuch\u202E\u009b.jsonl\"");
    EXPECT_EQ(5, result.exitCode);
    EXPECT_THAT(result.errors, HasSubstr("cannot open nosuch  .jsonl"));
}

TEST_F(HostileText, OfArgumentsIsToldHarmlessly) {
    EXPECT_EQ(2, Run(L"ids --user \"1\u202E\u009b\"").exitCode);
    EXPECT_EQ(2, Run(L"nosuch\u202E\u009b").exitCode);
}

TEST_F(HostileText, OfRecordsIsBlanksInTables) {
    RecordHostileName();
    for (const wchar_t* const command : {L"list", L"show 1", L"stats"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(command)));
        EXPECT_THAT(Run(command).output, HasSubstr("a ]0;x b c d 31me f g"));
    }
}

TEST_F(HostileText, OfRecordsIsEscapedInJsonAndReadBackAsItWas) {
    RecordHostileName();
    for (const wchar_t* const command : {L"list --json", L"show 1 --json", L"export"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(command)));
        const std::string output = Run(command).output;
        EXPECT_EQ(1u, CountOf(output, '\n')) << output;
        EXPECT_THAT(output, HasSubstr("d\\u009b31me\\u202ef\\u2066g\\u2028h\\u200fi\\u061cj"));
        EXPECT_EQ(kHostile, nlohmann::json::parse(output)["name"]);
    }
    const std::string stats = Run(L"stats --json").output;
    EXPECT_EQ(kHostile, nlohmann::json::parse(stats)["actions"][0]["name"]);
}

TEST_F(HostileText, OfRecordsIsHarmlessInCsvUnlessItIsAskedFor) {
    RecordHostileName();
    const std::string csv = RunConsole(L"export --format csv").output;
    std::string lines = csv;
    std::erase(lines, '\r');
    EXPECT_EQ("", SteeringIn(lines)) << csv;
    EXPECT_EQ(2u, CountOf(csv, '\n')) << csv;
    EXPECT_EQ(2u, CountOf(csv, '\r')) << csv;
    EXPECT_THAT(RunConsole(L"export --format csv --raw").output, HasSubstr(kHostile));
}

TEST_F(HostileText, OfATakenRecordIsHarmless) {
    const ConsoleResult recorded =
        RunConsole(L"import -", Line({{"name", "deleteItem"},
                                      {"ullValues", {7, 8}},
                                      {"stringValues", {kHostile, kHostile}}}));
    ASSERT_EQ(0, recorded.exitCode) << recorded.errors;
    EXPECT_THAT(Run(L"take 1").output, HasSubstr("textHandedOn: a ]0;x b c d 31me f g h i j\n"));
}

TEST_F(HostileText, OfContentItemsIsHarmless) {
    const fs::path file = fs::temp_directory_path() / L"tslhost hostile items.json";
    const auto write = [&](const nlohmann::json& items) {
        const std::string text = items.dump();
        WriteBytes(file, Bytes(text.begin(), text.end()));
    };
    const std::wstring move = L"move old o new n --number 7 --items \"" + file.wstring() + L"\"";
    write({{kHostile, 1}});
    const ConsoleResult refused = Run(move);
    EXPECT_EQ(2, refused.exitCode);
    EXPECT_THAT(refused.errors, HasSubstr("a ]0;x b"));
    write({{"items",
            {{{"id", 1},
              {"properties",
               {{{"first", "old"}, {"second", "o"}, {"number", 1}}, {{"first", kHostile}}}}}}}});
    Run(move);
    Run(move + L" --json");
    fs::remove(file);
}

} // namespace tsl::test
