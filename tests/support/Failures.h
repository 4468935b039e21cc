// The failures that tests expect or cause, by the names of what went wrong. Written as numbers, as
// hosts see them, not taken from the code under test.
#pragma once

#include <windows.h>

namespace tsl::test {

// The system's.
inline constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070002);
inline constexpr HRESULT kPathNotFound = static_cast<HRESULT>(0x80070003);
inline constexpr HRESULT kAccessDenied = static_cast<HRESULT>(0x80070005);
inline constexpr HRESULT kSharingViolation = static_cast<HRESULT>(0x80070020);
inline constexpr HRESULT kAlreadyExists = static_cast<HRESULT>(0x800700B7);

// What the engine's results become.
inline constexpr HRESULT kEngineError = static_cast<HRESULT>(0x80041600);
inline constexpr HRESULT kEngineBusy = static_cast<HRESULT>(0x80041604);
inline constexpr HRESULT kEngineReadOnly = static_cast<HRESULT>(0x80041607);
inline constexpr HRESULT kEngineIoError = static_cast<HRESULT>(0x80041609);
inline constexpr HRESULT kEngineCorrupt = static_cast<HRESULT>(0x8004160A);
inline constexpr HRESULT kEngineFull = static_cast<HRESULT>(0x8004160C);
inline constexpr HRESULT kEngineCannotOpen = static_cast<HRESULT>(0x8004160D);
inline constexpr HRESULT kEngineConstraint = static_cast<HRESULT>(0x80041612);
inline constexpr HRESULT kEngineNotADatabase = static_cast<HRESULT>(0x80041619);
inline constexpr HRESULT kEngineNoRow = static_cast<HRESULT>(0x80041701);

// Nobody's but the test's own.
inline constexpr HRESULT kFailure = static_cast<HRESULT>(0x8004ABCD);
inline constexpr HRESULT kRefused = E_ACCESSDENIED;

} // namespace tsl::test
