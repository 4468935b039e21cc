// Answers with a record that is taken out of the store: its stored parameters, decoded.
#pragma once

#include <string>

#include "query/ResultArray.h"

namespace tsl {

// Appends the container of the record with the stored parameters, and hands the record's second
// text to the host's property sink, whatever comes of that. S_OK; E_INVALIDARG for fewer than two
// 64-bit values; else the failure of making or filling the container.
HRESULT AppendTakenRecord(const std::wstring& parameters, ContainerList& records);

} // namespace tsl
