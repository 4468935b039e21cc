// Owner of a DLL of the system that is loaded when it is needed.
#pragma once

#include "base/LoadedLibrary.h"

namespace tsl {

// The DLL that lies in the folder of the system, and the DLLs that it needs from there too: never
// one of the same name beside the program or in the current folder, nor one that is loaded already
// from elsewhere. Otherwise as CLoadedLibrary.
class CSystemLibrary : public CLoadedLibrary {
public:
    explicit CSystemLibrary(const wchar_t* name)
        : CLoadedLibrary(PathOf(name), LOAD_LIBRARY_SEARCH_SYSTEM32) {}

private:
    static std::wstring PathOf(const wchar_t* name) {
        wchar_t folder[MAX_PATH];
        const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
        return std::wstring(folder, length < MAX_PATH ? length : 0) + L"\\" + name;
    }
};

} // namespace tsl
