// What the figures of a large store cost.
#include <algorithm>
#include <chrono>
#include <stop_token>
#include <thread>

#include "store/StoreLocks.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/StoreLock.h"
#include "upkeep/statistics/Statistics.h"

namespace tsl::test {

namespace {

using Clock = std::chrono::steady_clock;

long long MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// A host that wants the lock again and again, and how long it had to wait at the most.
class WaitingHost {
public:
    WaitingHost() : m_thread([this](std::stop_token stop) { Run(stop); }) {}

    long long LongestWait() {
        m_thread.request_stop();
        m_thread.join();
        return m_longest;
    }

private:
    void Run(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const auto start = Clock::now();
            {
                const CDatabaseLock lock;
                m_longest = std::max(m_longest, MillisecondsSince(start));
            }
            Sleep(1);
        }
    }

    long long m_longest = 0;
    std::jthread m_thread;
};

using LargeStore = StoreTest;

TEST_F(LargeStore, FiguresTakeSecondsAndHostsWaitForMoments) {
    const int records = InForm(20'000, 500'000);
    MakeStoreFolder();
    const StorePaths store = StoreIn(StoreFolder().wstring());
    MakeSampleStore(store);
    FileDatabase(store.actionLog)
        .Query("WITH RECURSIVE n(i) AS (SELECT 601 UNION ALL SELECT i + 1 FROM n WHERE i < " +
               std::to_string(records) +
               ") INSERT INTO TslIf_DbActionLog SELECT i, 0, i * 7 % 12, NULL, 1 + i % 5, "
               "'action' || (i * i % 37), 'ullValues={' || i || '}&stringValues={' || "
               "hex(zeroblob(40)) || '}', 44000 + i / 250.0, 44000 + i / 250.0, NULL, NULL, 0, 1 "
               "FROM n");
    WaitingHost host;
    const auto start = Clock::now();
    const StoreFigures figures = ReadStoreFigures(store);
    const long long taken = MillisecondsSince(start);
    const long long waited = host.LongestWait();
    EXPECT_EQ(records, figures.ActionLog().records);
    EXPECT_EQ(records, figures.ActionLog().lastId);
    Measured("figures of " + std::to_string(records) + " records: " + std::to_string(taken) +
             " ms; a host waited for the lock " + std::to_string(waited) + " ms at the most");
    EXPECT_LT(taken, 30'000);
    EXPECT_LT(waited, kSqliteAccessTimeoutMilliseconds);
}

} // namespace

} // namespace tsl::test
