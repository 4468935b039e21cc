// Checks numbers of the command line: the whole argument must be a decimal number that the type
// holds.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <string>

namespace tsl {

template <class Number>
bool IsNumber(const std::string& text) {
    // The parser would read a leading zero as octal.
    const size_t digits = text.starts_with('-') ? 1 : 0;
    const bool octal = text.size() > digits + 1 && text[digits] == '0' && text[digits + 1] != '.';
    if (octal) return false;
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end;
}

// To be put on an option: the parser itself would wrap and round what does not fit.
template <class Number>
CLI::Validator ANumber() {
    return CLI::Validator(
        [](const std::string& text) {
            return IsNumber<Number>(text) ? std::string()
                                          : "\"" + text + "\" is no number of that range";
        },
        "");
}

// The same, and not 0.
inline CLI::Validator ALogKind() {
    return CLI::Validator(
        [](const std::string& text) {
            const bool valid = IsNumber<unsigned long>(text) && std::stoul(text) != 0;
            return valid ? std::string() : "\"" + text + "\" is no log kind";
        },
        "");
}

} // namespace tsl
