// Answers with a record that is taken out of the store: its stored parameters, decoded.
#pragma once

#include "query/ResultArray.h"
#include "store/Database.h"

namespace tsl {

// Appends the container of the row that the statement stands on, and hands the record's second text
// to the host's property sink, whatever comes of that. S_OK; S_FALSE, with nothing appended, when
// the row has no parameters; E_INVALIDARG for fewer than two 64-bit values; else the failure of
// making or filling the container.
HRESULT AppendTakenRecord(const CStatement& row, ContainerList& records);

} // namespace tsl
