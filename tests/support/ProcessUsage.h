// What this process has in use, counted piece by piece: the sums that the system offers are not
// filled in everywhere that these tests run.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tsl::test {

// Open handles. Takes long: each value is tried.
int CountHandles();

struct MemoryUsage {
    // What is allocated on any heap of the process. An allocator that keeps blocks of a size
    // together counts as allocated what it keeps for the next of them. No other thread may run.
    size_t heapBytes = 0;
    // Pages that are committed and not shared with others.
    size_t committedBytes = 0;

    static MemoryUsage Now();
    std::string Text() const;
};

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
