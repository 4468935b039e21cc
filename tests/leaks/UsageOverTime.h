// What the process has in use before, halfway through and after a long piece of work.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/leaks/ProcessUsage.h"

namespace tsl::test {

class UsageOverTime {
public:
    // Does each half of the work.
    explicit UsageOverTime(const std::function<void()>& workHalf) {
        workHalf();
        m_halfway = ProcessUsage();
        workHalf();
        m_after = ProcessUsage();
    }

    std::string Text() const {
        return "before " + m_before.Text() + "; halfway " + m_halfway.Text() + "; after " +
               m_after.Text();
    }

    // A handle that the system opens for itself comes once; one that is left open by the work comes
    // in both halves. What the heaps themselves commit varies more than what is allocated on them.
    void ExpectFlat(size_t toleratedBytesOnHeaps) const {
        constexpr size_t kToleratedCommitted = 2 * 1024 * 1024;
        const int growth =
            std::min(m_halfway.handles - m_before.handles, m_after.handles - m_halfway.handles);
        EXPECT_LE(growth, 0) << "handles are left open";
        EXPECT_LE(m_after.handles, m_before.handles + 2);
        EXPECT_LT(m_after.heapBytes, m_before.heapBytes + toleratedBytesOnHeaps);
        EXPECT_LT(m_after.committedBytes, m_before.committedBytes + kToleratedCommitted);
    }

private:
    ProcessUsage m_before;
    ProcessUsage m_halfway{/*countHandles=*/false};
    ProcessUsage m_after{/*countHandles=*/false};
};

} // namespace tsl::test
