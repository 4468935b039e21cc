// The values of the item that an action is linked to, which a second container inside the action's
// own holds.
#pragma once

#include <string_view>
#include <vector>

#include "recording/ValueList.h"

namespace tsl {

// What was gathered of a linked item. Gathered once.
struct LinkedItemValues {
    std::vector<ULONGLONG> ids;
    // In place: the values below own them.
    std::vector<std::wstring_view> texts;

    CVariant firstText;
    CVariant secondText;
    CValueList<BSTR> names;
    CValueList<BSTR> details;
};

// Gathers the values of the linked item. S_OK when all of it was read, or there is none;
// E_INVALIDARG when a value is missing, empty where it must not be, or the lists do not match. What
// was gathered until then is kept, and the caller uses it whatever the result.
HRESULT AppendLinkedItemValues(ITslParamContainer& container, LinkedItemValues& gathered);

} // namespace tsl
