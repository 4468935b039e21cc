// The bytes of a text file as they lie on the disk, taken for UTF-16LE.
#pragma once

#include <cstring>
#include <string>
#include <vector>

namespace tsl {

inline constexpr wchar_t kByteOrderMark = 0xFEFF;

// All units, a byte order mark too. An odd last byte is none.
inline std::wstring Utf16Units(const std::vector<unsigned char>& bytes) {
    std::wstring units(bytes.size() / sizeof(wchar_t), L'\0');
    if (!units.empty()) std::memcpy(units.data(), bytes.data(), units.size() * sizeof(wchar_t));
    return units;
}

inline bool HasByteOrderMark(const std::wstring& units) {
    return !units.empty() && units.front() == kByteOrderMark;
}

} // namespace tsl
