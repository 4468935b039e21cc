#include "upkeep/statistics/Figures.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <numeric>

namespace tsl {

namespace {

std::string WithOneDecimal(double number, std::string_view unit) {
    char text[32];
    std::snprintf(text, std::size(text), "%.1f ", number);
    return std::string(text).append(unit);
}

} // namespace

std::string Grouped(std::int64_t number) {
    std::string text = std::to_string(number);
    const size_t sign = number < 0 ? 1 : 0;
    for (size_t place = text.size(); place > sign + 3;)
        text.insert(place -= 3, 1, ',');
    return text;
}

std::string Counted(std::int64_t number, std::string_view one, std::string_view more) {
    return Grouped(number).append(" ").append(number == 1 ? one : more);
}

std::string Share(std::int64_t part, std::int64_t whole) {
    if (whole <= 0) return "0.0 %";
    const double percent = 100.0 * static_cast<double>(part) / static_cast<double>(whole);
    if (part > 0 && percent < 0.05) return "< 0.1 %";
    return WithOneDecimal(percent, "%");
}

std::string FileSize(std::uint64_t bytes) {
    if (bytes < 1024) return Counted(static_cast<std::int64_t>(bytes), "byte", "bytes");
    double size = static_cast<double>(bytes) / 1024.0;
    constexpr const char* kUnits[] = {"KB", "MB", "GB"};
    size_t unit = 0;
    for (; size >= 1023.95 && unit + 1 < std::size(kUnits); ++unit)
        size /= 1024.0;
    return WithOneDecimal(size, kUnits[unit]);
}

std::int64_t Sum(std::span<const Tally> tallies) {
    return std::accumulate(
        tallies.begin(), tallies.end(), std::int64_t{0},
        [](std::int64_t sum, const Tally& tally) { return sum + tally.records; });
}

TopTallies Top(std::span<const Tally> tallies, size_t count) {
    const size_t shown = std::min(count, tallies.size());
    return {tallies.first(shown), tallies.size() - shown, Sum(tallies.subspan(shown))};
}

std::int64_t Busiest(const HoursOfWeek& hours) {
    std::int64_t busiest = 0;
    for (const auto& day : hours)
        busiest = std::max(busiest, *std::ranges::max_element(day));
    return busiest;
}

} // namespace tsl
