// Says which calls of the engine fail, and when the power goes. Used by one thread.
#pragma once

#include <array>
#include <optional>

#include "tests/io_faults/FaultKinds.h"

namespace tsl::test {

class FaultSchedule {
public:
    // The nth call of the kind from now on fails, once or with all that follow.
    void FailAt(const FaultKind& kind, int nth, bool fromThenOn);
    // The power goes after the nth change (write, truncation, sync or deletion) from now on.
    void CutPowerAfterChange(int nth);
    void CutPowerNow() { m_powerIsOff = true; }
    // Everything works from now on, and is counted anew.
    void Clear() { *this = FaultSchedule(); }

    // How many calls and changes were made.
    int Calls(IoCall call) const { return m_calls[static_cast<size_t>(call)]; }
    int Changes() const { return m_changes; }

    // How many calls were failed by FailAt.
    int Failed() const { return m_failed; }
    bool PowerIsOff() const { return m_powerIsOff; }

    // For the file system: what becomes of a call; null when it goes well.
    const FaultKind* Meet(IoCall call);
    // For the file system: a change was made.
    void CountChange();

private:
    std::array<int, kIoCalls> m_calls{};
    int m_changes = 0;
    std::optional<FaultKind> m_kind;
    int m_callsLeft = 0;
    bool m_fromThenOn = false;
    int m_failed = 0;
    int m_cutAfterChange = 0;
    bool m_powerIsOff = false;
};

} // namespace tsl::test
