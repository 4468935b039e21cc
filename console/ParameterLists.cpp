#include "console/ParameterLists.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "base/PercentEncoding.h"
#include "console/Text.h"

namespace tsl {

namespace {

using OrderedJson = nlohmann::ordered_json;

// A number of the whole item.
template <class Number>
std::optional<OrderedJson> ToNumber(const std::string& item) {
    Number number{};
    const char* const end = item.data() + item.size();
    const auto [stopped, error] = std::from_chars(item.data(), end, number);
    if (error != std::errc() || stopped != end) return std::nullopt;
    return OrderedJson(number);
}

// What is no number of JSON's, "inf" or "nan", stays a text.
std::optional<OrderedJson> ToFloat(const std::string& item) {
    std::optional<OrderedJson> number = ToNumber<double>(item);
    if (!number || std::isfinite(number->get<double>())) return number;
    return OrderedJson(item);
}

std::optional<OrderedJson> ToBool(const std::string& item) {
    if (item != "0" && item != "1") return std::nullopt;
    return OrderedJson(item == "1");
}

std::optional<OrderedJson> ToText(const std::string& item) {
    return OrderedJson(ToUtf8(PercentDecode(ToUtf16(item))));
}

struct Kind {
    std::string_view name;
    std::optional<OrderedJson> (*convert)(const std::string& item);
};

constexpr Kind kKinds[] = {
    {"ullValues", ToNumber<unsigned long long>},
    {"usValues", ToNumber<unsigned short>},
    {"intValues", ToNumber<int>},
    {"boolValues", ToBool},
    {"stringValues", ToText},
    {"floatValues", ToFloat},
};

// Nothing when an item is not of the kind.
std::optional<OrderedJson> DecodeItems(std::string_view items, const Kind& kind) {
    OrderedJson values = OrderedJson::array();
    for (;;) {
        const size_t comma = items.find(',');
        const std::optional<OrderedJson> value = kind.convert(std::string(items.substr(0, comma)));
        if (!value) return std::nullopt;
        values.push_back(*value);
        if (comma == std::string_view::npos) return values;
        items.remove_prefix(comma + 1);
    }
}

} // namespace

nlohmann::ordered_json DecodeParameterLists(const std::wstring& parameters) {
    const std::string text = ToUtf8(parameters);
    OrderedJson lists = OrderedJson::object();
    for (const Kind& kind : kKinds) {
        const std::string opening = std::string(kind.name) + "={";
        size_t start = text.find(opening);
        // A kind starts the text or follows a separator; "ullValues" must not be found in
        // "nullValues".
        if (start == std::string::npos || (start > 0 && text[start - 1] != '&')) continue;
        start += opening.size();
        const size_t end = text.find('}', start);
        if (end == std::string::npos) continue;
        const auto values = DecodeItems(std::string_view(text).substr(start, end - start), kind);
        if (values) lists[std::string(kind.name)] = *values;
    }
    return lists;
}

} // namespace tsl
