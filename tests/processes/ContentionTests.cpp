// Many host processes on one store: every id once, every acknowledged record in both databases.
#include "tests/processes/ProcessesFixture.h"

namespace tsl::test {

class Contention : public ProcessesTest {
protected:
    static int CallsOfEach() { return InForm(50, 1000); }

    // Writers with a user each: the replay log keeps about a thousand records of a user.
    static std::vector<Job> Writers(UINT32 count) {
        std::vector<Job> jobs;
        for (UINT32 user = 1; user <= count; ++user)
            jobs.push_back({L"write", std::to_wstring(CallsOfEach()), user});
        return jobs;
    }

    static void ExpectEveryRecord(const WorkerCalls& calls, UINT32 writers) {
        const std::vector<UINT32> all = IdsUpTo(writers * static_cast<UINT32>(CallsOfEach()));
        EXPECT_EQ(all, IdsOf(SuccessesOf(calls, "id"))) << "each id once, without a gap";
        EXPECT_EQ(all, IdsOf(SuccessesOf(calls, "notify")));
        EXPECT_EQ(all, IdsOf(SuccessesOf(calls, "fetch")));
        EXPECT_EQ(all, StoredIds(ActionLogPath(), kActionLogRows));
        EXPECT_EQ(all, StoredIds(ReplayPath(), kReplayRows));
        ExpectWholeDatabases();
    }
};

TEST_F(Contention, EightProcessesLoseAndRepeatNothing) {
    const WorkerCalls calls = RunAll(Writers(8));
    Report(calls);
    ExpectEveryRecord(calls, 8);
}

TEST_F(Contention, SixteenProcessesLoseAndRepeatNothing) {
    const WorkerCalls calls = RunAll(Writers(16));
    Report(calls);
    ExpectEveryRecord(calls, 16);
}

TEST_F(Contention, ReadersWithoutALockLoseNoRecordOfWriters) {
    std::vector<Job> jobs = Writers(8);
    jobs.insert(jobs.end(), 4, {L"read", std::to_wstring(4 * CallsOfEach()), 1});
    const WorkerCalls calls = RunAll(jobs);
    Report(calls);
    ExpectEveryRecord(calls, 8);
    EXPECT_EQ("none", DescribeFailures(CallsOf(calls, "read")));
}

} // namespace tsl::test
