// tslhost delete, and take of what deletions keep, run as a user runs them.
#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class DeleteCommand : public StoreTest {
protected:
    // Ids 1 to 6: user 1, user 1 of kind 8, then four of user 2.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        std::string lines = "{\"name\":\"a\",\"app\":1,\"user\":1}\n"
                            "{\"name\":\"a\",\"app\":1,\"user\":1,\"kind\":8}\n";
        for (int line = 0; line < 4; ++line)
            lines += "{\"name\":\"a\",\"app\":1,\"user\":2}\n";
        ASSERT_EQ(0, RunConsole(L"import -", lines).exitCode);
    }
};

TEST_F(DeleteCommand, SaysHowManyAndRemovesNothingWithoutYes) {
    const ConsoleResult result = RunConsole(L"delete --user 2 --first 1");
    EXPECT_EQ(2, result.exitCode);
    EXPECT_EQ("4 records would be removed\n", result.output);
    EXPECT_EQ("tslhost: nothing was removed; add --yes to remove them\n", result.errors);
    EXPECT_EQ(6, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(DeleteCommand, DryRunRemovesNothingEvenWithYes) {
    const ConsoleResult result = RunConsole(L"delete --user 2 --last 4 --dry-run --yes");
    EXPECT_EQ(0, result.exitCode);
    EXPECT_EQ("2 records would be removed\n", result.output);
    EXPECT_EQ(6, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(DeleteCommand, RemovesARangeOfIdsOfOneUserAndKind) {
    const ConsoleResult result = RunConsole(L"delete --user 1 --first 1 --last 6 --yes");
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ("1 record removed\n", result.output);
    EXPECT_EQ(5, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ("1 record removed\n", RunConsole(L"delete --user 1 --first 1 --kind 8 --yes").output);
}

TEST_F(DeleteCommand, RemovesARangeOfTimes) {
    EXPECT_EQ("4 records removed\n",
              RunConsole(L"delete --user 2 --since 2020-01-01T00:00:00Z --yes").output);
    EXPECT_EQ(2, CountRows(ActionLogPath(), kActionLogRows));
    const ConsoleResult again = RunConsole(L"delete --user 2 --since 2020-01-01T00:00:00Z --yes");
    EXPECT_EQ(1, again.exitCode);
    EXPECT_EQ("0 records would be removed\n", again.output);
}

TEST_F(DeleteCommand, RemovesOneRecordOfUserOne) {
    EXPECT_EQ("{\"records\":1,\"removed\":true}\n",
              RunConsole(L"delete --user 1 --id 1 --yes --json").output);
    EXPECT_EQ(5, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(1, RunConsole(L"delete --user 1 --id 3 --yes").exitCode) << "of another user";
    EXPECT_EQ(2, RunConsole(L"delete --user 2 --id 3 --yes").exitCode);
    EXPECT_EQ(5, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(DeleteCommand, WantsOneFormAndAUser) {
    for (const wchar_t* const arguments :
         {L"delete --user 1", L"delete --first 1", L"delete --user 1 --id 1 --first 1",
          L"delete --user 1 --first 1 --since 2020-01-01T00:00:00Z",
          L"delete --user 1 --user 2 --first 1"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(arguments)));
        EXPECT_EQ(2, RunConsole(arguments).exitCode);
    }
    EXPECT_EQ(6, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(DeleteCommand, TakeShowsAKeptRecordOnceAndWhatWentToTheSink) {
    const FileDatabase database(ActionLogPath());
    database.Query("CREATE TABLE TslIf_ContentDeleteProperty AS SELECT * FROM TslIf_DbActionLog "
                   "WHERE ActionLogId = 1");
    database.Query("UPDATE TslIf_ContentDeleteProperty SET ActionParameters = "
                   "'ullValues={7,8}&intValues={1,2,3}&stringValues={first,second%20one}'");
    EXPECT_EQ("1\n", RunConsole(L"all").output);
    const ConsoleResult taken = RunConsole(L"take 1");
    EXPECT_EQ(0, taken.exitCode) << taken.errors;
    EXPECT_EQ("id: 1\nfirstUll: 7\nsecondUll: 8\nfirstInt: 1\nsecondInt: 2\nthirdInt: 3\n"
              "firstText: first\ntextHandedOn: second one\n",
              taken.output);
    EXPECT_EQ(1, RunConsole(L"take 1").exitCode);
}

} // namespace tsl::test
