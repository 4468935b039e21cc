// Deletes stored records. Opens the database for itself and takes the SQLiteAccess lock, after
// everything has been read from the container.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// Deletes of the target's table what the container's keys choose: one record by its id; else a
// range of record ids, when such a bound is there; else a range of times. S_OK also when no record
// matched, and when the container names no user for a range. E_INVALIDARG without a container,
// E_POINTER without an engine; else the failure of the open, of the container, or the mapped one of
// the engine. A range of record ids reports each failure of the database as E_POINTER.
HRESULT DeleteRecords(const CActionLogStore& store, const Target& target,
                      ITslParamContainer* container);

} // namespace tsl
