// The figures of a store as a page to be read in a browser or printed: complete in itself, without
// an address of anything else and without scripts.
#pragma once

#include <string>

#include "upkeep/statistics/Statistics.h"

namespace tsl {

// HTML in UTF-8.
std::string ReportPage(const StoreFigures& figures);

} // namespace tsl
