#include "files/Paths.h"

#include <ntsecapi.h>

#include <array>
#include <string>
#include <string_view>

#include "base/Hresult.h"
#include "files/PlainFile.h"

namespace tsl {

namespace {

bool IsDirectory(DWORD attributes) noexcept {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The attributes by way of the thread's ANSI code page, for paths that the wide call refuses.
DWORD AttributesByAnsiPath(const std::wstring& path) {
    const int length = static_cast<int>(path.size());
    const int room = WideCharToMultiByte(CP_THREAD_ACP, 0, path.data(), length, nullptr, 0,
                                         /*defaultChar=*/nullptr, /*usedDefault=*/nullptr);
    if (room <= 0) return INVALID_FILE_ATTRIBUTES;
    std::string ansi(static_cast<size_t>(room), '\0');
    WideCharToMultiByte(CP_THREAD_ACP, 0, path.data(), length, ansi.data(), room, nullptr, nullptr);
    return GetFileAttributesA(ansi.c_str());
}

// Index of the backslash that ends the root, or of the last character of the root: nothing up to
// there is ever created as a parent.
size_t RootLength(const std::wstring& path) noexcept {
    const size_t prefix = LongPathPrefixLength(path);
    const size_t size = path.size();
    if (size <= prefix + 1) return prefix;
    const bool drive = path[prefix + 1] == L':';
    if (size == prefix + 2 && drive) return prefix + 1;
    if (size > prefix + 2 && drive && path[prefix + 2] == L'\\') return prefix + 2;
    if (path[prefix] != L'\\') return prefix;

    // A share: its root ends with the second backslash after the leading ones.
    size_t separators = 0;
    for (size_t index = prefix == 0 ? 2 : prefix + 1; index < size; ++index) {
        if (path[index] == L'\\' && ++separators == 2) return index;
    }
    return size;
}

} // namespace

bool FileExists(const std::wstring& path) noexcept {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !IsDirectory(attributes);
}

bool FolderExists(const std::wstring& path) {
    if (path.empty()) return false;
    DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) attributes = AttributesByAnsiPath(path);
    return IsDirectory(attributes);
}

bool CreateFolderTree(const std::wstring& path, SECURITY_ATTRIBUTES* attributes) {
    if (path.empty()) return false;
    if (FolderExists(path)) return true;

    const size_t root = RootLength(path);
    size_t separator = path.size() - 1;
    if (path[separator] == L'\\' && separator > 0) --separator;
    while (separator > root && path[separator] != L'\\')
        --separator;
    if (separator <= root) return CreateDirectoryW(path.c_str(), nullptr) != 0;

    if (!CreateFolderTree(path.substr(0, separator))) return FolderExists(path);
    if (!MayBeMade(path.c_str())) return false;
    return CreateDirectoryW(path.c_str(), attributes) != 0 || FolderExists(path);
}

std::wstring NameBeside(const std::wstring& path) {
    std::array<BYTE, 16> chance{};
    if (!RtlGenRandom(chance.data(), static_cast<ULONG>(chance.size()))) {
        throw CHresultError(E_FAIL);
    }
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    std::wstring name = path + L'.';
    for (const BYTE byte : chance)
        name.append({kDigits[byte >> 4], kDigits[byte & 0xF]});
    return name + L".new";
}

bool ModuleFilePath(std::wstring& path, HMODULE module) {
    DWORD room = MAX_PATH;
    DWORD length = 0;
    for (;;) {
        path.resize(room);
        length = GetModuleFileNameW(module, path.data(), room);
        if (length < room) break;
        room += room / 2;
    }
    path.resize(length);
    return !path.empty();
}

} // namespace tsl
