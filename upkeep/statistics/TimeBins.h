// Days put together where there are too many to be drawn one by one.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "upkeep/statistics/Statistics.h"

namespace tsl {

enum class BinUnit { Day, Week, Month, Year, Decade, Century };

struct TimeBin {
    int firstDay = 0; // since 30 December 1899
    std::int64_t records = 0;
    std::int64_t total = 0; // with all before
};

// One after another, also those without records.
struct TimeBins {
    BinUnit unit = BinUnit::Day;
    std::vector<TimeBin> bins;
};

// In the smallest unit that needs at most 120 of them. REQUIRES: the days ascend.
TimeBins MakeTimeBins(std::span<const DayTally> days);

// "day", "week" ... "century".
std::string UnitName(BinUnit unit);

// "2026-11-20", "2026-11-16 to 2026-11-22", "Nov 2026", "2026", "2020 to 2029".
std::string BinName(BinUnit unit, int firstDay);

// The same where there is little room: "20 Nov", "Nov 2026", "2026".
std::string ShortBinName(BinUnit unit, int firstDay);

} // namespace tsl
