// Empties a table of one user's records.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"

namespace tsl {

// Deletes the records that the container's user has in the selected table under the store's log
// kind. Takes the SQLiteAccess lock. S_OK, also when the container names no user or user 0;
// E_INVALIDARG without a container; else the failure of making the request or of the deletion.
HRESULT ResetUserRecords(CActionLogStore& store, ITslParamContainer* container);

} // namespace tsl
