// Owner of a loaded DLL. Not shared between threads without a lock of the caller's.
#pragma once

#include <windows.h>

#include <bit>
#include <string>

namespace tsl {

// Lets go of its DLL when it goes.
class CLoadedLibrary {
public:
    // The thread's last error tells why nothing was loaded.
    explicit CLoadedLibrary(const std::wstring& path, DWORD flags = 0) noexcept
        : CLoadedLibrary(path.c_str(), flags) {}
    explicit CLoadedLibrary(const wchar_t* path, DWORD flags = 0) noexcept
        : m_module(LoadLibraryExW(path, /*file=*/nullptr, flags)) {}
    CLoadedLibrary(const CLoadedLibrary&) = delete;
    CLoadedLibrary& operator=(const CLoadedLibrary&) = delete;
    ~CLoadedLibrary() {
        if (m_module) FreeLibrary(m_module);
    }

    explicit operator bool() const noexcept { return m_module != nullptr; }

    HMODULE Module() const noexcept { return m_module; }

    // An exported function; null when there is none. REQUIRES: the DLL was loaded.
    template <class Function>
    Function Find(const char* name) const noexcept {
        return std::bit_cast<Function>(GetProcAddress(m_module, name));
    }

private:
    HMODULE m_module;
};

} // namespace tsl
