// Charts as inline SVG, which stretches to the room there is. The words and numbers around a chart
// are HTML and keep their size on a phone. Colours are the page's.
#pragma once

#include <string>

#include "upkeep/statistics/TimeBins.h"

namespace tsl {

// Which bin, and which hour of the week, has most records, as a sentence. REQUIRES, like the
// charts: there are some.
std::string BusiestWords(const TimeBins& bins);
std::string BusiestWords(const HoursOfWeek& hours);

// A column for each bin.
std::string RecordsChart(const TimeBins& bins);

// A line that rises to all records.
std::string GrowthChart(const TimeBins& bins);

// Seven rows of 24 fields, darker the more records there are, with a legend.
std::string HoursChart(const HoursOfWeek& hours);

// A thin bar; the longest is that of most records.
std::string ShareBar(std::int64_t records, std::int64_t most, const std::string& title);

} // namespace tsl
