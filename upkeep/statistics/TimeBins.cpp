#include "upkeep/statistics/TimeBins.h"

#include "upkeep/statistics/Calendar.h"

namespace tsl {

namespace {

constexpr size_t kMostBins = 120;
int YearsOf(BinUnit unit) {
    return unit == BinUnit::Century ? 100 : unit == BinUnit::Decade ? 10 : 1;
}

int YearOf(int day) {
    return static_cast<int>(CalendarDay(day).year());
}

int FirstOfYear(int year) {
    return DayNumber(date::year(year) / 1 / 1);
}

// The first day of the bin that the day is in.
int StartOf(BinUnit unit, int day) {
    switch (unit) {
    case BinUnit::Day:
        return day;
    case BinUnit::Week:
        return day - static_cast<int>(WeekdayOf(day));
    case BinUnit::Month:
        return DayNumber(CalendarDay(day).year() / CalendarDay(day).month() / 1);
    default:
        return FirstOfYear(YearOf(day) - YearOf(day) % YearsOf(unit));
    }
}

// The first day of the next bin.
int NextStart(BinUnit unit, int start) {
    switch (unit) {
    case BinUnit::Day:
        return start + 1;
    case BinUnit::Week:
        return start + 7;
    case BinUnit::Month:
        return DayNumber(CalendarDay(start) + date::months(1));
    default:
        return FirstOfYear(YearOf(start) + YearsOf(unit));
    }
}

// None when there would be too many.
std::vector<TimeBin> EmptyBins(BinUnit unit, int firstDay, int lastDay) {
    std::vector<TimeBin> bins;
    for (int start = StartOf(unit, firstDay); start <= lastDay; start = NextStart(unit, start)) {
        if (bins.size() == kMostBins) return {};
        bins.push_back({start});
    }
    return bins;
}

} // namespace

TimeBins MakeTimeBins(std::span<const DayTally> days) {
    TimeBins made;
    if (days.empty()) return made;
    for (const BinUnit unit : {BinUnit::Day, BinUnit::Week, BinUnit::Month, BinUnit::Year,
                               BinUnit::Decade, BinUnit::Century}) {
        made = {unit, EmptyBins(unit, days.front().day, days.back().day)};
        if (!made.bins.empty()) break;
    }
    size_t bin = 0;
    for (const DayTally& day : days) {
        while (bin + 1 < made.bins.size() && made.bins[bin + 1].firstDay <= day.day)
            ++bin;
        made.bins[bin].records += day.records;
    }
    std::int64_t total = 0;
    for (TimeBin& each : made.bins)
        each.total = total += each.records;
    return made;
}

std::string UnitName(BinUnit unit) {
    constexpr const char* kNames[] = {"day", "week", "month", "year", "decade", "century"};
    return kNames[static_cast<size_t>(unit)];
}

std::string BinName(BinUnit unit, int firstDay) {
    switch (unit) {
    case BinUnit::Day:
        return IsoDay(firstDay);
    case BinUnit::Week:
        return IsoDay(firstDay) + " to " + IsoDay(firstDay + 6);
    case BinUnit::Month:
        return MonthOfYear(firstDay);
    case BinUnit::Year:
        return std::to_string(YearOf(firstDay));
    default:
        return std::to_string(YearOf(firstDay)) + " to " +
               std::to_string(YearOf(firstDay) + YearsOf(unit) - 1);
    }
}

std::string ShortBinName(BinUnit unit, int firstDay) {
    switch (unit) {
    case BinUnit::Day:
        return DayOfMonth(firstDay);
    case BinUnit::Week:
    case BinUnit::Month:
        return MonthOfYear(firstDay);
    default:
        return std::to_string(YearOf(firstDay));
    }
}

} // namespace tsl
