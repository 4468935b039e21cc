// A strict reader of the report's markup: every element is closed, every attribute quoted.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tsl::test {

struct MarkupElement {
    std::string name;
    std::map<std::string, std::string> attributes; // decoded
    std::string text;                              // decoded, with that of the elements within
};

struct Markup {
    std::vector<MarkupElement> elements; // in the order of their ends
    std::string error;                   // empty when it is well formed

    // All elements of a name, also of one class where it is given.
    std::vector<const MarkupElement*> Named(std::string_view name,
                                            std::string_view className = {}) const;
};

Markup ReadMarkup(std::string_view page);

} // namespace tsl::test
