// Content items of a host as a JSON file describes them:
// {"items": [{"id": 4711, "properties": [{"first": "Albums/", "second": "a.jpg", "number": 1}]}]}
#pragma once

#include <windows.h>

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tsl {

// What is absent is not the same as what is empty.
struct ContentItemProperty {
    std::optional<std::wstring> first;
    std::optional<std::wstring> second;
    std::optional<INT32> number;

    bool operator==(const ContentItemProperty&) const = default;
};

struct ContentItem {
    UINT64 id = 0;
    std::vector<ContentItemProperty> properties;
};

// Throws std::invalid_argument with what is wrong.
std::vector<ContentItem> ParseContentItems(const std::string& text);

nlohmann::ordered_json ToJson(const std::vector<ContentItem>& items);

// "first | second | number", for a person; a dash stands for what is absent.
std::string Describe(const ContentItemProperty& property);

} // namespace tsl
