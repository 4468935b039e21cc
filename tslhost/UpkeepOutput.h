// What the commands that look after a store print alike.
#pragma once

#include "console/Output.h"
#include "upkeep/Progress.h"

namespace tsl {

// "copying ualog.db: 3.5 MB of 12.0 MB", on a terminal.
Progress ShownOn(CProgress& line);

} // namespace tsl
