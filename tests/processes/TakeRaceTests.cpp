// Records that several host processes take at the same time.
#include "tests/processes/ProcessesFixture.h"

namespace tsl::test {

class TakeRace : public ProcessesTest {
protected:
    static constexpr UINT32 kTakers = 8;

    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(ProcessesTest::SetUp());
        const WorkerCalls kept = RunAll({{L"keep", std::to_wstring(Records()), /*number=*/1}});
        EXPECT_EQ(IdsUpTo(Records()), IdsOf(SuccessesOf(kept, "notify")));
    }

    static UINT32 Records() { return InForm(160u, 2000u); }

    // Ids that nobody was given, and how often each of the others was given once more than once.
    struct Deliveries {
        std::vector<UINT32> lost;
        UINT32 repeated = 0;
    };
    static Deliveries Count(const WorkerCalls& calls) {
        std::vector<UINT32> times(Records() + 1);
        for (const UINT32 id : IdsOf(SuccessesOf(calls, "take")))
            ++times.at(id);
        Deliveries deliveries;
        for (UINT32 id = 1; id <= Records(); ++id) {
            if (times[id] == 0) deliveries.lost.push_back(id);
            if (times[id] > 1) deliveries.repeated += times[id] - 1;
        }
        return deliveries;
    }

    static void ExpectNothingLostOrLeft(const Deliveries& deliveries) {
        EXPECT_EQ(std::vector<UINT32>(), deliveries.lost);
        EXPECT_EQ(std::vector<UINT32>(), StoredIds(ActionLogPath(), kTakenRows));
        ExpectWholeDatabases();
    }
};

TEST_F(TakeRace, OfDividedRecordsDeliversEachOnce) {
    std::vector<Job> jobs;
    const UINT32 share = Records() / kTakers;
    for (UINT32 taker = 0; taker < kTakers; ++taker)
        jobs.push_back({L"take", std::to_wstring(share), 1 + taker * share});
    const WorkerCalls calls = RunAll(jobs);
    Report(calls);
    const Deliveries deliveries = Count(calls);
    EXPECT_EQ(0u, deliveries.repeated);
    ExpectNothingLostOrLeft(deliveries);
}

// The fetch takes no lock, so a record can reach several takers before one of them deletes it.
TEST_F(TakeRace, OfTheSameRecordsLosesNone) {
    const WorkerCalls calls =
        RunAll(std::vector<Job>(kTakers, {L"take", std::to_wstring(Records()), 1}));
    Report(calls);
    const Deliveries deliveries = Count(calls);
    Measured(std::to_string(Records()) + " records asked for by " + std::to_string(kTakers) + ": " +
             std::to_string(deliveries.repeated) + " further deliveries of one");
    ExpectNothingLostOrLeft(deliveries);
}

} // namespace tsl::test
