// The replay log: every action that reaches the component, trimmed user by user.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"

namespace tsl {

// Writes the record to the replay log. The action is what the host handed in; the record is the
// same container or a copy of it. At every hundredth record id, a user who has a thousand records
// or more there starts afresh first. The action log's database is selected again afterwards, also
// when something throws; the selected table stays the replay table. Returns the failure of
// selecting the table, else the result of the write.
HRESULT WriteReplayRecord(CActionLogStore& store, ITslParamContainer& action,
                          ITslParamContainer& record);

} // namespace tsl
