// The engine's lists of plug-ins in the registry: how a host finds the component.
#pragma once

#include <windows.h>

namespace tsl {

// The list that an entry belongs to stands in bits 23..16 of a type word: 0x01 for database
// plug-ins, 0x02 for engine plug-ins. The other bits are stored and not read here.
inline constexpr DWORD kPluginTypeToRegister = 0x0001001F;
inline constexpr DWORD kPluginTypeToUnregister = 0x0001000F;

// Enters the class in its list, or renews its entry. Stops at the first failure. S_OK; E_INVALIDARG
// for a type of no list; ERROR_INVALID_DATA as an HRESULT for a null module id; else the Win32
// error of the registry.
HRESULT AddToPluginList(REFCLSID clsid, DWORD type, const wchar_t* moduleId);

// Takes the class's entry, with everything below it, out of its list, and removes a list that is
// then empty. The host's own key stays. S_OK, also when there was no such entry; E_INVALIDARG for a
// type of no list; else the Win32 error of opening the keys or of asking for what is left.
HRESULT RemoveFromPluginList(REFCLSID clsid, DWORD type);

} // namespace tsl
