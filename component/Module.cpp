// The module's entry points.
#include "component/Module.h"

#include "component/ExceptionState.h"
#include "component/PluginDb.h"
#include "component/com/ComClassFactory.h"
#include "component/registration/TslIfDbActionLogModule.h"

namespace tsl {

namespace {

constinit HMODULE g_module = nullptr;
constinit CComClassFactory g_pluginDbFactory{&CPluginDb::CreateInstance};

} // namespace

HMODULE ComponentModule() noexcept {
    return g_module;
}

} // namespace tsl

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* reserved) {
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        tsl::g_module = module;
        return tsl::StartExceptionStates();
    case DLL_THREAD_DETACH:
        tsl::EndExceptionStateOfThread();
        break;
    case DLL_PROCESS_DETACH:
        if (!reserved) tsl::EndExceptionStates(); // else the process ends, and all of it
        break;
    default:
        break;
    }
    return TRUE;
}

// The class factory of PluginDb. CLASS_E_CLASSNOTAVAILABLE for any other class; the out-pointer is
// null after a failure.
STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
    return tsl::AtBoundary([&] {
        if (!result) return E_POINTER;
        *result = nullptr;
        if (clsid != tsl::CPluginDb::ObjectClsid()) return CLASS_E_CLASSNOTAVAILABLE;
        return tsl::g_pluginDbFactory.QueryInterface(iid, result);
    });
}

// S_OK when nothing of the module is in use, else S_FALSE.
STDAPI DllCanUnloadNow() {
    return tsl::g_comModule.CanUnload() ? S_OK : S_FALSE;
}

// Registers the class for the machine and enters it in the engine's list. Needs an administrator.
STDAPI DllRegisterServer() {
    return tsl::AtBoundary(
        [] { return tsl::CTslIfDbActionLogModule(tsl::g_module).RegisterServer(); });
}

// Takes all of it off again, as far as it is there.
STDAPI DllUnregisterServer() {
    return tsl::AtBoundary(
        [] { return tsl::CTslIfDbActionLogModule(tsl::g_module).UnregisterServer(); });
}
