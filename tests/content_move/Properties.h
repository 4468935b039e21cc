// Properties of content items: as a host makes them, and as a content store double notes them when
// they are written.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/Containers.h"

namespace tsl::test {

inline constexpr UINT64 kFirstText = 0x0300001600000008;
inline constexpr UINT64 kSecondText = 0x0300001400000008;
inline constexpr UINT64 kNumber = 0x0300001700000003;

using Calls = std::vector<std::wstring>;

inline ContainerBuilder Property(std::wstring_view first, std::wstring_view second, INT32 number) {
    return ContainerBuilder().Text(kFirstText, first).Text(kSecondText, second).I4(kNumber, number);
}

// A property that has been written, with each value as the double shows it; empty ones are absent.
inline std::wstring WrittenValues(const std::wstring& first, const std::wstring& second,
                                  const std::wstring& number) {
    std::wstring text = L"{0400001101000000:";
    if (!second.empty()) text += L" 0300001400000008=" + second;
    if (!first.empty()) text += L" 0300001600000008=" + first;
    if (!number.empty()) text += L" 0300001700000003=" + number;
    return text + L"}";
}

inline std::wstring Written(const std::wstring& first, const std::wstring& second, INT32 number) {
    return WrittenValues(L"'" + first + L"'", L"'" + second + L"'", std::to_wstring(number));
}

// What a property becomes that matches a move to "new one" and "new two" with the number 9.
inline const std::wstring kMoved = Written(L"new one", L"new two", 9);

} // namespace tsl::test
