#include "tests/io_faults/FaultSchedule.h"

#include <algorithm>
#include <iterator>

namespace tsl::test {

void FaultSchedule::FailAt(const FaultKind& kind, int nth, bool fromThenOn) {
    Clear();
    m_kind = kind;
    m_callsLeft = nth;
    m_fromThenOn = fromThenOn;
}

void FaultSchedule::CutPowerAfterChange(int nth) {
    Clear();
    m_cutAfterChange = nth;
}

const FaultKind* FaultSchedule::Meet(IoCall call) {
    ++m_calls[static_cast<size_t>(call)];
    if (m_powerIsOff) {
        return std::ranges::find(kFaultKinds, call, &FaultKind::call);
    }
    if (!m_kind || m_kind->call != call) return nullptr;
    if (m_callsLeft > 0) --m_callsLeft;
    const bool isDue = m_callsLeft == 0 && (m_fromThenOn || m_failed == 0);
    if (!isDue) return nullptr;
    ++m_failed;
    return &*m_kind;
}

void FaultSchedule::CountChange() {
    if (++m_changes == m_cutAfterChange) m_powerIsOff = true;
}

} // namespace tsl::test
