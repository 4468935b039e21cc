// The log kinds that are told apart. Stored in every record: not to be changed.
#pragma once

#include <windows.h>

namespace tsl {

// Records of this kind carry the linked item's values and the moment of the action.
inline constexpr UINT32 kLogKindWithLinkedItems = 2;

} // namespace tsl
