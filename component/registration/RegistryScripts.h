// Runs the registry scripts of the module: the application id and the class.
#pragma once

#include <windows.h>

#include <initializer_list>

namespace tsl {

// Resource numbers of the scripts.
inline constexpr UINT kAppIdScript = 101;
inline constexpr UINT kClassScript = 102;

enum class ScriptMode { Register, Unregister };

// Runs scripts of the module one after the other. Registration stops at the first failure;
// unregistration goes on and returns the first failure. Keys that are not there are no failure of
// an unregistration. Needs no COM initialisation. Returns the failure of finding the module's file,
// of loading the registrar, or of the scripts.
HRESULT RunRegistryScripts(HMODULE module, std::initializer_list<UINT> scripts, ScriptMode mode);

} // namespace tsl
