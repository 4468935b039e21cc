#include "component/registration/PluginList.h"

#include <objbase.h>

#include <cwchar>
#include <iterator>

#include "base/Hresult.h"
#include "base/LoadedLibrary.h"
#include "base/RegistryKey.h"

namespace tsl {

namespace {

// Known to the engine: not to be changed.
constexpr wchar_t kHostKey[] = L"Software\\Corvane Corporation\\Tessaly";
constexpr wchar_t kModuleIdValue[] = L"Module ID";
constexpr wchar_t kEnableValue[] = L"Enable";
constexpr wchar_t kOrderValue[] = L"Order";
constexpr wchar_t kTypeValue[] = L"Type";
constexpr DWORD kEnabled = 0xFFFFFFFF;
constexpr DWORD kOrder = 0x8000;

constexpr REGSAM kAccess = KEY_READ | KEY_WRITE;

// Null for a type of no list.
const wchar_t* ListName(DWORD type) noexcept {
    switch (type >> 16 & 0xFF) {
    case 0x01:
        return L"DB Plugins";
    case 0x02:
        return L"Engine Plugins";
    default:
        return nullptr;
    }
}

struct ClsidText {
    wchar_t text[40];

    explicit ClsidText(REFCLSID clsid) noexcept {
        StringFromGUID2(clsid, text, static_cast<int>(std::size(text)));
    }
};

LSTATUS SetText(const CRegistryKey& key, const wchar_t* name, const wchar_t* text) noexcept {
    if (!text) return ERROR_INVALID_DATA;
    const size_t size = (std::wcslen(text) + 1) * sizeof(wchar_t);
    return RegSetValueExW(key.Get(), name, /*reserved=*/0, REG_SZ,
                          reinterpret_cast<const BYTE*>(text), static_cast<DWORD>(size));
}

LSTATUS SetNumber(const CRegistryKey& key, const wchar_t* name, DWORD number) noexcept {
    return RegSetValueExW(key.Get(), name, /*reserved=*/0, REG_DWORD,
                          reinterpret_cast<const BYTE*>(&number), sizeof number);
}

LSTATUS DeleteEmptyKey(HKEY parent, const wchar_t* name) noexcept {
    // Older systems have only the other function.
    using DeleteKeyEx = LSTATUS(WINAPI*)(HKEY, const wchar_t*, REGSAM, DWORD);
    const CLoadedLibrary library(L"Advapi32.dll");
    const auto deleteKeyEx = library ? library.Find<DeleteKeyEx>("RegDeleteKeyExW") : nullptr;
    return deleteKeyEx ? deleteKeyEx(parent, name, /*access=*/0, /*reserved=*/0)
                       : RegDeleteKeyW(parent, name);
}

// Deletes the keys below first. The next one is always at index 0, as the one before it is gone.
LSTATUS DeleteKeyTree(HKEY parent, const wchar_t* name) noexcept {
    {
        CRegistryKey key;
        LSTATUS result = key.Open(parent, name, kAccess);
        while (result == ERROR_SUCCESS) {
            wchar_t below[257];
            DWORD length = static_cast<DWORD>(std::size(below));
            result = RegEnumKeyExW(key.Get(), /*index=*/0, below, &length, nullptr, nullptr,
                                   nullptr, nullptr);
            if (result == ERROR_SUCCESS) result = DeleteKeyTree(key.Get(), below);
        }
        if (result != ERROR_NO_MORE_ITEMS) return result;
    }
    return DeleteEmptyKey(parent, name);
}

} // namespace

HRESULT AddToPluginList(REFCLSID clsid, DWORD type, const wchar_t* moduleId) {
    const wchar_t* const listName = ListName(type);
    if (!listName) return E_INVALIDARG;
    CRegistryKey host;
    CRegistryKey list;
    CRegistryKey entry;
    LSTATUS result = host.Create(HKEY_LOCAL_MACHINE, kHostKey, kAccess);
    if (result == ERROR_SUCCESS) result = list.Create(host.Get(), listName, kAccess);
    if (result == ERROR_SUCCESS) result = entry.Create(list.Get(), ClsidText(clsid).text, kAccess);
    if (result == ERROR_SUCCESS) result = SetText(entry, kModuleIdValue, moduleId);
    if (result == ERROR_SUCCESS) result = SetNumber(entry, kEnableValue, kEnabled);
    if (result == ERROR_SUCCESS) result = SetNumber(entry, kOrderValue, kOrder);
    if (result == ERROR_SUCCESS) result = SetNumber(entry, kTypeValue, type);
    return HresultFromWin32(static_cast<DWORD>(result));
}

HRESULT RemoveFromPluginList(REFCLSID clsid, DWORD type) {
    const wchar_t* const listName = ListName(type);
    if (!listName) return E_INVALIDARG;
    CRegistryKey host;
    CRegistryKey list;
    LSTATUS result = host.Open(HKEY_LOCAL_MACHINE, kHostKey, kAccess);
    if (result == ERROR_SUCCESS) result = list.Create(host.Get(), listName, kAccess);
    if (result != ERROR_SUCCESS) return HresultFromWin32(static_cast<DWORD>(result));
    DeleteKeyTree(list.Get(), ClsidText(clsid).text);

    DWORD keys = 0;
    DWORD values = 0;
    result = RegQueryInfoKeyW(list.Get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr,
                              &values, nullptr, nullptr, nullptr, nullptr);
    list = CRegistryKey();
    if (result == ERROR_SUCCESS && keys == 0 && values == 0) DeleteEmptyKey(host.Get(), listName);
    return HresultFromWin32(static_cast<DWORD>(result));
}

} // namespace tsl
