// The record-id counter, raised for records that bring their ids along.
#pragma once

#include <windows.h>

#include <string>

namespace tsl {

// Makes sure that ids handed out from now on are above the id. The counter never goes back. Takes
// both locks. Throws CFailure, also when the file is not there.
void RaiseCounterTo(const std::wstring& counterFile, UINT32 id);

} // namespace tsl
