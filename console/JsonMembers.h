// Reads members of JSON objects and says clearly what is wrong with one. Every failure is a
// std::invalid_argument.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

namespace tsl {

using Json = nlohmann::json;

Json ParseJson(const std::string& text);

// What is wrong: a member in quotes, or each value of one.
[[noreturn]] void Refuse(const std::string& what, const std::string& expected);

std::string Quoted(std::string_view member);

// Refuses members that are not known: a misspelt one would otherwise be lost silently.
void RefuseOthers(const Json& object, std::initializer_list<std::string_view> known,
                  std::span<const std::string_view> alsoKnown = {});

// A member that must be there.
const Json& Member(const Json& object, const char* name);

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

std::wstring ToText(const Json& value, const std::string& what);

// Reads a member into target, if it is there.
template <class T, class Convert>
void ReadMember(const Json& object, const char* member, T& target, Convert convert) {
    const auto found = object.find(member);
    if (found != object.end()) target = convert(*found, Quoted(member));
}

} // namespace tsl
