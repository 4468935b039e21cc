// Decides into which tables an incoming action is written.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"

namespace tsl {

// Writes the action to the action log and to the replay log. REQUIRES: the action log table is
// selected. Afterwards the action log's database is selected again, also when something throws; the
// selected table stays the replay table. Returns the result of the write to the replay log.
HRESULT DispatchAction(CActionLogStore& store, ITslParamContainer* container);

} // namespace tsl
