// The replay log: every action that reaches the component, trimmed user by user.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// Writes the record to the replay log of the log kind. The action is what the host handed in; the
// record is the same container or a copy of it. At every hundredth record id, a user who has a
// thousand records or more there starts afresh first; whatever comes of that, the record is
// written. Returns the result of the write.
HRESULT WriteReplayRecord(const CActionLogStore& store, UINT32 logKind, ITslParamContainer& action,
                          ITslParamContainer& record);

} // namespace tsl
