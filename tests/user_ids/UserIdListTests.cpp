// Looking users up and giving them ids: who gets which id, and that the file stays as it is.
#include "tests/user_ids/UserIdListFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

class UserIdList : public UserIdListTest {};

TEST_F(UserIdList, FirstUserIsOneAndTheFileIsMade) {
    const LookUpResult first = LookUp(L"S-1-5-21-1-2-3-1001");
    EXPECT_FALSE(first.found);
    EXPECT_EQ(1u, first.id);
    ASSERT_EQ(1u, first.entries.size());
    EXPECT_EQ(1u, first.entries[0].id);
    EXPECT_EQ(L"S-1-5-21-1-2-3-1001", first.entries[0].sid);
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\tS-1-5-21-1-2-3-1001\t\r\n"),
              ReadBytes(UserIdListPath()));
}

TEST_F(UserIdList, SecondUserIsTwoAndComesAfterTheFirst) {
    LookUp(L"S-1-5-21-9");
    const LookUpResult second = LookUp(L"S-1-5-21-1");
    EXPECT_FALSE(second.found);
    EXPECT_EQ(2u, second.id);
    ASSERT_EQ(2u, second.entries.size());
    EXPECT_EQ(L"S-1-5-21-9", second.entries[0].sid);
    EXPECT_EQ(L"S-1-5-21-1", second.entries[1].sid);
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\tS-1-5-21-9\t\r\n0x00000002\tS-1-5-21-1\t\r\n"),
              ReadBytes(UserIdListPath()));
}

TEST_F(UserIdList, KnownUserKeepsTheId) {
    LookUp(L"S-1-5-21-9");
    LookUp(L"S-1-5-21-1");
    for (const auto& [sid, id] : {std::pair(L"S-1-5-21-9", 1u), std::pair(L"S-1-5-21-1", 2u)}) {
        const LookUpResult again = LookUp(sid);
        EXPECT_TRUE(again.found);
        EXPECT_EQ(id, again.id);
        EXPECT_EQ(2u, again.entries.size());
    }
}

TEST_F(UserIdList, KnownUserDoesNotRewriteTheFile) {
    const Bytes handWritten = Utf16Bytes(L"17\tS-1-5-21-9\tmore\r\n");
    PrepareUserIdList(handWritten);
    const auto longAgo = fs::last_write_time(UserIdListPath()) - std::chrono::hours(1000);
    fs::last_write_time(UserIdListPath(), longAgo);
    const auto before = fs::last_write_time(UserIdListPath());
    EXPECT_EQ(17u, LookUp(L"S-1-5-21-9").id);
    EXPECT_EQ(handWritten, ReadBytes(UserIdListPath()));
    EXPECT_EQ(before, fs::last_write_time(UserIdListPath()));
    LookUp(L"S-1-5-21-8");
    EXPECT_LT(before, fs::last_write_time(UserIdListPath())) << "a rewrite would have shown";
}

TEST_F(UserIdList, CaseOfLettersDoesNotMatter) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000005\tS-1-5-21-aBc\t\r\n"));
    for (const wchar_t* sid : {L"S-1-5-21-ABC", L"s-1-5-21-abc", L"S-1-5-21-aBc"}) {
        const LookUpResult result = LookUp(sid);
        EXPECT_TRUE(result.found);
        EXPECT_EQ(5u, result.id);
    }
}

TEST_F(UserIdList, LastEntryOfAUserCounts) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000009\tS-1\t\r\n0x00000004\tS-2\t\r\n"
                                     L"0x00000003\ts-1\t\r\n"));
    const LookUpResult result = LookUp(L"S-1");
    EXPECT_TRUE(result.found);
    EXPECT_EQ(3u, result.id);
    EXPECT_EQ(3u, result.entries.size());
    EXPECT_EQ(10u, LookUp(L"S-3").id) << "the highest id counts, whoever has it";
}

TEST_F(UserIdList, OnlyTheWholeIdentifierMatches) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000001\tS-1-5-21-10 \t\r\n0x00000002\tS-1-5\t\r\n"));
    EXPECT_EQ(3u, LookUp(L"S-1-5-21-10").id);
    EXPECT_EQ(4u, LookUp(L"S-1-5-21").id);
}

TEST_F(UserIdList, NextIdFollowsTheHighestWithoutFillingGaps) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000007\tS-7\t\r\n0x00000002\tS-2\t\r\n"));
    EXPECT_EQ(8u, LookUp(L"S-1").id);
    EXPECT_EQ(9u, LookUp(L"S-3").id);
}

TEST_F(UserIdList, IdBeyondThirtyTwoBitsIsKeptInFull) {
    PrepareUserIdList(Utf16FileBytes(L"0x123456789a\tS-1\t\r\n"));
    EXPECT_EQ(0x123456789Au, LookUp(L"S-1").id);
    EXPECT_EQ(0x123456789Bu, LookUp(L"S-2").id);
    EXPECT_EQ(Utf16FileBytes(L"0x123456789a\tS-1\t\r\n0x123456789b\tS-2\t\r\n"),
              ReadBytes(UserIdListPath()));
}

TEST_F(UserIdList, NothingIsRememberedBetweenCalls) {
    EXPECT_EQ(1u, LookUp(L"S-1").id);
    PrepareUserIdList(Utf16FileBytes(L"0x00000030\tS-1\t\r\n"));
    EXPECT_EQ(0x30u, LookUp(L"S-1").id);
    ASSERT_TRUE(fs::remove(UserIdListPath()));
    EXPECT_EQ(1u, LookUp(L"S-1").id);
}

TEST_F(UserIdList, ManyUsersAreAllFoundAgain) {
    std::wstring text;
    for (int number = 1; number <= 500; ++number) {
        wchar_t id[16];
        std::swprintf(id, std::size(id), L"0x%08x", number);
        text += id + (L"\tS-1-5-21-" + std::to_wstring(number * 7)) + L"\t\r\n";
    }
    PrepareUserIdList(Utf16FileBytes(text));
    for (const int number : {1, 2, 250, 499, 500}) {
        const auto expected = static_cast<UINT64>(number);
        EXPECT_EQ(expected, LookUp(L"S-1-5-21-" + std::to_wstring(number * 7)).id);
    }
    EXPECT_EQ(501u, LookUp(L"S-1-5-21-1").id);
    EXPECT_EQ(Utf16FileBytes(text + L"0x000001f5\tS-1-5-21-1\t\r\n"), ReadBytes(UserIdListPath()));
}

} // namespace tsl::test
