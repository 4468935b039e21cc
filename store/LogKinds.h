// The log kinds that are told apart. Stored in every record: not to be changed.
#pragma once

#include <windows.h>

namespace tsl {

// A delete action of this kind also leaves a record that can be taken later. Older stores knew no
// other kind of ordinary records.
inline constexpr UINT32 kLogKindOfKeptRecords = 1;

// Records of this kind carry the linked item's values and the moment of the action, and commands
// that name no user mean the one that the system knows; under other kinds they mean user 1.
inline constexpr UINT32 kLogKindOfSystemUsers = 2;

// What the locations of an older store become.
inline constexpr UINT32 kLogKindOfLocations = 4;

// Kinds that only keep some actions out of the action log.
inline constexpr UINT32 kLogKindOfPlaying = 8;
inline constexpr UINT32 kLogKindOfNetworks = 16;

} // namespace tsl
