// What this process has in use at a moment, to be compared with a later one.
#pragma once

#include <string>

#include "tests/support/ProcessMeasures.h"

namespace tsl::test {

struct ProcessUsage {
    // Counting the handles takes far longer than the rest; without it their number is 0.
    explicit ProcessUsage(bool countHandles = true) : handles(countHandles ? CountHandles() : 0) {}

    int handles;
    size_t heapBytes = AllocatedHeapBytes();
    size_t committedBytes = CommittedPrivateBytes();

    std::string Text() const {
        return std::to_string(handles) + " handles, " + std::to_string(heapBytes) +
               " bytes on heaps, " + std::to_string(committedBytes) + " private bytes committed";
    }
};

} // namespace tsl::test
