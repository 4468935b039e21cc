// The log kinds that are told apart. Stored in every record: not to be changed.
#pragma once

#include <windows.h>

namespace tsl {

// Records of this kind carry the linked item's values and the moment of the action, and commands
// that name no user mean the one that the system knows; under other kinds they mean user 1.
inline constexpr UINT32 kLogKindOfSystemUsers = 2;

} // namespace tsl
