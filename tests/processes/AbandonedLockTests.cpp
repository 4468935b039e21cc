// What it costs the others when a host process is killed while it holds a lock.
#include <algorithm>

#include "tests/processes/ProcessesFixture.h"
#include "tests/support/MutexHolder.h"

namespace tsl::test {

class AbandonedLock : public ProcessesTest {
protected:
    // One host finds the lock abandoned and keeps it for as long as it lives; the others then
    // write. What they did, without the heir's calls.
    static WorkerCalls WriteBesideTheHeir(const wchar_t* lock, const std::wstring& amount) {
        MakeCounterFile(); // else each start would look for an older store, under the locks
        MutexHolder victim(lock);
        WorkerProcess heir(L"write", L"600s", /*number=*/1);
        heir.WaitForStart();
        victim.Kill();
        Sleep(500);
        const WorkerCalls others = RunAll({{L"write", amount, 2}, {L"write", amount, 3}});
        const WorkerCalls heirs = heir.Kill();
        Measured("the heir: " + DescribeTimes(CallsOf(heirs, "notify")));
        EXPECT_GT(SuccessesOf(heirs, "fetch").size(), 100u) << "the heir works on undisturbed";
        return others;
    }

    static void ExpectWaits(const WorkerCalls& calls, std::int64_t least, std::int64_t most) {
        ASSERT_FALSE(calls.empty());
        for (const WorkerCall& call : calls) {
            EXPECT_GE(call.microseconds / 1000, least);
            EXPECT_LT(call.microseconds / 1000, most);
        }
    }
};

TEST_F(AbandonedLock, OfTheDatabasesCostsEachCallItsTimeOut) {
    const WorkerCalls calls = WriteBesideTheHeir(kSqliteAccessLock, InForm(L"1", L"10"));
    Report(calls);
    EXPECT_EQ("none", DescribeFailures(CallsOf(calls, "fetch")));
    EXPECT_EQ("none", DescribeFailures(CallsOf(calls, "notify")));
    ExpectWaits(CallsOf(calls, "notify"), 5900, 12000); // two writes
    ExpectWaits(CallsOf(calls, "fetch"), 2900, 6000);
    ExpectWholeDatabases();
}

TEST_F(AbandonedLock, OfTheCounterCostsEachIdItsTimeOut) {
    const WorkerCalls calls = WriteBesideTheHeir(kLogIdLock, InForm(L"1", L"10"));
    Report(calls);
    const std::vector<UINT32> ids = IdsOf(SuccessesOf(calls, "id"));
    EXPECT_EQ(ids.end(), std::ranges::adjacent_find(ids));
    ExpectWaits(CallsOf(calls, "id"), 9900, 13000);
}

// This lock is waited for without limit. The heir goes on, but keeps it from those who wait until
// its thread ends.
TEST_F(AbandonedLock, OfTheUserIdsKeepsThoseWhoWaitUntilTheHeirEnds) {
    MutexHolder victim(L"Global\\TslIf_Mut_LoginInfo");
    WorkerProcess heir(L"own", L"600s", 1);
    heir.WaitForStart();
    WorkerProcess other(L"own", L"1", 2);
    other.WaitForStart();
    victim.Kill();
    Sleep(InForm(1000u, 20000u));
    EXPECT_FALSE(other.HasEnded());
    EXPECT_GT(SuccessesOf(heir.Kill(), "own").size(), 10u) << "the heir works on undisturbed";
    const WorkerCalls calls = other.Wait();
    Report(calls);
    EXPECT_EQ(1u, SuccessesOf(calls, "own").size());
}

} // namespace tsl::test
