#include "tests/support/UsageOverTime.h"

#include <gtest/gtest.h>

namespace tsl::test {

UsageOverTime::UsageOverTime(SmallestLeak smallest, bool countsHandles)
    : m_smallest(smallest), m_countsHandles(countsHandles) {
    m_usages.reserve(32); // so that the list itself does not grow while it is measured
    m_usages.push_back(Measure());
}

void UsageOverTime::Repeat(const std::function<void()>& round) {
    constexpr size_t kMostRounds = 12;
    while (!IsFlat() && m_usages.size() <= kMostRounds && !::testing::Test::HasFatalFailure()) {
        round();
        m_usages.push_back(Measure());
    }
}

UsageOverTime::Usage UsageOverTime::Measure() const {
    return {.memory = MemoryUsage::Now(), .handles = m_countsHandles ? CountHandles() : 0};
}

bool UsageOverTime::IsFlat() const {
    if (m_usages.size() < 3) return false;
    const Usage& before = m_usages[m_usages.size() - 3];
    const Usage& after = m_usages.back();
    return after.memory.heapBytes < before.memory.heapBytes + m_smallest.heapBytes &&
           after.memory.committedBytes < before.memory.committedBytes + m_smallest.committedBytes &&
           after.handles <= before.handles;
}

std::string UsageOverTime::ExpectFlat() const {
    const Usage& before = m_usages.front();
    const Usage& after = m_usages.back();
    const std::string text =
        "handles " + std::to_string(before.handles) + " before, " + std::to_string(after.handles) +
        " after; memory before: " + before.memory.Text() + "; after " +
        std::to_string(m_usages.size() - 1) + " rounds: " + after.memory.Text();
    EXPECT_TRUE(IsFlat()) << "rounds leave something behind: " << text;
    EXPECT_LT(after.handles, before.handles + m_smallest.handles) << "handles are left open";
    return text;
}

} // namespace tsl::test
