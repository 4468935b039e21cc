// Whether work that goes on for long leaves something behind.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/ProcessMeasures.h"

namespace tsl::test {

// The least that a round of work must leave in use to be called a leak.
struct SmallestLeak {
    size_t heapBytes = 1;
    // What the heaps themselves commit varies more than what is allocated on them.
    size_t committedBytes = 2 * 1024 * 1024;
    // Over all rounds: the system opens some for itself, once.
    int handles = 1;

    // So many blocks of C++, of eight bytes or more. With the guarded heap, where each has a page
    // of its own, they are seen by their pages.
    // That is up to the program, so this is compiled with it.
    static SmallestLeak OfBlocks(size_t blocks) {
        SmallestLeak smallest{.heapBytes = 8 * blocks};
#ifdef TSL_GUARDED_HEAP
        constexpr size_t kPage = 4096;
        smallest.committedBytes = kPage * blocks;
#endif
        return smallest;
    }
};

// Watches equal rounds of work. What is lost is lost in each of them; caches of the system and the
// allocator's stock of blocks are full after a few. So nothing is lost when two rounds, one after
// the other, together leave less than one that loses something.
class UsageOverTime {
public:
    // Measures what is in use before the first round.
    explicit UsageOverTime(SmallestLeak smallest, bool countsHandles = true);

    // Does rounds until two leave nothing behind, a dozen at the most.
    void Repeat(const std::function<void()>& round);

    // Fails the test when each two rounds have left something behind. Tells what was measured.
    std::string ExpectFlat() const;

private:
    struct Usage {
        MemoryUsage memory;
        int handles = 0;
    };
    Usage Measure() const;
    bool IsFlat() const;

    SmallestLeak m_smallest;
    bool m_countsHandles;
    std::vector<Usage> m_usages; // before the first round, and after each
};

} // namespace tsl::test
