#include "console/RegisteredPlugins.h"

#include <objbase.h>

#include <algorithm>
#include <tuple>

#include "base/Hresult.h"
#include "base/RegistryKey.h"
#include "component/host/Identities.h"

namespace tsl {

namespace {

constexpr wchar_t kListKey[] = L"Software\\Corvane Corporation\\Tessaly\\DB Plugins";

// Empty and 0 for what is absent or of another type.
std::wstring ReadText(HKEY key, const wchar_t* subKey, const wchar_t* value) {
    constexpr DWORD kText = RRF_RT_REG_SZ; // texts with variables too, expanded
    DWORD size = 0;
    if (RegGetValueW(key, subKey, value, kText, nullptr, nullptr, &size) != ERROR_SUCCESS) {
        return {};
    }
    std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(key, subKey, value, kText, nullptr, text.data(), &size) != ERROR_SUCCESS) {
        return {};
    }
    return text.c_str();
}

DWORD ReadNumber(HKEY key, const wchar_t* subKey, const wchar_t* value) {
    DWORD number = 0;
    DWORD size = sizeof number;
    const LSTATUS read =
        RegGetValueW(key, subKey, value, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return read == ERROR_SUCCESS ? number : 0;
}

std::vector<std::wstring> NamesOfKeys(HKEY key) {
    std::vector<std::wstring> names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[256];
        DWORD length = static_cast<DWORD>(std::size(name));
        const LSTATUS result =
            RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (result == ERROR_NO_MORE_ITEMS) return names;
        if (result != ERROR_SUCCESS) {
            throw CHresultError(HresultFromWin32(static_cast<DWORD>(result)));
        }
        names.emplace_back(name, length);
    }
}

RegisteredPlugin ReadPlugin(HKEY list, const std::wstring& name) {
    RegisteredPlugin plugin;
    plugin.classText = name;
    plugin.moduleId = ReadText(list, name.c_str(), L"Module ID");
    plugin.enable = ReadNumber(list, name.c_str(), L"Enable");
    plugin.order = ReadNumber(list, name.c_str(), L"Order");
    plugin.type = ReadNumber(list, name.c_str(), L"Type");
    const std::wstring server = L"CLSID\\" + name + L"\\InprocServer32";
    plugin.path = ReadText(HKEY_CLASSES_ROOT, server.c_str(), /*value=*/nullptr);
    return plugin;
}

} // namespace

std::vector<RegisteredPlugin> ReadRegisteredPlugins() {
    CRegistryKey list;
    const LSTATUS opened = list.Open(HKEY_LOCAL_MACHINE, kListKey, KEY_READ);
    if (opened == ERROR_FILE_NOT_FOUND) return {};
    if (opened != ERROR_SUCCESS) {
        throw CHresultError(HresultFromWin32(static_cast<DWORD>(opened)));
    }
    std::vector<RegisteredPlugin> plugins;
    for (const std::wstring& name : NamesOfKeys(list.Get()))
        plugins.push_back(ReadPlugin(list.Get(), name));
    std::ranges::sort(plugins, {}, [](const RegisteredPlugin& plugin) {
        return std::tie(plugin.order, plugin.classText);
    });
    return plugins;
}

HRESULT CreateRegisteredPlugin(const RegisteredPlugin& plugin, CComPtr<ITslPluginDb2>& created) {
    CLSID clsid{};
    const HRESULT parsed = CLSIDFromString(plugin.classText.c_str(), &clsid);
    if (FAILED(parsed)) return parsed;
    return CoCreateInstance(clsid, /*outer=*/nullptr, CLSCTX_INPROC_SERVER, IID_ITslPluginDb2,
                            created.PutVoid());
}

} // namespace tsl
