// Host processes that are killed wherever they are.
#include <algorithm>
#include <random>

#include "tests/processes/ProcessesFixture.h"

namespace tsl::test {

namespace {

std::vector<UINT32> Without(const std::vector<UINT32>& ids, const std::vector<UINT32>& known) {
    std::vector<UINT32> rest;
    std::ranges::set_difference(ids, known, std::back_inserter(rest));
    return rest;
}

} // namespace

class Kills : public ProcessesTest {
protected:
    // What the killed process was told, against what is stored of it. It has a user of its own.
    void Check(UINT32 user, const WorkerCalls& calls) {
        const std::string ofUser = "UserId = " + std::to_string(user);
        const std::vector<UINT32> logged = StoredIds(ActionLogPath(), kActionLogRows, ofUser);
        const std::vector<UINT32> replayed = StoredIds(ReplayPath(), kReplayRows, ofUser);
        const std::vector<UINT32> fetched = IdsOf(SuccessesOf(calls, "fetch"));
        const std::vector<UINT32> notified = IdsOf(SuccessesOf(calls, "notify"));
        EXPECT_EQ(std::vector<UINT32>(), Without(fetched, logged));
        EXPECT_EQ(std::vector<UINT32>(), Without(notified, replayed));
        EXPECT_LE(Without(logged, notified).size(), 1u);
        EXPECT_LE(Without(replayed, notified).size(), 1u);
        m_untold += Without(notified, logged).size();
        m_extra += Without(logged, notified).size();
    }

    // Ids without a record of an action that Notify took.
    size_t m_untold = 0;
    size_t m_extra = 0;
};

TEST_F(Kills, LoseNothingThatWasAcknowledgedAndRepeatNoId) {
    constexpr size_t kAtOnce = 8;
    const UINT32 kills = InForm(60u, 1000u);
    std::mt19937 random(20261121);
    std::vector<WorkerProcess> running;
    WorkerCalls all;
    std::map<UINT32, WorkerCalls> told;
    for (UINT32 user = 1; user <= kills; ++user) {
        running.emplace_back(L"write", L"600s", user);
        if (running.size() < kAtOnce) continue;
        Sleep(std::uniform_int_distribution<DWORD>(5, 80)(random));
        const size_t victim = std::uniform_int_distribution<size_t>(0, kAtOnce - 1)(random);
        told[running[victim].Number()] = running[victim].Kill();
        running.erase(running.begin() + static_cast<ptrdiff_t>(victim));
    }
    for (WorkerProcess& process : running)
        told[process.Number()] = process.Kill();
    for (const auto& [user, calls] : told) {
        Check(user, calls);
        all.insert(all.end(), calls.begin(), calls.end());
    }
    Report(all);
    Measured(std::to_string(kills) + " kills: " + std::to_string(m_extra) + " extra rows, " +
             std::to_string(m_untold) + " records of the action log lost untold");
    const std::vector<UINT32> ids = IdsOf(SuccessesOf(all, "id"));
    ASSERT_GT(ids.size(), kills / 2) << "they were killed before they did anything";
    EXPECT_EQ(ids.end(), std::ranges::adjacent_find(ids)) << "an id was handed out twice";
    EXPECT_EQ(0u, m_untold);
    ExpectWholeDatabases();

    const WorkerCalls after = RunAll({{L"write", L"3", kills + 1}, {L"write", L"3", kills + 2}});
    EXPECT_EQ(6u, SuccessesOf(after, "fetch").size()) << "whoever starts then has a sound store";
    EXPECT_GT(IdsOf(CallsOf(after, "id")).front(), ids.back());
}

} // namespace tsl::test
