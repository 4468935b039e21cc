// Owner of a loaded DLL. Not shared between threads without a lock of the caller's.
#pragma once

#include <windows.h>

#include <bit>
#include <string>
#include <utility>

namespace tsl {

// Lets go of its DLL when it goes.
class CLoadedLibrary {
public:
    CLoadedLibrary() noexcept = default;
    // The thread's last error tells why nothing was loaded.
    explicit CLoadedLibrary(const std::wstring& path, DWORD flags = 0) noexcept
        : m_module(LoadLibraryExW(path.c_str(), /*file=*/nullptr, flags)) {}
    CLoadedLibrary(CLoadedLibrary&& other) noexcept
        : m_module(std::exchange(other.m_module, nullptr)) {}
    CLoadedLibrary& operator=(CLoadedLibrary&& other) noexcept {
        CLoadedLibrary taken(std::move(other));
        std::swap(m_module, taken.m_module);
        return *this;
    }
    ~CLoadedLibrary() {
        if (m_module) FreeLibrary(m_module);
    }

    explicit operator bool() const noexcept { return m_module != nullptr; }
    HMODULE Get() const noexcept { return m_module; }

    // An exported function; null when there is none. REQUIRES: the DLL was loaded.
    template <class Function>
    Function Find(const char* name) const noexcept {
        return std::bit_cast<Function>(GetProcAddress(m_module, name));
    }

private:
    HMODULE m_module = nullptr;
};

} // namespace tsl
