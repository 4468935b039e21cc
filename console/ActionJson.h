// Reads actions from JSON, one object an action.
#pragma once

#include <string>

#include "console/HostAction.h"

namespace tsl {

// The action that a line of JSON describes. Throws std::invalid_argument with what is wrong.
HostAction ParseActionLine(const std::string& line);

} // namespace tsl
