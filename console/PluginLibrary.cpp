#include "console/PluginLibrary.h"

#include <bit>

#include "base/Hresult.h"
#include "component/host/Identities.h"

namespace tsl {

CPluginLibrary::CPluginLibrary(const std::wstring& path)
    : m_module(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (!m_module) throw CHresultError(HresultFromLastError());
}

CPluginLibrary::~CPluginLibrary() {
    FreeLibrary(m_module);
}

template <class Function>
Function CPluginLibrary::Find(const char* name) const {
    const FARPROC found = GetProcAddress(m_module, name);
    if (!found) throw CHresultError(HresultFromLastError());
    return std::bit_cast<Function>(found);
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
