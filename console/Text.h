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

// Whether the character steers a terminal instead of being shown: a control character (C0, DEL,
// C1), a mark that turns the direction of a text (bidi controls), a separator of lines or
// paragraphs. None of them takes a pair of surrogates.
bool IsSteering(wchar_t character) noexcept;

// The text with blanks in the place of characters that steer a terminal, so that it stays on its
// line and shows as what it is. What is no UTF-8 becomes U+FFFD.
std::string OneLine(std::string_view text);

// How much of a text from elsewhere a message quotes, in UTF-16 units.
inline constexpr size_t kLongestQuote = 300;

// Beginning and end of a longer text, an ellipsis between them. What is no UTF-8 becomes U+FFFD.
std::string Abridged(std::string_view text, size_t longest = kLongestQuote);

} // namespace tsl
