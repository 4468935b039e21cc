// The user that the process runs as: his identifier and his id.
#include <regex>
#include <thread>

#include "tests/user_ids/UserIdListFixture.h"

namespace tsl::test {

class CurrentUser : public UserIdListTest {};

TEST_F(CurrentUser, IdentifierIsThatOfTheToken) {
    std::wstring sid = L"left over";
    EXPECT_EQ(S_OK, CurrentUserSid(sid));
    EXPECT_EQ(TokenSid(), sid);
    EXPECT_TRUE(std::regex_match(sid, std::wregex(L"S-1-[0-9]+(-[0-9]+)+")));
}

TEST_F(CurrentUser, IdIsGivenWithFalseAndStaysTheSame) {
    for (int call = 0; call < 3; ++call) {
        UINT64 id = 0;
        EXPECT_EQ(S_FALSE, CurrentUserId(id));
        EXPECT_EQ(1u, id);
    }
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\t" + TokenSid() + L"\t\r\n"),
              ReadBytes(UserIdListPath()));
}

TEST_F(CurrentUser, IdIsThatOfTheFile) {
    PrepareUserIdList(
        Utf16FileBytes(L"0x00000001\tS-other\t\r\n0x100000023\t" + TokenSid() + L"\t\r\n"));
    UINT64 id = 0;
    EXPECT_EQ(S_FALSE, CurrentUserId(id));
    EXPECT_EQ(0x100000023u, id);
}

TEST_F(CurrentUser, IdFollowsThoseOfOthers) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000041\tS-other\t\r\n"));
    UINT64 id = 0;
    EXPECT_EQ(S_FALSE, CurrentUserId(id));
    EXPECT_EQ(0x42u, id);
    EXPECT_EQ(Utf16FileBytes(L"0x00000041\tS-other\t\r\n0x00000042\t" + TokenSid() + L"\t\r\n"),
              ReadBytes(UserIdListPath()));
}

TEST_F(CurrentUser, IsOneIdForThreadsThatAskAtOnce) {
    std::vector<UINT64> ids(8);
    {
        std::vector<std::jthread> threads;
        for (UINT64& id : ids) {
            threads.emplace_back([&id] { EXPECT_EQ(S_FALSE, CurrentUserId(id)); });
        }
    }
    EXPECT_EQ(std::vector<UINT64>(8, 1), ids);
    EXPECT_EQ(Utf16FileBytes(L"0x00000001\t" + TokenSid() + L"\t\r\n"),
              ReadBytes(UserIdListPath()));
}

} // namespace tsl::test
