// Figures as people read them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "upkeep/statistics/Statistics.h"

namespace tsl {

// "1,234,567".
std::string Grouped(std::int64_t number);

// "1 record", "1,234 records".
std::string Counted(std::int64_t number, std::string_view one, std::string_view more);

// "12.3 %"; "< 0.1 %" for what is there and would be rounded away.
std::string Share(std::int64_t part, std::int64_t whole);

// "512 bytes", "12.3 KB", "1.5 GB".
std::string FileSize(std::uint64_t bytes);

// What the list counts in all.
std::int64_t Sum(std::span<const Tally> tallies);

// The first of a list, and how many others there are with how many records.
struct TopTallies {
    std::span<const Tally> shown;
    size_t others = 0;
    std::int64_t otherRecords = 0;
};
TopTallies Top(std::span<const Tally> tallies, size_t count);

// The busiest hour; 0 without records.
std::int64_t Busiest(const HoursOfWeek& hours);

} // namespace tsl
