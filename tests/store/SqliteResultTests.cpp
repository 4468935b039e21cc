// The engine's result codes as HRESULTs.
#include "store/SqliteResult.h"

#include <gtest/gtest.h>

#include <climits>

namespace tsl::test {

namespace {

constexpr HRESULT Failure(UINT32 value) {
    return static_cast<HRESULT>(value);
}

} // namespace

TEST(SqliteResult, OkIsASuccessButNotSOk) {
    EXPECT_EQ(0x00041500, SqliteResultToHresult(0));
    EXPECT_TRUE(SUCCEEDED(SqliteResultToHresult(0)));
    EXPECT_NE(S_OK, SqliteResultToHresult(0));
}

TEST(SqliteResult, OneToTwentySixCountUpwards) {
    for (int result = 1; result <= 26; ++result) {
        const HRESULT expected = Failure(0x80041600u + static_cast<UINT32>(result) - 1u);
        EXPECT_EQ(expected, SqliteResultToHresult(result)) << result;
    }
    EXPECT_EQ(Failure(0x80041600u), SqliteResultToHresult(1));
    EXPECT_EQ(Failure(0x80041619u), SqliteResultToHresult(26));
}

TEST(SqliteResult, RowAndDoneAreFailures) {
    EXPECT_EQ(Failure(0x80041700u), SqliteResultToHresult(100));
    EXPECT_EQ(Failure(0x80041701u), SqliteResultToHresult(101));
}

TEST(SqliteResult, AnyOtherCodeIsEFail) {
    // 27 and 28 are codes of the engine too, 266 is one with more detail (a failed read).
    for (const int result : {27, 28, 29, 30, 99, 102, 266, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(Failure(0x80004005u), SqliteResultToHresult(result)) << result;
    }
}

TEST(SqliteResult, SuccessAsOkKeepsFailuresAndFlattensSuccesses) {
    EXPECT_EQ(S_OK, SuccessAsOk(SqliteResultToHresult(0)));
    EXPECT_EQ(S_OK, SuccessAsOk(S_OK));
    EXPECT_EQ(S_OK, SuccessAsOk(S_FALSE));
    for (int result = 1; result <= 30; ++result) {
        EXPECT_EQ(SqliteResultToHresult(result), SuccessAsOk(SqliteResultToHresult(result)));
    }
    EXPECT_EQ(Failure(0x80041700u), SuccessAsOk(SqliteResultToHresult(100)));
    EXPECT_EQ(Failure(0x80041701u), SuccessAsOk(SqliteResultToHresult(101)));
}

} // namespace tsl::test
