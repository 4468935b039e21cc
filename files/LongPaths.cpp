#include "files/Paths.h"

namespace tsl {

namespace {

constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kUncPrefix = L"\\\\?\\UNC";
constexpr std::wstring_view kUncPrefixWithSeparator = L"\\\\?\\UNC\\";
constexpr size_t kShortestPrefixed = 4;
constexpr size_t kDirectoryLimit = 248;
constexpr size_t kFileLimit = 260;

} // namespace

std::wstring LongPathPrefix(std::wstring_view path, bool force, bool directory) {
    std::wstring prefixed;
    const bool shortEnough = path.size() < (directory ? kDirectoryLimit : kFileLimit);
    if (path.size() < kShortestPrefixed || path.starts_with(kPrefix) || (!force && shortEnough)) {
        prefixed = path;
    } else if (path.starts_with(L"\\\\")) {
        prefixed.append(kUncPrefix).append(path.substr(1));
    } else {
        prefixed.append(kPrefix).append(path);
    }
    return prefixed;
}

size_t LongPathPrefixLength(std::wstring_view path) noexcept {
    if (!path.starts_with(kPrefix)) return 0;
    // The separator behind "UNC" belongs to the path itself.
    return path.starts_with(kUncPrefixWithSeparator) ? kUncPrefix.size() : kPrefix.size();
}

} // namespace tsl
