#include "console/Text.h"

#include <windows.h>

#include <algorithm>
#include <cwctype>
#include <stdexcept>

namespace tsl {

std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int room = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0,
                                         /*defaultChar=*/nullptr, /*usedDefault=*/nullptr);
    std::string converted(static_cast<size_t>(room), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, converted.data(), room, nullptr, nullptr);
    return converted;
}

std::wstring ToUtf16(std::string_view text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int room =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0);
    if (room == 0) throw std::invalid_argument("not valid UTF-8");
    std::wstring converted(static_cast<size_t>(room), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, converted.data(), room);
    return converted;
}

namespace {

// What is no UTF-8 becomes U+FFFD.
std::wstring ToUtf16Leniently(std::string_view text) {
    // No text has more UTF-16 units than UTF-8 bytes.
    std::wstring converted(text.size(), L'\0');
    const int length = static_cast<int>(text.size());
    const int units =
        MultiByteToWideChar(CP_UTF8, /*flags=*/0, text.data(), length, converted.data(), length);
    converted.resize(static_cast<size_t>(units));
    return converted;
}

} // namespace

std::string RepairUtf8(std::string_view text) {
    return ToUtf8(ToUtf16Leniently(text));
}

std::string OneLine(std::string_view text) {
    std::wstring line = ToUtf16Leniently(text);
    std::ranges::replace_if(
        line, [](wchar_t character) { return std::iswcntrl(character) != 0; }, L' ');
    return ToUtf8(line);
}

} // namespace tsl
