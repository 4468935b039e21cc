#include <shlobj.h>

#include "base/ComPtr.h"
#include "files/Paths.h"

namespace tsl {

namespace {

// An item list of the shell, freed with the shell's own allocator.
class CItemList {
public:
    CItemList() noexcept = default;
    CItemList(const CItemList&) = delete;
    CItemList& operator=(const CItemList&) = delete;
    ~CItemList() {
        CComPtr<IMalloc> allocator;
        if (m_items && SUCCEEDED(SHGetMalloc(allocator.Put()))) allocator->Free(m_items);
    }

    LPITEMIDLIST* Address() noexcept { return &m_items; }
    LPCITEMIDLIST Get() const noexcept { return m_items; }

private:
    LPITEMIDLIST m_items = nullptr;
};

void EnsureTrailingBackslash(std::wstring& path) {
    if (!path.ends_with(L'\\')) path += L'\\';
}

// Leaves path as it is when the current directory cannot be had.
void UseCurrentDirectory(std::wstring& path) {
    const DWORD room = GetCurrentDirectoryW(0, nullptr);
    if (room == 0) return;
    std::wstring directory(room, L'\0');
    const DWORD length = GetCurrentDirectoryW(room, directory.data());
    if (length == 0 || length >= room) return;
    directory.resize(length);
    EnsureTrailingBackslash(directory);
    path = std::move(directory);
}

} // namespace

bool SpecialFolderPath(int specialFolder, std::wstring& path, std::wstring_view subPath,
                       std::wstring_view companyFolder) {
    CItemList items;
    wchar_t folder[MAX_PATH];
    if (FAILED(SHGetSpecialFolderLocation(/*owner=*/nullptr, specialFolder, items.Address())) ||
        !SHGetPathFromIDListW(items.Get(), folder)) {
        UseCurrentDirectory(path);
        return false;
    }
    path = folder;
    EnsureTrailingBackslash(path);
    for (const std::wstring_view part : {companyFolder, subPath}) {
        if (part.empty()) continue;
        path += part;
        EnsureTrailingBackslash(path);
    }
    return true;
}

} // namespace tsl
