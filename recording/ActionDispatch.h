// Decides what becomes of an incoming action.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"

namespace tsl {

// Records the action where its name and the store's log kind say, and carries out the few actions
// that change stored data or the host's content: a reset empties the user's records, a content move
// rewrites the host's content items, a delete action can leave a record to be taken later. Every
// action goes to the replay log.
//
// REQUIRES: the action log table of the action log's database is selected. Afterwards that database
// is selected again, also when something throws; the selected table stays the replay table. Takes
// the SQLiteAccess lock for each table it works on, and none while it calls the host's content
// store. Returns the result of the write to the replay log; the host is not told of the others.
HRESULT DispatchAction(CActionLogStore& store, ITslParamContainer& action);

} // namespace tsl
