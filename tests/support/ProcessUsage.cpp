#include "tests/support/ProcessUsage.h"

#include <gtest/gtest.h>

#include <vector>

namespace tsl::test {

namespace {

size_t AllocatedHeapBytes() {
    std::vector<HANDLE> heaps(64);
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    size_t bytes = 0;
    for (const HANDLE heap : heaps) {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
        }
    }
    return bytes;
}

size_t CommittedPrivateBytes() {
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* address = nullptr; VirtualQuery(address, &region, sizeof region) != 0;
         address = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    }
    return bytes;
}

} // namespace

int CountHandles() {
    // Values beyond this would need thousands of open ones.
    constexpr ULONG_PTR kHighestTried = 0x20000;
    int count = 0;
    for (ULONG_PTR value = 4; value <= kHighestTried; value += 4) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
    }
    return count;
}

MemoryUsage MemoryUsage::Now() {
    return {.heapBytes = AllocatedHeapBytes(), .committedBytes = CommittedPrivateBytes()};
}

std::string MemoryUsage::Text() const {
    return std::to_string(heapBytes) + " bytes on heaps, " + std::to_string(committedBytes) +
           " private bytes committed";
}

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
