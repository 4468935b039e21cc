// Times as people and other programs write them.
#pragma once

#include <windows.h>

#include <wtypes.h>

#include <string>

namespace tsl {

// The UTC time of an ISO 8601 text ("2026-11-21T08:30:00Z", "2026-11-21T09:30:00.250+01:00"); one
// without an offset is UTC. Throws std::invalid_argument, also for years before 1900.
DATE ParseIsoTime(const std::string& text);

// The same the other way, with milliseconds where there are any; a number for what is no date.
std::string FormatIsoTime(DATE time);

} // namespace tsl
