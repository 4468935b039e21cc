// The figures of a store as text for a terminal, and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "upkeep/statistics/Statistics.h"

namespace tsl {

// Lines of a width, a section per group; of the long lists only the first, and a line for the
// others.
std::vector<std::string> StatisticsLines(const StoreFigures& figures, size_t top, size_t width);

// One object with everything.
nlohmann::ordered_json StatisticsJson(const StoreFigures& figures);

} // namespace tsl
