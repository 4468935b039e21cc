// The values of the item that an action is linked to, which a second container inside the action's
// own holds.
#pragma once

#include <string>
#include <vector>

#include "component/host/ITslParamContainer.h"

namespace tsl {

// What was gathered of a linked item.
struct LinkedItemValues {
    std::vector<ULONGLONG> ids;
    std::vector<std::wstring> texts;
};

// Gathers the values of the linked item. S_OK when all of it was read, or there is none;
// E_INVALIDARG when a value is missing, empty where it must not be, or the lists do not match. What
// was gathered until then is kept, and the caller uses it whatever the result.
HRESULT AppendLinkedItemValues(ITslParamContainer& container, LinkedItemValues& gathered);

} // namespace tsl
