// Tables that fit a width.
#include "console/Table.h"

#include <gtest/gtest.h>

namespace tsl::test {

TEST(Table, AlignsColumnsByWhatTheTerminalShows) {
    CTable table({{"id", true}, {"name"}, {"text"}});
    table.Add({"7", "caf\u00e9", "x"});
    table.Add({"1234", "\u65e5\u672c", "y"});
    const std::vector<std::string> expected = {"  id  name  text", "   7  caf\u00e9  x",
                                               "1234  \u65e5\u672c  y"};
    EXPECT_EQ(expected, table.Lines(80));
}

TEST(Table, CutsTheLastColumnToTheWidth) {
    CTable table({{"id", true}, {"text"}});
    table.Add({"1", "0123456789"});
    table.Add({"2", "\u65e5\u672c\u8a9e\u65e5\u672c"});
    const std::vector<std::string> lines = table.Lines(10);
    EXPECT_EQ(" 1  01234\u2026", lines[1]);
    EXPECT_EQ(" 2  \u65e5\u672c\u2026", lines[2]);
    for (const std::string& line : lines)
        EXPECT_LE(DisplayWidth(line), 10u) << line;
}

TEST(Table, CutsOtherColumnsToTheirOwnLimit) {
    CTable table({{"name", false, 6}, {"text"}});
    table.Add({"0123456789", "x"});
    EXPECT_EQ("01234\u2026  x", table.Lines(80)[1]);
}

TEST(Table, PadsColumnsToTheirLeastWidth) {
    CTable table({{"id", true, 10, 4}, {"name", false, 6, 6}, {"text"}});
    table.Add({"7", "ab", "x"});
    table.Add({"12345", "0123456789", "y"});
    EXPECT_EQ("    7  ab      x", table.Lines(80)[1]);
    CTable narrow({{"id", true, 10, 4}, {"name", false, 6, 6}, {"text"}});
    narrow.Add({"7", "ab", "x"});
    EXPECT_EQ("   7  ab      x", narrow.Lines(80)[1]);
}

TEST(Table, KeepsARowOnOneLine) {
    CTable table({{"text"}});
    table.Add({"a\r\nb\tc"});
    EXPECT_EQ("a  b c", table.Lines(80)[1]);
}

TEST(Table, CountsWideAndCombiningCharacters) {
    EXPECT_EQ(0u, DisplayWidth(""));
    EXPECT_EQ(3u, DisplayWidth("abc"));
    EXPECT_EQ(4u, DisplayWidth("\u65e5\u672c"));
    EXPECT_EQ(1u, DisplayWidth("e\u0301"));
    EXPECT_EQ(2u, DisplayWidth("\U0001F33B"));
}

} // namespace tsl::test
