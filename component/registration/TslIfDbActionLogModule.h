// Registers the module on its machine and takes it off again: the class, its application id, and
// the entry in the engine's list of database plug-ins. All of it is for the whole machine and needs
// an administrator. Callable from any thread, with or without COM.
#pragma once

#include <windows.h>

namespace tsl {

class CTslIfDbActionLogModule {
public:
    // The module whose file is registered and whose resources say how.
    explicit CTslIfDbActionLogModule(HMODULE module) noexcept : m_module(module) {}

    // Enters the plug-in list first; a failure there leaves the class as it was. S_OK, or the first
    // failure.
    HRESULT RegisterServer() const;

    // Goes on to the end whatever fails. S_OK, also for what was not registered, or the failure of
    // removing the class; what becomes of the plug-in list is not told.
    HRESULT UnregisterServer() const;

private:
    HMODULE m_module;
};

} // namespace tsl
