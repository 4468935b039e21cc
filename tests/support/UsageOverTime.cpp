#include "tests/support/UsageOverTime.h"

#include <gtest/gtest.h>

namespace tsl::test {

namespace {

// An allocator keeps a stock of blocks of a size when that has been asked for often. It may begin
// to now, for all small sizes, and not in the middle of the rounds.
void MakeStocks() {
    constexpr size_t kBlocks = 32;
    constexpr size_t kLargest = 4096;
    std::vector<void*> blocks(kBlocks);
    for (const HANDLE heap : ProcessHeaps()) {
        for (size_t size = 8; size <= kLargest; size += 16) {
            for (void*& block : blocks)
                block = HeapAlloc(heap, 0, size);
            for (void* const block : blocks)
                HeapFree(heap, 0, block);
        }
    }
}

} // namespace

UsageOverTime::UsageOverTime(SmallestLeak smallest, bool countsHandles)
    : m_smallest(smallest), m_countsHandles(countsHandles) {
    MakeStocks();
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
