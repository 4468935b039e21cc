// Numbers, days and bins as people read them.
#include "upkeep/statistics/Figures.h"

#include <gtest/gtest.h>

#include "upkeep/statistics/Calendar.h"
#include "upkeep/statistics/TimeBins.h"

namespace tsl::test {

namespace {

constexpr int kDay = 46341; // Sunday, 15 November 2026

TEST(Figures, NumbersAreGroupedByThousands) {
    EXPECT_EQ("0", Grouped(0));
    EXPECT_EQ("999", Grouped(999));
    EXPECT_EQ("1,000", Grouped(1000));
    EXPECT_EQ("-1,234,567", Grouped(-1'234'567));
    EXPECT_EQ("1 record", Counted(1, "record", "records"));
    EXPECT_EQ("1,200 records", Counted(1200, "record", "records"));
}

TEST(Figures, SharesNeverHideWhatIsThere) {
    EXPECT_EQ("100.0 %", Share(7, 7));
    EXPECT_EQ("33.3 %", Share(1, 3));
    EXPECT_EQ("< 0.1 %", Share(1, 10'000));
    EXPECT_EQ("0.0 %", Share(0, 7));
    EXPECT_EQ("0.0 %", Share(0, 0));
}

TEST(Figures, SizesHaveTheirUnit) {
    EXPECT_EQ("1 byte", FileSize(1));
    EXPECT_EQ("1,023 bytes", FileSize(1023));
    EXPECT_EQ("1.0 KB", FileSize(1024));
    EXPECT_EQ("1.0 MB", FileSize(1024 * 1024 - 1));
    EXPECT_EQ("3000.0 GB", FileSize(3000ull << 30));
}

TEST(Figures, OthersAreWhatTheTopLeavesOut) {
    const std::vector<Tally> tallies = {{"a", 5}, {"b", 3}, {"c", 2}};
    EXPECT_EQ(10, Sum(tallies));
    const TopTallies top = Top(tallies, 1);
    EXPECT_EQ(1u, top.shown.size());
    EXPECT_EQ(2u, top.others);
    EXPECT_EQ(5, top.otherRecords);
    EXPECT_EQ(0u, Top(tallies, 3).others);
}

TEST(Calendar, NamesDays) {
    EXPECT_EQ("2026-11-15", IsoDay(kDay));
    EXPECT_EQ("15 Nov 2026", SpokenDay(kDay));
    EXPECT_EQ("Sunday", WeekdayName(WeekdayOf(kDay)));
    EXPECT_EQ("Mon", ShortWeekdayName(WeekdayOf(2)));
    EXPECT_EQ("1900-01-01", IsoDay(2));
    EXPECT_EQ("2026-11-15 08:30:05", DayAndTime(kDay + (8 * 3600 + 30 * 60 + 5) / 86400.0));
    EXPECT_EQ("2026-11-15 23:59:59", DayAndTime(kDay + 86399.9 / 86400.0));
}

// So many days, one record each, the last being the 15th.
TimeBins BinsOf(int count, int step = 1) {
    std::vector<DayTally> days;
    for (int day = kDay - (count - 1) * step; day <= kDay; day += step)
        days.push_back({day, 1});
    return MakeTimeBins(days);
}

TEST(TimeBins, UnitGrowsSoThatThereAreNeverTooMany) {
    EXPECT_EQ(BinUnit::Day, BinsOf(1).unit);
    EXPECT_EQ(BinUnit::Day, BinsOf(120).unit);
    EXPECT_EQ(BinUnit::Week, BinsOf(121).unit);
    EXPECT_EQ(BinUnit::Week, BinsOf(840).unit);
    EXPECT_EQ(BinUnit::Month, BinsOf(841).unit);
    EXPECT_EQ(BinUnit::Year, BinsOf(366 * 12).unit);
    EXPECT_EQ(BinUnit::Decade, MakeTimeBins(std::vector<DayTally>{{2, 1}, {kDay, 1}}).unit);
    const TimeBins all = MakeTimeBins(std::vector<DayTally>{{2, 1}, {2958465, 1}});
    EXPECT_EQ(BinUnit::Century, all.unit);
    EXPECT_EQ(81u, all.bins.size());
    EXPECT_EQ("9900 to 9999", BinName(all.unit, all.bins.back().firstDay));
}

TEST(TimeBins, HoldEveryRecordOnce) {
    for (const int count : {1, 2, 119, 120, 121, 700, 1000, 3660, 20'000}) {
        SCOPED_TRACE(count);
        const TimeBins bins = BinsOf(count);
        EXPECT_LE(bins.bins.size(), 120u);
        EXPECT_EQ(count, bins.bins.back().total);
        std::int64_t sum = 0;
        for (const TimeBin& bin : bins.bins)
            sum += bin.records;
        EXPECT_EQ(count, sum);
    }
}

TEST(TimeBins, DaysWithoutRecordsAreThereToo) {
    const TimeBins bins = BinsOf(3, /*step=*/5);
    ASSERT_EQ(11u, bins.bins.size());
    EXPECT_EQ(0, bins.bins[1].records);
    EXPECT_EQ(1, bins.bins[5].records);
    EXPECT_EQ(2, bins.bins[5].total);
}

TEST(TimeBins, AreNamed) {
    EXPECT_EQ("2026-11-15", BinName(BinUnit::Day, kDay));
    EXPECT_EQ("15 Nov", ShortBinName(BinUnit::Day, kDay));
    const TimeBins weeks = BinsOf(200);
    EXPECT_EQ("2026-11-09 to 2026-11-15", BinName(weeks.unit, weeks.bins.back().firstDay));
    const TimeBins months = BinsOf(1000);
    EXPECT_EQ("Nov 2026", BinName(months.unit, months.bins.back().firstDay));
    const TimeBins years = BinsOf(5000);
    EXPECT_EQ("2026", BinName(years.unit, years.bins.back().firstDay));
    EXPECT_EQ(365, years.bins[years.bins.size() - 2].records);
    EXPECT_TRUE(MakeTimeBins({}).bins.empty());
}

} // namespace

} // namespace tsl::test
