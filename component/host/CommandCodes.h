// The 64-bit codes that select an operation. Part of the contract with hosts: not to be changed.
#pragma once

#include <windows.h>

namespace tsl {

// Notify
inline constexpr UINT64 kCommandRecordAction = 0x0200000103000000;

// Request
inline constexpr UINT64 kCommandNextRecordId = 0x0400000102000000;
inline constexpr UINT64 kCommandQueryIds = 0x0400000801000000;
inline constexpr UINT64 kCommandQueryRecords = 0x0400000901000000;
inline constexpr UINT64 kCommandQueryAllIds = 0x0400000b01000000;
inline constexpr UINT64 kCommandTakeRecord = 0x0400000501000000;

// Delete
inline constexpr UINT64 kCommandDeleteRecords = 0x0400000a01000000;

// Stamped on the properties that a content move writes back to the host's content store.
inline constexpr UINT64 kCommandContentProperty = 0x0400001101000000;

} // namespace tsl
