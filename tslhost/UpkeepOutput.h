// What the commands that look after a store print alike.
#pragma once

#include <windows.h>

#include <string>

#include "console/Output.h"
#include "upkeep/Progress.h"

namespace tsl {

// "512 bytes", "1.5 KB", "12.0 MB".
std::string SizeText(UINT64 bytes);

// "copying ualog.db: 3.5 MB of 12.0 MB", on a terminal.
Progress ShownOn(CProgress& line);

} // namespace tsl
