// Turns one action into one row of the table that the store has selected.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"

namespace tsl {

// Writes the container's action into the selected table of the selected database, replacing an
// older row of the same record id. Takes the SQLiteAccess lock; a wait that times out does not stop
// it.
//
// S_OK when the row was written, and when the record was skipped: without a container, without a
// record id other than 0, a name that is text, or a user id. E_POINTER without an engine; failures
// of the open, of reading the container and of the engine are returned, and no row is written or
// lost then.
HRESULT WriteActionRecord(CActionLogStore& store, ITslParamContainer* container);

} // namespace tsl
