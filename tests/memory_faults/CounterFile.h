// The counter as the file holds it.
#pragma once

#include <cstring>
#include <cwchar>
#include <optional>
#include <string>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

// Nothing when the file does not hold one line with a number, as the component writes it.
inline std::optional<UINT32> StoredCounter() {
    const Bytes bytes = ReadBytes(CounterPath());
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    wchar_t line[24];
    if (text.size() < 2) return std::nullopt;
    const unsigned long counter = std::wcstoul(text.c_str() + 1, nullptr, 10);
    std::swprintf(line, std::size(line), L"%08lu\t\r\n", counter);
    if (Utf16FileBytes(line) != bytes) return std::nullopt;
    return static_cast<UINT32>(counter);
}

} // namespace tsl::test
