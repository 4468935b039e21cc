// Whether work that goes on for long leaves something behind.
#pragma once

#include <functional>
#include <string>

#include "tests/support/ProcessMeasures.h"

namespace tsl::test {

// The least that a round of work must leave in use to be called a leak.
struct SmallestLeak {
    size_t heapBytes = 1;
    // What the heaps themselves commit varies more than what is allocated on them.
    size_t committedBytes = 2 * 1024 * 1024;
    // Over all rounds: the system opens some for itself, once.
    int handles = 1;
};

// Watches equal rounds of work. What is lost is lost in each of them; caches of the system and the
// allocator's stock of blocks are full after a few. So memory is lost when it grows in every round.
class UsageOverTime {
public:
    // Measures what is in use before the first round.
    explicit UsageOverTime(SmallestLeak smallest, bool countsHandles = true);

    // Does rounds until one leaves nothing behind, a dozen at the most.
    void Repeat(const std::function<void()>& round);
    // Measures what a round has left.
    void EndRound();
    bool IsFlat() const { return m_isFlat; }

    // Fails the test when every round has left something behind, or handles are left open. Tells
    // what was measured.
    std::string ExpectFlat() const;

private:
    SmallestLeak m_smallest;
    bool m_countsHandles;
    int m_handles;
    MemoryUsage m_first = MemoryUsage::Now();
    MemoryUsage m_last = m_first;
    int m_rounds = 0;
    bool m_isFlat = false;
};

} // namespace tsl::test
