#include "console/JsonOutput.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <nlohmann/json.hpp>

#include "console/Text.h"

namespace tsl {

std::string ToJsonLine(const nlohmann::ordered_json& json) {
    std::string dumped =
        json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    const std::wstring line = ToUtf16(dumped);
    if (std::ranges::none_of(line, IsSteering)) return dumped;
    std::wstring escaped;
    for (const wchar_t character : line) {
        if (!IsSteering(character)) {
            escaped += character;
            continue;
        }
        wchar_t code[8];
        std::swprintf(code, std::size(code), L"\\u%04x", static_cast<unsigned>(character));
        escaped += code;
    }
    return ToUtf8(escaped);
}

} // namespace tsl
