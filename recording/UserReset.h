// Empties a table of one user's records.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// Deletes the records that the container's user has in the target's table under its log kind. Takes
// the SQLiteAccess lock. S_OK, also when the container names no user or user 0; E_INVALIDARG
// without a container; else the failure of making the request or of the deletion.
HRESULT ResetUserRecords(const CActionLogStore& store, const Target& target,
                         ITslParamContainer* container);

} // namespace tsl
