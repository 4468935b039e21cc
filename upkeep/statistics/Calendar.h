// Days counted from 30 December 1899, as the store's times count them, and their names. UTC.
#pragma once

#include <date/date.h>

#include <string>
#include <string_view>

namespace tsl {

date::year_month_day CalendarDay(int day);
int DayNumber(const date::year_month_day& calendar);

// "2026-11-20", "20 Nov 2026", "20 Nov", "Nov 2026".
std::string IsoDay(int day);
std::string SpokenDay(int day);
std::string DayOfMonth(int day);
std::string MonthOfYear(int day);

// "2026-11-20 08:30:05".
std::string DayAndTime(double time);

// Monday is 0. "Monday", "Mon".
size_t WeekdayOf(int day);
std::string_view WeekdayName(size_t weekday);
std::string_view ShortWeekdayName(size_t weekday);

// "08".
std::string HourName(size_t hour);

} // namespace tsl
