// Owner of an open registry key. Not shared between threads without a lock of the caller's. Every
// call returns a Win32 error code, ERROR_SUCCESS when it worked.
#pragma once

#include <windows.h>

#include <utility>

namespace tsl {

// Closes its key when it goes.
class CRegistryKey {
public:
    CRegistryKey() noexcept = default;
    CRegistryKey(CRegistryKey&& other) noexcept : m_key(std::exchange(other.m_key, nullptr)) {}
    CRegistryKey& operator=(CRegistryKey&& other) noexcept {
        CRegistryKey taken(std::move(other));
        std::swap(m_key, taken.m_key);
        return *this;
    }
    ~CRegistryKey() {
        if (m_key) RegCloseKey(m_key);
    }

    // Both replace what is open. The parent must stay open meanwhile.
    LSTATUS Open(HKEY parent, const wchar_t* name, REGSAM access) noexcept {
        CRegistryKey opened;
        const LSTATUS result = RegOpenKeyExW(parent, name, /*options=*/0, access, &opened.m_key);
        if (result == ERROR_SUCCESS) std::swap(m_key, opened.m_key);
        return result;
    }
    // Creates the key with all keys above it where they are missing.
    LSTATUS Create(HKEY parent, const wchar_t* name, REGSAM access) noexcept {
        CRegistryKey created;
        const LSTATUS result = RegCreateKeyExW(
            parent, name, /*reserved=*/0, /*className=*/nullptr, REG_OPTION_NON_VOLATILE, access,
            /*securityAttributes=*/nullptr, &created.m_key, /*disposition=*/nullptr);
        if (result == ERROR_SUCCESS) std::swap(m_key, created.m_key);
        return result;
    }

    HKEY Get() const noexcept { return m_key; }

private:
    HKEY m_key = nullptr;
};

} // namespace tsl
