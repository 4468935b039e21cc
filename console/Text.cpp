#include "console/Text.h"

#include <windows.h>

#include <algorithm>
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

bool IsSteering(wchar_t character) noexcept {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x061C ||
           character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

std::string OneLine(std::string_view text) {
    std::wstring line = ToUtf16Leniently(text);
    std::ranges::replace_if(line, IsSteering, L' ');
    return ToUtf8(line);
}

std::string Abridged(std::string_view text, size_t longest) {
    constexpr wchar_t kLeftOut[] = L"\u2026";
    const std::wstring whole = ToUtf16Leniently(text);
    if (whole.size() <= longest) return ToUtf8(whole);
    // The end tells more than the middle: a code, what the text is of.
    size_t first = longest - longest / 3 - 1;
    size_t last = whole.size() - longest / 3;
    if (IS_HIGH_SURROGATE(whole[first - 1])) --first;
    if (IS_LOW_SURROGATE(whole[last])) ++last;
    return ToUtf8(whole.substr(0, first) + kLeftOut + whole.substr(last));
}

} // namespace tsl
