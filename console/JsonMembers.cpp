#include "console/JsonMembers.h"

#include <algorithm>
#include <stdexcept>

#include "console/Text.h"

namespace tsl {

Json ParseJson(const std::string& text) {
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        // The library's own prefix, "[json.exception...] ", tells a user nothing.
        const std::string_view message = error.what();
        const size_t end = message.find("] ");
        throw std::invalid_argument(
            Abridged(end == std::string_view::npos ? message : message.substr(end + 2)));
    }
}

void Refuse(const std::string& what, const std::string& expected) {
    throw std::invalid_argument(what + " must be " + expected);
}

std::string Quoted(std::string_view member) {
    std::string quoted("\"");
    return quoted.append(Abridged(member)).append("\"");
}

void RefuseOthers(const Json& object, std::initializer_list<std::string_view> known,
                  std::span<const std::string_view> alsoKnown) {
    const auto contains = [](const auto& list, std::string_view name) {
        return std::ranges::find(list, name) != std::end(list);
    };
    for (const auto& member : object.items()) {
        if (!contains(known, member.key()) && !contains(alsoKnown, member.key())) {
            throw std::invalid_argument(Quoted(member.key()) + " is not known");
        }
    }
}

const Json& Member(const Json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end()) throw std::invalid_argument(Quoted(name) + " is missing");
    return *found;
}

std::wstring ToText(const Json& value, const std::string& what) {
    if (!value.is_string()) Refuse(what, "a text");
    return ToUtf16(value.get_ref<const std::string&>());
}

} // namespace tsl
