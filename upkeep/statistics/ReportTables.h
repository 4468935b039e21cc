// The tables of the report, as HTML.
#pragma once

#include <string>

#include "upkeep/statistics/TimeBins.h"

namespace tsl {

// The first of a list, each with a bar, and a line for the others. kind stands before names that
// are numbers: "User".
std::string TopTable(const std::string& caption, const std::string& kind,
                     const std::vector<Tally>& tallies);

std::string RecordsTable(const StoreFigures& figures);
std::string TimesTable(const StoreFigures& figures);
std::string FilesTable(const StoreFigures& figures);

// What the charts show.
std::string TimeTable(const TimeBins& bins);
std::string HoursTable(const HoursOfWeek& hours);

} // namespace tsl
