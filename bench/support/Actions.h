// The actions that are recorded, as a host reports them.
#pragma once

#include "console/ParamContainer.h"

namespace tsl::bench {

// All actions and all records are of this user.
inline constexpr UINT32 kUser = 1;

// An action without an id: a name, an application, a time and a value or two of each kind.
CComPtr<CTslParamContainer> MakeAction(std::wstring_view name);

// The same with a linked item of this many entries.
CComPtr<CTslParamContainer> MakeActionWithLinkedItem(std::wstring_view name, size_t entries);

// Gives an action its record id, which replaces the one it had.
void SetRecordId(CTslParamContainer& action, UINT32 recordId);

} // namespace tsl::bench
