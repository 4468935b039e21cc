#include "upkeep/doctor/FileVersion.h"

#include <windows.h>

#include <vector>

#include "base/SystemLibrary.h"

namespace tsl {

std::optional<std::string> FileVersionOf(const std::wstring& path) {
    // Not linked: a file of that name may lie beside the program.
    const CSystemLibrary library(L"version.dll");
    if (!library) return std::nullopt;
    const auto getSize =
        library.Find<decltype(&GetFileVersionInfoSizeW)>("GetFileVersionInfoSizeW");
    const auto getInfo = library.Find<decltype(&GetFileVersionInfoW)>("GetFileVersionInfoW");
    const auto getValue = library.Find<decltype(&VerQueryValueW)>("VerQueryValueW");
    if (!getSize || !getInfo || !getValue) return std::nullopt;
    const DWORD size = getSize(path.c_str(), /*handle=*/nullptr);
    std::vector<std::byte> block(size);
    if (size == 0 || !getInfo(path.c_str(), /*handle=*/0, size, block.data())) return std::nullopt;
    void* found = nullptr;
    UINT length = 0;
    if (!getValue(block.data(), L"\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO))
        return std::nullopt;
    const auto* const version = static_cast<const VS_FIXEDFILEINFO*>(found);
    std::string text;
    for (const DWORD part : {version->dwFileVersionMS, version->dwFileVersionLS}) {
        if (!text.empty()) text += '.';
        text += std::to_string(HIWORD(part)) + '.' + std::to_string(LOWORD(part));
    }
    return text;
}

} // namespace tsl
