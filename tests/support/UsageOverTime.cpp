#include "tests/support/UsageOverTime.h"

#include <gtest/gtest.h>

namespace tsl::test {

UsageOverTime::UsageOverTime(SmallestLeak smallest, bool countsHandles)
    : m_smallest(smallest), m_countsHandles(countsHandles),
      m_handles(countsHandles ? CountHandles() : 0) {}

void UsageOverTime::Repeat(const std::function<void()>& round) {
    constexpr int kMostRounds = 12;
    while (!m_isFlat && m_rounds < kMostRounds && !::testing::Test::HasFatalFailure()) {
        round();
        EndRound();
    }
}

void UsageOverTime::EndRound() {
    const MemoryUsage before = m_last;
    m_last = MemoryUsage::Now();
    ++m_rounds;
    if (m_last.heapBytes < before.heapBytes + m_smallest.heapBytes &&
        m_last.committedBytes < before.committedBytes + m_smallest.committedBytes) {
        m_isFlat = true;
    }
}

std::string UsageOverTime::ExpectFlat() const {
    const int handles = m_countsHandles ? CountHandles() : 0;
    const std::string text = "handles " + std::to_string(m_handles) + " before, " +
                             std::to_string(handles) + " after; memory before: " + m_first.Text() +
                             "; after " + std::to_string(m_rounds) + " rounds: " + m_last.Text();
    EXPECT_TRUE(m_isFlat) << "each round leaves memory behind: " << text;
    EXPECT_LT(handles, m_handles + m_smallest.handles) << "handles are left open";
    return text;
}

} // namespace tsl::test
