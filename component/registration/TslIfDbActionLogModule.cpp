#include "component/registration/TslIfDbActionLogModule.h"

#include <iterator>

#include "component/host/Identities.h"
#include "component/registration/PluginList.h"
#include "component/registration/RegistryScripts.h"

namespace tsl {

namespace {

constexpr UINT kModuleNameString = 100;

} // namespace

HRESULT CTslIfDbActionLogModule::RegisterServer() const {
    wchar_t name[64];
    const int length =
        LoadStringW(m_module, kModuleNameString, name, static_cast<int>(std::size(name)));
    const HRESULT entered =
        AddToPluginList(CLSID_PluginDb, kPluginTypeToRegister, length > 0 ? name : nullptr);
    if (FAILED(entered)) return entered;
    return RunRegistryScripts(m_module, {kAppIdScript, kClassScript}, ScriptMode::Register);
}

HRESULT CTslIfDbActionLogModule::UnregisterServer() const {
    RemoveFromPluginList(CLSID_PluginDb, kPluginTypeToUnregister);
    return RunRegistryScripts(m_module, {kClassScript, kAppIdScript}, ScriptMode::Unregister);
}

} // namespace tsl
