// Percent-encoding of the texts inside parameter texts. Pure functions; callable from any thread.
#pragma once

#include <string>
#include <string_view>

namespace tsl {

// Appends the text with each of the 30 reserved characters as a percent sign and two lower-case
// hexadecimal digits.
void AppendPercentEncoded(std::wstring& output, std::wstring_view text);

// The text with each code of a reserved character, in lower or upper case, replaced by the
// character. Other percent signs stay.
std::wstring PercentDecode(std::wstring_view text);

} // namespace tsl
