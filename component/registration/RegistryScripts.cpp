#include "component/registration/RegistryScripts.h"

#include <string>

#include "base/ComPtr.h"
#include "base/Hresult.h"
#include "base/LoadedLibrary.h"
#include "component/registration/Registrar.h"
#include "files/Paths.h"

namespace tsl {

namespace {

constexpr wchar_t kScriptType[] = L"REGISTRY";
constexpr wchar_t kAppId[] = L"{1F3BD67A-CA6F-45A4-84E4-76B0C0505349}";

// Texts stand in single quotes in a script.
std::wstring DoubleSingleQuotes(const std::wstring& text) {
    std::wstring doubled;
    for (const wchar_t character : text) {
        if (character == L'\'') doubled += character;
        doubled += character;
    }
    return doubled;
}

// From the system folder, so that no other atl.dll on the way is taken for it.
std::wstring RegistrarPath() {
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
    return folder + L"\\atl.dll";
}

HRESULT CreateRegistrar(const CLoadedLibrary& library, CComPtr<IRegistrar>& registrar) {
    const auto getClassObject =
        library.Find<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>("DllGetClassObject");
    if (!getClassObject) return HresultFromLastError();
    CComPtr<IClassFactory> factory;
    const HRESULT found = getClassObject(CLSID_Registrar, IID_IClassFactory, factory.PutVoid());
    if (FAILED(found)) return found;
    return factory->CreateInstance(/*outer=*/nullptr, IID_IRegistrar, registrar.PutVoid());
}

HRESULT RunScript(IRegistrar& registrar, const std::wstring& file, UINT script, ScriptMode mode) {
    if (mode == ScriptMode::Register) {
        return registrar.ResourceRegister(file.c_str(), script, kScriptType);
    }
    return registrar.ResourceUnregister(file.c_str(), script, kScriptType);
}

} // namespace

HRESULT RunRegistryScripts(HMODULE module, std::initializer_list<UINT> scripts, ScriptMode mode) {
    std::wstring file;
    if (!ModuleFilePath(file, module)) return HresultFromLastError();
    const CLoadedLibrary library(RegistrarPath());
    if (!library) return HresultFromLastError();
    CComPtr<IRegistrar> registrar;
    HRESULT result = CreateRegistrar(library, registrar);
    if (SUCCEEDED(result)) {
        result = registrar->AddReplacement(L"MODULE", DoubleSingleQuotes(file).c_str());
    }
    if (SUCCEEDED(result)) result = registrar->AddReplacement(L"APPID", kAppId);
    if (FAILED(result)) return result;

    for (const UINT script : scripts) {
        const HRESULT run = RunScript(*registrar, file, script, mode);
        if (FAILED(run) && SUCCEEDED(result)) result = run;
        if (FAILED(result) && mode == ScriptMode::Register) break;
    }
    return result;
}

} // namespace tsl
