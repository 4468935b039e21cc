// tslhost reset, run as a user runs it.
#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

// "ids of the action log's records, in order"
std::string LoggedIds() {
    return FileDatabase(ActionLogPath())
        .Value("SELECT group_concat(ActionLogId, ' ') FROM TslIf_DbActionLog");
}

} // namespace

class ResetCommand : public StoreTest {
protected:
    // Ids 1 and 2 of user 1, 3 of user 1 under kind 8, 4 of user 2.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        ASSERT_EQ(0, RunConsole(L"import -", "{\"name\":\"a\",\"app\":1,\"user\":1}\n"
                                             "{\"name\":\"a\",\"app\":1,\"user\":1}\n"
                                             "{\"name\":\"a\",\"app\":1,\"user\":1,\"kind\":8}\n"
                                             "{\"name\":\"a\",\"app\":1,\"user\":2}\n")
                         .exitCode);
    }
};

TEST_F(ResetCommand, RemovesTheRecordsOfOneUserAndKindAndRecordsItself) {
    const ConsoleResult reset = RunConsole(L"reset --user 1");
    EXPECT_EQ(0, reset.exitCode) << reset.errors;
    EXPECT_EQ("2 records removed, and the reset recorded as 5\n", reset.output);
    EXPECT_EQ("3 4 5", LoggedIds());
}

TEST_F(ResetCommand, TakesALogKind) {
    EXPECT_EQ("{\"records\":1,\"removed\":true,\"id\":5}\n",
              RunConsole(L"reset --user 1 --kind 8 --json").output);
    EXPECT_EQ("1 2 4 5", LoggedIds());
}

TEST_F(ResetCommand, DryRunRemovesNothing) {
    const ConsoleResult reset = RunConsole(L"reset --user 1 --dry-run");
    EXPECT_EQ(0, reset.exitCode);
    EXPECT_EQ("2 records would be removed\n", reset.output);
    EXPECT_EQ("{\"records\":1,\"removed\":false}\n",
              RunConsole(L"reset --user 2 --dry-run --json").output);
    EXPECT_EQ("1 2 3 4", LoggedIds());
}

TEST_F(ResetCommand, RefusesUserZero) {
    EXPECT_EQ(2, RunConsole(L"reset --user 0").exitCode);
    EXPECT_EQ("1 2 3 4", LoggedIds());
}

} // namespace tsl::test
