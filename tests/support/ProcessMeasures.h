// What this process has in use, counted piece by piece: the sums that the system offers are not
// filled in everywhere that these tests run.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tsl::test {

// Open handles. Takes long: each value is tried.
int CountHandles();

std::vector<HANDLE> ProcessHeaps();

struct MemoryUsage {
    // What is allocated on any heap of the process. An allocator that keeps blocks of a size
    // together counts as allocated what it keeps for the next of them. No other thread may run.
    size_t heapBytes = 0;
    // Pages that are committed and not shared with others.
    size_t committedBytes = 0;

    static MemoryUsage Now();
    std::string Text() const;
};

} // namespace tsl::test
