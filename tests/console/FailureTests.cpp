// Exit codes and one-line messages of failures.
#include "console/Failure.h"

#include <gtest/gtest.h>

namespace tsl::test {

namespace {

constexpr HRESULT Sqlite(unsigned long code) {
    return static_cast<HRESULT>(code);
}

} // namespace

TEST(Failure, ExitCodeTellsLockedDamagedAndDeniedApart) {
    struct Case {
        HRESULT result;
        ExitCode expected;
    };
    for (const Case& c : {
             Case{Sqlite(0x80041604), ExitCode::Locked},
             Case{Sqlite(0x80041605), ExitCode::Locked},
             Case{HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION), ExitCode::Locked},
             Case{Sqlite(0x8004160A), ExitCode::Damaged},
             Case{Sqlite(0x80041619), ExitCode::Damaged},
             Case{Sqlite(0x8004160D), ExitCode::Denied},
             Case{HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED), ExitCode::Denied},
             Case{E_POINTER, ExitCode::Denied},
         }) {
        SCOPED_TRACE(c.result);
        EXPECT_EQ(c.expected, CFailure("cannot do", L"x", c.result).Code());
    }
}

TEST(Failure, MessageNamesOperationFileAndCode) {
    EXPECT_STREQ("cannot open C:\\ä.db: 0x80041604 (the database is busy)",
                 CFailure("cannot open", L"C:\\\u00e4.db", Sqlite(0x80041604)).what());
}

TEST(Failure, SystemErrorsAreExplainedBySystemInOneLine) {
    const std::string text = DescribeResult(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
    EXPECT_EQ(0u, text.find("0x80070005 ("));
    EXPECT_EQ(std::string::npos, text.find('\n'));
}

TEST(Failure, UnknownCodeStandsAlone) {
    EXPECT_EQ("0x8004FFF0", DescribeResult(Sqlite(0x8004FFF0)));
}

} // namespace tsl::test
