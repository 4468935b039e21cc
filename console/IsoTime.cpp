#include "console/IsoTime.h"

#include <date/date.h>

#include <sstream>
#include <stdexcept>

namespace tsl {

namespace {

using Milliseconds = std::chrono::milliseconds;
using Time = date::sys_time<Milliseconds>;

bool ParseWhole(const std::string& text, const char* format, Time& time) {
    std::istringstream stream(text);
    stream >> date::parse(format, time);
    return !stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
}

} // namespace

DATE ParseIsoTime(const std::string& text) {
    Time time;
    const bool parsed = ParseWhole(text, "%FT%TZ", time) || ParseWhole(text, "%FT%T%Ez", time) ||
                        ParseWhole(text, "%FT%T", time);
    constexpr auto kFirstDay = date::sys_days(date::year(1900) / 1 / 1);
    if (!parsed || time < kFirstDay) {
        throw std::invalid_argument("\"" + text + "\" is no ISO 8601 time from 1900 on");
    }
    constexpr auto kDayZero = date::sys_days(date::year(1899) / 12 / 30);
    constexpr double kMillisecondsPerDay = 8.64e7;
    return static_cast<double>((time - kDayZero).count()) / kMillisecondsPerDay;
}

} // namespace tsl
