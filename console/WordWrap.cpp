#include "console/WordWrap.h"

#include <sstream>

#include "console/Table.h"

namespace tsl {

std::vector<std::string> WrapWords(std::string_view text, size_t width) {
    std::vector<std::string> lines;
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word;) {
        const bool fits =
            !lines.empty() && DisplayWidth(lines.back()) + 1 + DisplayWidth(word) <= width;
        if (fits) {
            lines.back() += ' ' + word;
        } else {
            lines.push_back(word);
        }
    }
    return lines;
}

} // namespace tsl
