// Turns one action into one row of a table.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// Writes the container's action into the target's table, replacing an older row of the same record
// id. Reads the container first; then takes the SQLiteAccess lock, of which a wait that times out
// does not stop it.
//
// S_OK when the row was written, and when the record was skipped: without a container, without a
// record id other than 0, a name that is text, or a user id. E_POINTER without an engine; failures
// of the open, of reading the container and of the engine are returned, and no row is written or
// lost then.
HRESULT WriteActionRecord(const CActionLogStore& store, const Target& target,
                          ITslParamContainer* container);

} // namespace tsl
