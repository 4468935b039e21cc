#include "console/ContentItems.h"

#include <algorithm>
#include <stdexcept>

#include "console/JsonMembers.h"
#include "console/Text.h"

namespace tsl {

namespace {

using OrderedJson = nlohmann::ordered_json;

ContentItemProperty ToProperty(const Json& object) {
    if (!object.is_object()) Refuse("each of \"properties\"", "an object");
    RefuseOthers(object, {"first", "second", "number"});
    ContentItemProperty property;
    ReadMember(object, "first", property.first, ToText);
    ReadMember(object, "second", property.second, ToText);
    ReadMember(object, "number", property.number, ToInteger<INT32>);
    return property;
}

ContentItem ToItem(const Json& object) {
    if (!object.is_object()) Refuse("each of \"items\"", "an object");
    RefuseOthers(object, {"id", "properties"});
    ContentItem item;
    item.id = ToInteger<UINT64>(Member(object, "id"), "\"id\"");
    const Json& properties = Member(object, "properties");
    if (!properties.is_array()) Refuse("\"properties\"", "an array");
    for (const Json& property : properties)
        item.properties.push_back(ToProperty(property));
    return item;
}

OrderedJson ToJson(const ContentItemProperty& property) {
    OrderedJson object = OrderedJson::object();
    if (property.first) object["first"] = ToUtf8(*property.first);
    if (property.second) object["second"] = ToUtf8(*property.second);
    if (property.number) object["number"] = *property.number;
    return object;
}

std::string DescribeText(const std::optional<std::wstring>& text) {
    return text ? ToUtf8(*text) : "-";
}

} // namespace

std::vector<ContentItem> ParseContentItems(const std::string& text) {
    const Json object = ParseJson(text);
    if (!object.is_object()) throw std::invalid_argument("not a JSON object");
    RefuseOthers(object, {"items"});
    const Json& list = Member(object, "items");
    if (!list.is_array()) Refuse("\"items\"", "an array");
    std::vector<ContentItem> items;
    for (const Json& entry : list) {
        ContentItem item = ToItem(entry);
        if (std::ranges::find(items, item.id, &ContentItem::id) != items.end()) {
            throw std::invalid_argument("there are two items " + std::to_string(item.id));
        }
        items.push_back(std::move(item));
    }
    return items;
}

nlohmann::ordered_json ToJson(const std::vector<ContentItem>& items) {
    OrderedJson list = OrderedJson::array();
    for (const ContentItem& item : items) {
        OrderedJson properties = OrderedJson::array();
        for (const ContentItemProperty& property : item.properties)
            properties.push_back(ToJson(property));
        list.push_back({{"id", item.id}, {"properties", properties}});
    }
    return {{"items", list}};
}

std::string Describe(const ContentItemProperty& property) {
    return DescribeText(property.first) + " | " + DescribeText(property.second) + " | " +
           (property.number ? std::to_string(*property.number) : "-");
}

} // namespace tsl
