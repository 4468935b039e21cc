// Answers with whole records: one container per row.
#pragma once

#include "query/ResultArray.h"
#include "store/Database.h"

namespace tsl {

// Appends the container of the row that the statement stands on. Returns the failure of making or
// filling it; nothing is appended then.
HRESULT AppendRecord(const CStatement& row, ContainerList& records);

} // namespace tsl
