// The database plug-ins that are registered on this machine, as the engine finds them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "base/ComPtr.h"
#include "component/host/ITslPluginDb.h"

namespace tsl {

struct RegisteredPlugin {
    std::wstring classText; // the name of its key, a GUID in braces
    std::wstring moduleId;
    DWORD enable = 0;
    DWORD order = 0;
    DWORD type = 0;
    std::wstring path; // of its DLL; empty when the class is not registered

    bool IsEnabled() const { return enable != 0; }
};

// In the engine's order, by their order values; equal ones by their classes, so that the order is
// always the same. None when nothing is registered; throws CHresultError when the list cannot be
// read.
std::vector<RegisteredPlugin> ReadRegisteredPlugins();

// Creates a registered plug-in as the engine does. REQUIRES: COM is initialised on the thread.
HRESULT CreateRegisteredPlugin(const RegisteredPlugin& plugin, CComPtr<ITslPluginDb2>& created);

} // namespace tsl
