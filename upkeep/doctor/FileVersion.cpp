#include "upkeep/doctor/FileVersion.h"

#include <windows.h>

#include <vector>

namespace tsl {

std::optional<std::string> FileVersionOf(const std::wstring& path) {
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), /*handle=*/nullptr);
    std::vector<std::byte> block(size);
    if (size == 0 || !GetFileVersionInfoW(path.c_str(), /*handle=*/0, size, block.data()))
        return std::nullopt;
    void* found = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.data(), L"\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO))
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
