#include "upkeep/statistics/Calendar.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>

namespace tsl {

namespace {

constexpr auto kDayZero = date::sys_days(date::year(1899) / 12 / 30);
constexpr std::string_view kWeekdays[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                          "Friday", "Saturday", "Sunday"};
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::string YearText(int day) {
    return std::to_string(static_cast<int>(CalendarDay(day).year()));
}

std::string MonthName(int day) {
    return kMonths[static_cast<unsigned>(CalendarDay(day).month()) - 1];
}

} // namespace

date::year_month_day CalendarDay(int day) {
    return kDayZero + date::days(day);
}

int DayNumber(const date::year_month_day& calendar) {
    return static_cast<int>((date::sys_days(calendar) - kDayZero).count());
}

std::string IsoDay(int day) {
    const date::year_month_day calendar = CalendarDay(day);
    char text[24];
    std::snprintf(text, std::size(text), "%04d-%02u-%02u", static_cast<int>(calendar.year()),
                  static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()));
    return text;
}

std::string SpokenDay(int day) {
    return DayOfMonth(day) + " " + YearText(day);
}

std::string DayOfMonth(int day) {
    return std::to_string(static_cast<unsigned>(CalendarDay(day).day())) + " " + MonthName(day);
}

std::string MonthOfYear(int day) {
    return MonthName(day) + " " + YearText(day);
}

std::string DayAndTime(double time) {
    // A little is added, for full seconds are stored a little too low.
    const auto seconds = static_cast<std::int64_t>(std::floor(time * 86400.0 + 1e-3));
    const auto second = static_cast<int>(seconds % 86400);
    char text[16];
    std::snprintf(text, std::size(text), " %02d:%02d:%02d", second / 3600, second / 60 % 60,
                  second % 60);
    return IsoDay(static_cast<int>(seconds / 86400)) + text;
}

size_t WeekdayOf(int day) {
    return static_cast<size_t>((day + 5) % 7); // day 2 was a Monday
}

std::string_view WeekdayName(size_t weekday) {
    return kWeekdays[weekday];
}

std::string_view ShortWeekdayName(size_t weekday) {
    return kWeekdays[weekday].substr(0, 3);
}

std::string HourName(size_t hour) {
    std::string name = std::to_string(hour);
    if (name.size() < 2) name.insert(0, 1, '0');
    return name;
}

} // namespace tsl
