#include "console/IsoTime.h"

#include <date/date.h>

#include <cmath>
#include <cstdio>
#include <sstream>
#include <stdexcept>

#include "console/Text.h"

namespace tsl {

namespace {

using Milliseconds = std::chrono::milliseconds;
using Time = date::sys_time<Milliseconds>;

bool ParseWhole(const std::string& text, const char* format, Time& time) {
    std::istringstream stream(text);
    stream >> date::parse(format, time);
    return !stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
}

constexpr auto kDayZero = date::sys_days(date::year(1899) / 12 / 30);
constexpr double kMillisecondsPerDay = 8.64e7;

} // namespace

DATE ParseIsoTime(const std::string& text) {
    Time time{};
    const bool parsed = ParseWhole(text, "%FT%TZ", time) || ParseWhole(text, "%FT%T%Ez", time) ||
                        ParseWhole(text, "%FT%T", time);
    constexpr auto kFirstDay = date::sys_days(date::year(1900) / 1 / 1);
    if (!parsed || time < kFirstDay) {
        throw std::invalid_argument("\"" + Abridged(text) + "\" is no ISO 8601 time from 1900 on");
    }
    return static_cast<double>((time - kDayZero).count()) / kMillisecondsPerDay;
}

std::string FormatIsoTime(DATE time) {
    constexpr DATE kLastDay = 2958465.0; // 9999-12-31
    if (!(time >= 0.0 && time <= kLastDay)) return std::to_string(time);
    const Time rounded =
        kDayZero + Milliseconds(static_cast<long long>(std::llround(time * kMillisecondsPerDay)));
    const auto day = date::floor<date::days>(rounded);
    const date::year_month_day calendar(day);
    const date::hh_mm_ss<Milliseconds> clock(rounded - day);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d",
                  static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                  static_cast<unsigned>(calendar.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    std::string formatted(text);
    const int milliseconds = static_cast<int>(clock.subseconds().count());
    if (milliseconds != 0) {
        std::snprintf(text, sizeof text, ".%03d", milliseconds);
        formatted += text;
    }
    return formatted + "Z";
}

} // namespace tsl
