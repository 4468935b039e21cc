// Texts broken into lines between their words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tsl {

// The words of a text on lines of at most this many terminal columns; a longer word has a line of
// its own. UTF-8. No line for a text without words.
std::vector<std::string> WrapWords(std::string_view text, size_t width);

} // namespace tsl
