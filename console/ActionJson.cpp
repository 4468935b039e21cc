#include "console/ActionJson.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

#include "console/IsoTime.h"
#include "console/JsonMembers.h"

namespace tsl {

namespace {

VARIANT_BOOL ToBool(const Json& value, const std::string& what) {
    if (!value.is_boolean()) Refuse(what, "true or false");
    return value.get<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
}

// JSON has no numbers for these, so an export writes them as the parameter text has them.
std::optional<FLOAT> NotFinite(const std::string& text) {
    using Limits = std::numeric_limits<FLOAT>;
    if (text == "inf") return Limits::infinity();
    if (text == "-inf") return -Limits::infinity();
    if (text == "nan") return Limits::quiet_NaN();
    if (text == "-nan") return -Limits::quiet_NaN();
    return std::nullopt;
}

FLOAT ToFloat(const Json& value, const std::string& what) {
    if (value.is_string()) {
        if (const auto number = NotFinite(value.get_ref<const std::string&>())) return *number;
    }
    if (!value.is_number() || std::abs(value.get<double>()) > std::numeric_limits<FLOAT>::max()) {
        Refuse(what, "a 32-bit floating-point number");
    }
    return value.get<FLOAT>();
}

template <class T, class Convert>
void ReadList(const Json& object, const char* member, std::optional<std::vector<T>>& target,
              Convert convert) {
    const auto found = object.find(member);
    if (found == object.end()) return;
    if (!found->is_array()) Refuse(Quoted(member), "an array");
    target.emplace();
    for (const Json& value : *found)
        target->push_back(convert(value, std::string("each of ").append(Quoted(member))));
}

constexpr std::string_view kValueMembers[] = {"ullValues",  "usValues",     "intValues",
                                              "boolValues", "stringValues", "moreStringValues",
                                              "floatValues"};

void ReadValues(const Json& object, ActionValues& values) {
    ReadList(object, "ullValues", values.ullValues, ToInteger<ULONGLONG>);
    ReadList(object, "usValues", values.usValues, ToInteger<USHORT>);
    ReadList(object, "intValues", values.intValues, ToInteger<LONG>);
    ReadList(object, "boolValues", values.boolValues, ToBool);
    ReadList(object, "stringValues", values.stringValues, ToText);
    ReadList(object, "moreStringValues", values.moreStringValues, ToText);
    ReadList(object, "floatValues", values.floatValues, ToFloat);
}

LinkedItem ToLinkedItem(const Json& object, const std::string& what) {
    if (!object.is_object()) Refuse(what, "an object");
    RefuseOthers(object, {"text44", "text48"}, kValueMembers);
    LinkedItem linked;
    ReadMember(object, "text44", linked.text44, ToText);
    ReadMember(object, "text48", linked.text48, ToText);
    ReadValues(object, linked.values);
    return linked;
}

DATE ToTime(const Json& value, const std::string& what) {
    if (!value.is_string()) Refuse(what, "an ISO 8601 time");
    return ParseIsoTime(value.get_ref<const std::string&>());
}

} // namespace

HostAction ParseActionLine(const std::string& line) {
    const Json object = ParseJson(line);
    if (!object.is_object()) throw std::invalid_argument("not a JSON object");
    RefuseOthers(object,
                 {"id", "name", "app", "user", "time", "kind", "number", "linked", "parameters"},
                 kValueMembers);
    for (const char* const required : {"name", "app", "user"})
        Member(object, required);
    HostAction action;
    ReadMember(object, "id", action.id, ToInteger<UINT32>);
    ReadMember(object, "name", action.name, ToText);
    ReadMember(object, "app", action.app, ToInteger<INT32>);
    ReadMember(object, "user", action.user, ToInteger<UINT32>);
    ReadMember(object, "time", action.time, ToTime);
    ReadMember(object, "kind", action.kind, ToInteger<UINT32>);
    if (action.kind == 0) Refuse(Quoted("kind"), "at least 1: kind 0 switches recording off");
    ReadMember(object, "number", action.number, ToInteger<INT32>);
    ReadMember(object, "linked", action.linked, ToLinkedItem);
    ReadMember(object, "parameters", action.parameters, ToText);
    ReadValues(object, action.values);
    return action;
}

} // namespace tsl
