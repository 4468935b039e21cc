// The component as a host loads it: the DLL, its class factory, its objects. Used by one thread.
#pragma once

#include <string>

#include "base/ComPtr.h"
#include "base/LoadedLibrary.h"
#include "component/host/ITslPluginDb.h"

namespace tsl {

// Keeps the DLL loaded while it lives; release every object first.
class CPluginLibrary {
public:
    // Throws the Win32 error of a failed load as an HRESULT.
    explicit CPluginLibrary(const std::wstring& path);

    // The class factory of any class of the DLL.
    HRESULT ClassObject(REFCLSID clsid, REFIID iid, void** result) const;

    // A new plug-in object. Throws the failure of the factory.
    CComPtr<ITslPluginDb2> CreatePlugin() const;

    // Whether nothing of the DLL is in use.
    bool CanUnload() const;

private:
    template <class Function>
    Function Find(const char* name) const;

    CLoadedLibrary m_library;
};

} // namespace tsl
