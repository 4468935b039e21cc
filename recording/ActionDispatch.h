// Decides what becomes of an incoming action.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// Records the action where its name and the target's log kind say, and carries out the few actions
// that change stored data or the host's content: a reset empties the user's records, a content move
// rewrites the host's content items, a delete action can leave a record to be taken later. Every
// action goes to the replay log.
//
// The target is the table for ordinary actions. Takes the SQLiteAccess lock for each table it works
// on, and none while it calls the host. Each step stands by itself: whatever fails in one, or
// raises, the next is done. Returns the result of the write to the replay log; the host is not told
// of the others. Throws when the name of the action cannot be read for want of memory, before
// anything is done.
HRESULT DispatchAction(const CActionLogStore& store, const Target& target,
                       ITslParamContainer& action);

} // namespace tsl
