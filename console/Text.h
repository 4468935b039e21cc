// UTF-8, which the console host reads and writes, and UTF-16, which the component takes.
#pragma once

#include <string>
#include <string_view>

namespace tsl {

// Unpaired surrogates become U+FFFD.
std::string ToUtf8(std::wstring_view text);

// Throws std::invalid_argument for what is no UTF-8.
std::wstring ToUtf16(std::string_view text);

// The text with U+FFFD in the place of what is no UTF-8: for what damaged files hold, and messages
// quote.
std::string RepairUtf8(std::string_view text);

// The text with blanks in the place of control characters, so that it stays on its line and cannot
// steer a terminal. What is no UTF-8 becomes U+FFFD.
std::string OneLine(std::string_view text);

} // namespace tsl
