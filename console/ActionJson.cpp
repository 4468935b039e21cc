#include "console/ActionJson.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>

#include "console/IsoTime.h"
#include "console/Text.h"

namespace tsl {

namespace {

using Json = nlohmann::json;

// What is wrong: a member in quotes, or each value of one.
[[noreturn]] void Refuse(const std::string& what, const std::string& expected) {
    throw std::invalid_argument(what + " must be " + expected);
}

std::string Quoted(const char* member) {
    std::string quoted("\"");
    return quoted.append(member).append("\"");
}

template <class Integer>
Integer ToInteger(const Json& value, const std::string& what) {
    using Limits = std::numeric_limits<Integer>;
    if (value.is_number_unsigned()) {
        const auto number = value.get<UINT64>();
        if (number <= static_cast<UINT64>(Limits::max())) return static_cast<Integer>(number);
    } else if (value.is_number_integer() && Limits::is_signed) {
        const auto number = value.get<INT64>();
        if (number >= static_cast<INT64>(Limits::min())) return static_cast<Integer>(number);
    }
    Refuse(what, std::string("an integer from ") + std::to_string(Limits::min()) + " to " +
                     std::to_string(Limits::max()));
}

VARIANT_BOOL ToBool(const Json& value, const std::string& what) {
    if (!value.is_boolean()) Refuse(what, "true or false");
    return value.get<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
}

FLOAT ToFloat(const Json& value, const std::string& what) {
    if (!value.is_number() || std::abs(value.get<double>()) > std::numeric_limits<FLOAT>::max()) {
        Refuse(what, "a 32-bit floating-point number");
    }
    return value.get<FLOAT>();
}

std::wstring ToText(const Json& value, const std::string& what) {
    if (!value.is_string()) Refuse(what, "a text");
    return ToUtf16(value.get_ref<const std::string&>());
}

// Reads a member into target, if it is there.
template <class T, class Convert>
void ReadMember(const Json& object, const char* member, T& target, Convert convert) {
    const auto found = object.find(member);
    if (found != object.end()) target = convert(*found, Quoted(member));
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

// A misspelt member would otherwise be lost silently.
void RefuseOthers(const Json& object, std::initializer_list<std::string_view> known) {
    const auto contains = [](const auto& list, std::string_view name) {
        return std::ranges::find(list, name) != std::end(list);
    };
    for (const auto& member : object.items()) {
        if (!contains(known, member.key()) && !contains(kValueMembers, member.key())) {
            throw std::invalid_argument(Quoted(member.key().c_str()) + " is not known");
        }
    }
}

LinkedItem ToLinkedItem(const Json& object, const std::string& what) {
    if (!object.is_object()) Refuse(what, "an object");
    RefuseOthers(object, {"text44", "text48"});
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

Json Parse(const std::string& line) {
    try {
        return Json::parse(line);
    } catch (const Json::exception& error) {
        // The library's own prefix, "[json.exception...] ", tells a user nothing.
        const std::string_view message = error.what();
        const size_t end = message.find("] ");
        throw std::invalid_argument(
            std::string(end == std::string_view::npos ? message : message.substr(end + 2)));
    }
}

} // namespace

HostAction ParseActionLine(const std::string& line) {
    const Json object = Parse(line);
    if (!object.is_object()) throw std::invalid_argument("not a JSON object");
    RefuseOthers(object, {"name", "app", "user", "time", "kind", "linked"});
    for (const char* const required : {"name", "app", "user"}) {
        if (!object.contains(required)) {
            throw std::invalid_argument(Quoted(required) + " is missing");
        }
    }
    HostAction action;
    ReadMember(object, "name", action.name, ToText);
    ReadMember(object, "app", action.app, ToInteger<INT32>);
    ReadMember(object, "user", action.user, ToInteger<UINT32>);
    ReadMember(object, "time", action.time, ToTime);
    ReadMember(object, "kind", action.kind, ToInteger<UINT32>);
    if (action.kind == 0) Refuse(Quoted("kind"), "at least 1: kind 0 switches recording off");
    ReadMember(object, "linked", action.linked, ToLinkedItem);
    ReadValues(object, action.values);
    return action;
}

} // namespace tsl
