// Writers, readers and deleters at once, for a long time.
#include "tests/processes/ProcessesFixture.h"

namespace tsl::test {

class Soak : public ProcessesTest {};

TEST_F(Soak, OfWritersReadersAndDeletersLosesNothingAndLeavesNothing) {
    const std::wstring time = InForm(L"5s", L"600s");
    std::vector<Job> jobs;
    for (UINT32 user = 1; user <= 8; ++user)
        jobs.push_back({L"write", time, user});
    jobs.insert(jobs.end(), 4, {L"read", time, 1});
    for (UINT32 user = 101; user <= 102; ++user)
        jobs.push_back({L"delete", time, user});
    const WorkerCalls calls = RunAll(jobs);
    Report(calls);

    const std::vector<UINT32> ids = IdsOf(SuccessesOf(calls, "id"));
    ASSERT_FALSE(ids.empty());
    EXPECT_EQ(IdsUpTo(static_cast<UINT32>(ids.size())), ids);
    EXPECT_EQ(ids, IdsOf(SuccessesOf(calls, "notify")));
    EXPECT_EQ(IdsOf(SuccessesOf(calls, "fetch")),
              StoredIds(ActionLogPath(), kActionLogRows, "UserId < 100"));
    EXPECT_EQ("none", DescribeFailures(CallsOf(calls, "fetch")));
    EXPECT_EQ("none", DescribeFailures(CallsOf(calls, "read")));
    EXPECT_EQ("none", DescribeFailures(CallsOf(calls, "delete")));
    EXPECT_EQ("none", DescribeFailures(CallsOf(calls, "look")));
    EXPECT_EQ(std::vector<UINT32>(), StoredIds(ActionLogPath(), kActionLogRows, "UserId > 100"));
    ExpectWholeDatabases();
}

} // namespace tsl::test
