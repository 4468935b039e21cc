#include "console/PluginLibrary.h"

#include "base/Hresult.h"
#include "component/host/Identities.h"

namespace tsl {

CPluginLibrary::CPluginLibrary(const std::wstring& path)
    : m_library(path, LOAD_WITH_ALTERED_SEARCH_PATH) {
    if (!m_library) throw CHresultError(HresultFromLastError());
}

template <class Function>
Function CPluginLibrary::Find(const char* name) const {
    const auto found = m_library.Find<Function>(name);
    if (!found) throw CHresultError(HresultFromLastError());
    return found;
}

HRESULT CPluginLibrary::ClassObject(REFCLSID clsid, REFIID iid, void** result) const {
    return Find<decltype(&DllGetClassObject)>("DllGetClassObject")(clsid, iid, result);
}

CComPtr<ITslPluginDb2> CPluginLibrary::CreatePlugin() const {
    CComPtr<IClassFactory> factory;
    HRESULT result = ClassObject(CLSID_PluginDb, IID_IClassFactory, factory.PutVoid());
    CComPtr<ITslPluginDb2> plugin;
    if (SUCCEEDED(result)) {
        result = factory->CreateInstance(/*outer=*/nullptr, IID_ITslPluginDb2, plugin.PutVoid());
    }
    if (FAILED(result)) throw CHresultError(result);
    return plugin;
}

bool CPluginLibrary::CanUnload() const {
    return Find<decltype(&DllCanUnloadNow)>("DllCanUnloadNow")() == S_OK;
}

} // namespace tsl
