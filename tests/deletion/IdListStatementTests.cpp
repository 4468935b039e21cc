// The text of the statement that fetches records by their ids.
#include "query/IdListStatement.h"

#include <gtest/gtest.h>

namespace tsl::test {

TEST(IdListStatementText, HasOnePlaceholderForOneId) {
    EXPECT_EQ(L"SELECT * FROM TslIf_DbActionLog WHERE ActionLogId IN(?)",
              IdListStatement(L"TslIf_DbActionLog", 1));
}

TEST(IdListStatementText, HasACommaBetweenPlaceholders) {
    EXPECT_EQ(L"SELECT * FROM TslIf_DbActionLog WHERE ActionLogId IN(?,?)",
              IdListStatement(L"TslIf_DbActionLog", 2));
    EXPECT_EQ(L"SELECT * FROM TslIf_DbActionLog WHERE ActionLogId IN(?,?,?)",
              IdListStatement(L"TslIf_DbActionLog", 3));
}

TEST(IdListStatementText, NamesTheTable) {
    EXPECT_EQ(L"SELECT * FROM TslIf_ContentDeleteProperty WHERE ActionLogId IN(?)",
              IdListStatement(L"TslIf_ContentDeleteProperty", 1));
}

TEST(IdListStatementText, HasAPlaceholderForEachOfAThousandIds) {
    std::wstring expected = L"SELECT * FROM TslIf_DbActionLog WHERE ActionLogId IN(?";
    for (int id = 2; id <= 1000; ++id)
        expected += L",?";
    EXPECT_EQ(expected + L")", IdListStatement(L"TslIf_DbActionLog", 1000));
}

} // namespace tsl::test
