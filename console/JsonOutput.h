// How JSON is printed.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace tsl {

// On one line, without its end. Characters that steer a terminal are escaped in its texts, so that
// it can be looked at as well as read; what is no UTF-8 becomes U+FFFD.
std::string ToJsonLine(const nlohmann::ordered_json& json);

} // namespace tsl
