// The file of the user ids: how each content is read, and how it is written back.
#include "tests/user_ids/UserIdListFixture.h"

namespace tsl::test {

class UserIdListFile : public UserIdListTest {};

TEST_F(UserIdListFile, GivesTheIdOfAUser) {
    const struct {
        const char* what;
        Bytes content;
        UINT64 id;
    } cases[] = {
        {"as it is written", Utf16FileBytes(L"0x00000005\tS-1\t\r\n"), 5},
        {"without a byte order mark", Utf16Bytes(L"0x00000005\tS-1\t\r\n"), 5},
        {"without a line end", Utf16FileBytes(L"0x00000005\tS-1\t"), 5},
        {"without the last TAB", Utf16FileBytes(L"0x00000005\tS-1"), 5},
        {"decimal", Utf16FileBytes(L"17\tS-1\t\r\n"), 17},
        {"octal", Utf16FileBytes(L"021\tS-1\t\r\n"), 17},
        {"hexadecimal, short", Utf16FileBytes(L"0x11\tS-1\t\r\n"), 17},
        {"hexadecimal, capitals", Utf16FileBytes(L"0X1F\tS-1\t\r\n"), 31},
        {"blanks ahead", Utf16FileBytes(L"  17\tS-1\t\r\n"), 17},
        {"text behind the number", Utf16FileBytes(L"17x\tS-1\t\r\n"), 17},
        {"no number", Utf16FileBytes(L"abc\tS-1\t\r\n"), 0},
        {"empty number", Utf16FileBytes(L"\tS-1\t\r\n"), 0},
        {"no octal digit", Utf16FileBytes(L"08\tS-1\t\r\n"), 0},
        {"sixteen digits", Utf16FileBytes(L"0xfedcba9876543210\tS-1\t\r\n"), 0xFEDCBA9876543210},
        {"too many digits", Utf16FileBytes(L"0x10000000000000000\tS-1\t\r\n"), 0xFFFFFFFFFFFFFFFF},
        {"more fields", Utf16FileBytes(L"5\tS-1\tmore\tand more\t\r\n"), 5},
        {"second line", Utf16FileBytes(L"4\tS-0\t\r\n5\tS-1\t\r\n"), 5},
        {"empty lines ahead of it", Utf16FileBytes(L"4\tS-0\t\r\n\r\n\n\r5\tS-1\t\r\n"), 5},
        {"break at the start of the text", Utf16FileBytes(L"\r\n5\tS-1\t\r\n"), 5},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        PrepareUserIdList(each.content);
        const LookUpResult result = LookUp(L"S-1");
        EXPECT_TRUE(result.found);
        EXPECT_EQ(each.id, result.id);
        EXPECT_EQ(each.content, ReadBytes(UserIdListPath()));
    }
}

TEST_F(UserIdListFile, IsNormalisedWhenAUserIsAdded) {
    const struct {
        const char* what;
        Bytes before;
        UINT64 id;
        std::wstring keptLines;
    } cases[] = {
        {"no bytes at all", {}, 1, L""},
        {"byte order mark alone", Utf16FileBytes(L""), 1, L""},
        {"one byte", {0x35}, 1, L""},
        {"decimal", Utf16FileBytes(L"17\tS-1\t\r\n"), 18, L"0x00000011\tS-1\t\r\n"},
        {"octal", Utf16FileBytes(L"021\tS-1\t\r\n"), 18, L"0x00000011\tS-1\t\r\n"},
        {"capitals", Utf16FileBytes(L"0XAB\tS-1\t\r\n"), 0xAC, L"0x000000ab\tS-1\t\r\n"},
        {"nine digits", Utf16FileBytes(L"0x100000000\tS-1\t\r\n"), 0x100000001,
         L"0x100000000\tS-1\t\r\n"},
        {"no number", Utf16FileBytes(L"abc\tS-1\t\r\n"), 1, L"0x00000000\tS-1\t\r\n"},
        {"no byte order mark", Utf16Bytes(L"5\tS-1\t\r\n"), 6, L"0x00000005\tS-1\t\r\n"},
        {"odd last byte", {0xFF, 0xFE, '5', 0, '\t', 0, 'S', 0, 'x'}, 6, L"0x00000005\tS\t\r\n"},
        {"odd without a mark", {'5', 0, '\t', 0, 'S', 0, 'x'}, 6, L"0x00000005\tS\t\r\n"},
        {"more fields", Utf16FileBytes(L"5\tS-1\tmore\tand\t\r\n"), 6, L"0x00000005\tS-1\t\r\n"},
        {"no TAB", Utf16FileBytes(L"5\r\n"), 6, L"0x00000005\t\t\r\n"},
        {"text without TAB", Utf16FileBytes(L"S-1\r\n"), 1, L"0x00000000\t\t\r\n"},
        {"blank fields", Utf16FileBytes(L"\t\t\r\n"), 1, L"0x00000000\t\t\r\n"},
        {"blanks are kept", Utf16FileBytes(L"5\t S-1 \t\r\n"), 6, L"0x00000005\t S-1 \t\r\n"},
        {"no line end", Utf16FileBytes(L"5\tS-1"), 6, L"0x00000005\tS-1\t\r\n"},
        {"empty lines", Utf16FileBytes(L"5\tS-1\t\r\n\r\n\n\n\r3\tS-2\t\r\n\r\n"), 6,
         L"0x00000005\tS-1\t\r\n0x00000003\tS-2\t\r\n"},
        {"line feed alone is no break", Utf16FileBytes(L"5\tS-1\n6\tS-2\t\r\n"), 6,
         L"0x00000005\tS-1\n6\t\r\n"},
        {"duplicates", Utf16FileBytes(L"5\tS-1\t\r\n3\tS-1\t\r\n"), 6,
         L"0x00000005\tS-1\t\r\n0x00000003\tS-1\t\r\n"},
        {"order is kept", Utf16FileBytes(L"9\tS-9\t\r\n1\tS-1\t\r\n4\tS-4\t\r\n"), 10,
         L"0x00000009\tS-9\t\r\n0x00000001\tS-1\t\r\n0x00000004\tS-4\t\r\n"},
        {"break at the start hides later lines", Utf16FileBytes(L"\r\n5\tS-1\t\r\n7\tS-2\t\r\n"), 6,
         L"0x00000005\tS-1\t\r\n"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        PrepareUserIdList(each.before);
        const LookUpResult result = LookUp(L"S-new");
        EXPECT_FALSE(result.found);
        EXPECT_EQ(each.id, result.id);
        wchar_t id[24];
        std::swprintf(id, std::size(id), L"0x%08llx", each.id);
        EXPECT_EQ(Utf16FileBytes(each.keptLines + id + L"\tS-new\t\r\n"),
                  ReadBytes(UserIdListPath()));
    }
}

TEST_F(UserIdListFile, HoldsTheEntriesInTheirOrder) {
    const std::vector<UserIdEntry> entries = {
        {2, L"S-1-5-21-1-2-3-1001"}, {0, L""}, {0xABCDEF0123456789, L"S-1"}, {1, L"\u00e4\u6f22"}};
    EXPECT_EQ(S_OK, WriteUserIdList(entries));
    EXPECT_EQ(Utf16FileBytes(L"0x00000002\tS-1-5-21-1-2-3-1001\t\r\n"
                             L"0x00000000\t\t\r\n"
                             L"0xabcdef0123456789\tS-1\t\r\n"
                             L"0x00000001\t\u00e4\u6f22\t\r\n"),
              ReadBytes(UserIdListPath()));
    EXPECT_EQ(1u, LookUp(L"\u00e4\u6f22").id);
}

TEST_F(UserIdListFile, IsReplacedAsAWhole) {
    PrepareUserIdList(Bytes(5000, 0x41));
    EXPECT_EQ(S_OK, WriteUserIdList({{1, L"S-1"}})) << "an older file is no failure";
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\tS-1\t\r\n"), ReadBytes(UserIdListPath()));
}

TEST_F(UserIdListFile, OfNobodyIsAByteOrderMark) {
    EXPECT_EQ(S_OK, WriteUserIdList({}));
    EXPECT_EQ((Bytes{0xFF, 0xFE}), ReadBytes(UserIdListPath()));
}

} // namespace tsl::test
