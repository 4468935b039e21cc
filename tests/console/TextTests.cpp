// Texts made fit for one line of a terminal, and JSON lines.
#include "console/Text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"

namespace tsl::test {

TEST(OneLine, HasBlanksInPlaceOfAllThatSteersATerminal) {
    std::wstring steering;
    for (wchar_t character = 1; character < 0x20; ++character)
        steering += character;
    for (wchar_t character = 0x7F; character < 0xA0; ++character)
        steering += character;
    steering +=
        L"\u061C\u200E\u200F\u2028\u2029\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069";
    EXPECT_EQ(std::string(steering.size(), ' '), OneLine(ToUtf8(steering)));
    EXPECT_EQ("a b", OneLine(std::string_view("a\0b", 3)));
}

TEST(OneLine, LeavesTheLettersOfAllScripts) {
    for (const char* const text : {"", "plain ~", "\u00A0caf\u00e9", "\u65e5\u672c", "\u05d0\u0628",
                                   "\u200B\u200C\u200D\u2027\u202F\u2065\u206A", "\U0001F33B"})
        EXPECT_EQ(text, OneLine(text));
    EXPECT_EQ("a\uFFFDb", OneLine("a\xFF"
                                  "b"));
}

TEST(Abridged, LeavesWhatIsShortEnough) {
    const std::string longest(kLongestQuote, 'x');
    EXPECT_EQ(longest, Abridged(longest));
    EXPECT_EQ("", Abridged(""));
}

TEST(Abridged, HasBeginningAndEndOfALongerText) {
    EXPECT_EQ("abcdef\u2026xyz", Abridged("abcdefghijklmnopqrstuvwxyz", 10));
    EXPECT_EQ(kLongestQuote, ToUtf16(Abridged(std::string(100'000, 'x'))).size());
}

TEST(Abridged, CutsNoCharacterInTwo) {
    std::string flowers;
    for (int count = 0; count < 20; ++count)
        flowers += "\U0001F33B";
    for (size_t longest = 8; longest < 20; ++longest) {
        const std::string cut = Abridged(flowers, longest);
        EXPECT_EQ(std::string::npos, cut.find("\uFFFD")) << longest;
        EXPECT_LE(ToUtf16(cut).size(), longest);
    }
}

TEST(JsonLine, EscapesWhatSteersATerminal) {
    EXPECT_EQ("{\"a\\u0085\":\"\\u001b\\u007f\\u009f\\u2029\u65e5\"}",
              ToJsonLine({{"a\u0085", "\u001b\u007f\u009f\u2029\u65e5"}}));
    EXPECT_EQ("\"\uFFFD\"", ToJsonLine("\xFF"));
}

} // namespace tsl::test
