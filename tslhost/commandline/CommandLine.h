// The command line of the console host.
#pragma once

#include <string>
#include <vector>

#include "console/Failure.h"

namespace tsl {

// Carries out the command that the arguments name; they are in UTF-8, without the program. Tells
// wrong usage, and throws what the command throws.
ExitCode RunCommandLine(const std::vector<std::string>& arguments);

} // namespace tsl
