// Local time and UTC under the zones that the machine may have. Each suite needs a zone of its own,
// which it is told by TSL_TEST_ZONE, and skips itself elsewhere.
#include <cstdlib>
#include <ctime>

#include "recording/RecordWriter.h"
#include "recording/XmlDateTime.h"
#include "tests/recording/LinkedActions.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr double kOneSecond = 1.0 / 86400.0;
constexpr double kHour = 1.0 / 24.0;
constexpr double kAlmostNothing = 1e-9;

SYSTEMTIME LocalFields(WORD year, WORD month, WORD day, WORD hour, WORD milliseconds = 0) {
    return {year, month, /*wDayOfWeek=*/0, day, hour, 0, 0, milliseconds};
}

DATE Midnight(WORD year, WORD month, WORD day) {
    DATE date = 0.0;
    SYSTEMTIME fields = LocalFields(year, month, day, 0);
    EXPECT_TRUE(SystemTimeToVariantTime(&fields, &date));
    return date;
}

// The UTC date of local fields, which must convert both as fields and as a date.
void ExpectUtcOfLocal(const SYSTEMTIME& local, DATE utc) {
    CXmlDateTime fromFields;
    EXPECT_TRUE(fromFields.SetFromSystemTime(local, /*isLocal=*/true));
    EXPECT_TRUE(fromFields.IsValid());
    EXPECT_NEAR(utc, fromFields.Date(), kAlmostNothing);

    CXmlDateTime fromDate;
    fromDate.SetFromDate(Midnight(local.wYear, local.wMonth, local.wDay) + local.wHour * kHour +
                             local.wMilliseconds / 1000.0 * kOneSecond,
                         /*isLocal=*/true);
    EXPECT_TRUE(fromDate.IsValid());
    EXPECT_NEAR(utc, fromDate.Date(), kAlmostNothing);
}

// How many hours the local wall clock is ahead of a UTC date, by the two counts of seconds.
double LocalAheadHours(DATE utc) {
    CXmlDateTime time;
    time.SetFromDate(utc, /*isLocal=*/false);
    INT64 utcSeconds = 0;
    INT64 localSeconds = 0;
    EXPECT_TRUE(time.ToTime64(utcSeconds, /*useLocal=*/false));
    EXPECT_TRUE(time.ToTime64(localSeconds, /*useLocal=*/true));
    return static_cast<double>(localSeconds - utcSeconds) / 3600.0;
}

class ZoneTest : public StoreTest {
protected:
    ZoneTest(const char* zone, LONG bias, bool daylightRules)
        : m_zone(zone), m_bias(bias), m_daylightRules(daylightRules) {}

    void SetUp() override {
        const char* const wanted = std::getenv("TSL_TEST_ZONE");
        if (!wanted || std::string(wanted) != m_zone) GTEST_SKIP() << "needs the zone " << m_zone;
        TIME_ZONE_INFORMATION zone{};
        ASSERT_NE(TIME_ZONE_ID_INVALID, GetTimeZoneInformation(&zone));
        ASSERT_EQ(m_bias, zone.Bias);
        ASSERT_EQ(m_daylightRules, zone.StandardDate.wMonth != 0 && zone.DaylightDate.wMonth != 0);
        StoreTest::SetUp();
    }

    // What a record and the moment of an action hold must be UTC in every zone.
    static void ExpectRecordedTimesAreUtc() {
        const std::time_t before = std::time(nullptr);
        ContainerBuilder action;
        const BuiltText built = Build(action.Text(kKeyActionName, L"playItem"), kLinkedLogKind);
        long long moment = 0;
        ASSERT_EQ(1, swscanf(built.text.c_str(), L"ullValues={%lld}", &moment));
        EXPECT_NEAR(static_cast<double>(before), static_cast<double>(moment), 2.0);
        EXPECT_EQ(Ok(L"ullValues={" TSL_TEST_MOMENT L"}&intValues={0}"),
                  Build(MomentaryAction(), kLinkedLogKind))
            << "the host's own time is taken unconverted";

        const CActionLogStore store(GetModuleHandleW(nullptr));
        ASSERT_EQ(S_OK, WriteActionRecord(store, Target{}, Action(1, L"playItem")));
        const double written = std::stod(FileDatabase(ActionLogPath())
                                             .Value("SELECT (PluginLoggedTime - 25569) * 86400.0 "
                                                    "FROM TslIf_DbActionLog"));
        EXPECT_NEAR(static_cast<double>(before), written, 5.0);
    }

private:
    const char* const m_zone;
    const LONG m_bias;
    const bool m_daylightRules;
};

} // namespace

class TimeZoneTokyo : public ZoneTest {
protected:
    TimeZoneTokyo() : ZoneTest("Asia/Tokyo", -540, /*daylightRules=*/false) {}
};

TEST_F(TimeZoneTokyo, NineInTheMorningIsMidnightUtcOfTheSameDay) {
    ExpectUtcOfLocal(LocalFields(2024, 1, 15, 9), Midnight(2024, 1, 15));
    ExpectUtcOfLocal(LocalFields(2024, 7, 15, 9), Midnight(2024, 7, 15));
}

TEST_F(TimeZoneTokyo, KeepsTheMilliseconds) {
    ExpectUtcOfLocal(LocalFields(2024, 1, 15, 9, 250), Midnight(2024, 1, 15) + 0.25 * kOneSecond);
}

TEST_F(TimeZoneTokyo, ConvertsAcrossTheEpochOfDates) {
    CXmlDateTime time;
    time.SetFromDate(0.0, /*isLocal=*/true);
    EXPECT_NEAR(-1.625, time.Date(), kAlmostNothing); // 15:00 of the day before
}

TEST_F(TimeZoneTokyo, IsNineHoursAheadAllYear) {
    EXPECT_EQ(9.0, LocalAheadHours(Midnight(2024, 1, 15)));
    EXPECT_EQ(9.0, LocalAheadHours(Midnight(2024, 7, 15)));
    EXPECT_EQ(9.0, LocalAheadHours(25569.0));
}

TEST_F(TimeZoneTokyo, ReportsNoFailureForAnInvalidInstant) {
    CXmlDateTime time;
    EXPECT_TRUE(time.SetFromSystemTime(LocalFields(2023, 2, 29, 0), /*isLocal=*/true));
    EXPECT_FALSE(time.IsValid());
}

TEST_F(TimeZoneTokyo, RecordsUtc) {
    ExpectRecordedTimesAreUtc();
}

class TimeZoneBerlin : public ZoneTest {
protected:
    TimeZoneBerlin() : ZoneTest("Europe/Berlin", -60, /*daylightRules=*/true) {}
};

TEST_F(TimeZoneBerlin, IsOneHourAheadInWinter) {
    ExpectUtcOfLocal(LocalFields(2024, 1, 15, 12), Midnight(2024, 1, 15) + 11 * kHour);
    EXPECT_EQ(1.0, LocalAheadHours(Midnight(2024, 1, 15)));
}

TEST_F(TimeZoneBerlin, IsTwoHoursAheadInSummer) {
    ExpectUtcOfLocal(LocalFields(2024, 7, 15, 12), Midnight(2024, 7, 15) + 10 * kHour);
    EXPECT_EQ(2.0, LocalAheadHours(Midnight(2024, 7, 15)));
}

TEST_F(TimeZoneBerlin, ChangesDayAtItsOwnMidnight) {
    ExpectUtcOfLocal(LocalFields(2024, 7, 15, 1), Midnight(2024, 7, 14) + 23 * kHour);
    ExpectUtcOfLocal(LocalFields(2024, 1, 1, 0), Midnight(2023, 12, 31) + 23 * kHour);
}

TEST_F(TimeZoneBerlin, ChangesOnTheDaysOfTheRules) {
    // The last Sundays of March and October, at 01:00 UTC.
    EXPECT_EQ(1.0, LocalAheadHours(Midnight(2024, 3, 31) + 0.5 * kHour));
    EXPECT_EQ(2.0, LocalAheadHours(Midnight(2024, 3, 31) + 1.5 * kHour));
    EXPECT_EQ(2.0, LocalAheadHours(Midnight(2024, 10, 27) + 0.5 * kHour));
    EXPECT_EQ(1.0, LocalAheadHours(Midnight(2024, 10, 27) + 1.5 * kHour));
    ExpectUtcOfLocal(LocalFields(2024, 3, 31, 1), Midnight(2024, 3, 31));
    ExpectUtcOfLocal(LocalFields(2024, 3, 31, 4), Midnight(2024, 3, 31) + 2 * kHour);
    ExpectUtcOfLocal(LocalFields(2024, 10, 27, 4), Midnight(2024, 10, 27) + 3 * kHour);
}

TEST_F(TimeZoneBerlin, KeepsTheMilliseconds) {
    for (const WORD milliseconds :
         {WORD{1}, WORD{250}, WORD{499}, WORD{500}, WORD{501}, WORD{999}}) {
        const double rest = milliseconds / 1000.0 * kOneSecond;
        ExpectUtcOfLocal(LocalFields(2024, 1, 15, 12, milliseconds),
                         Midnight(2024, 1, 15) + 11 * kHour + rest);
        ExpectUtcOfLocal(LocalFields(2024, 7, 15, 12, milliseconds),
                         Midnight(2024, 7, 15) + 10 * kHour + rest);
    }
}

TEST_F(TimeZoneBerlin, ReportsAFailureForAnInvalidInstant) {
    CXmlDateTime time;
    EXPECT_FALSE(time.SetFromSystemTime(LocalFields(2023, 2, 29, 0), /*isLocal=*/true));
    EXPECT_FALSE(time.IsValid());
}

TEST_F(TimeZoneBerlin, RecordsUtc) {
    ExpectRecordedTimesAreUtc();
}

class TimeZoneNewYork : public ZoneTest {
protected:
    TimeZoneNewYork() : ZoneTest("America/New_York", 300, /*daylightRules=*/true) {}
};

TEST_F(TimeZoneNewYork, IsFiveHoursBehindInWinter) {
    ExpectUtcOfLocal(LocalFields(2024, 1, 15, 12), Midnight(2024, 1, 15) + 17 * kHour);
    ExpectUtcOfLocal(LocalFields(2024, 1, 15, 20), Midnight(2024, 1, 16) + 1 * kHour);
    EXPECT_EQ(-5.0, LocalAheadHours(Midnight(2024, 1, 15)));
}

TEST_F(TimeZoneNewYork, IsFourHoursBehindInSummer) {
    ExpectUtcOfLocal(LocalFields(2024, 7, 15, 12), Midnight(2024, 7, 15) + 16 * kHour);
    EXPECT_EQ(-4.0, LocalAheadHours(Midnight(2024, 7, 15)));
}

TEST_F(TimeZoneNewYork, RecordsUtc) {
    ExpectRecordedTimesAreUtc();
}

class TimeZoneSydney : public ZoneTest {
protected:
    TimeZoneSydney() : ZoneTest("Australia/Sydney", -600, /*daylightRules=*/true) {}
};

TEST_F(TimeZoneSydney, HasItsSummerInJanuary) {
    ExpectUtcOfLocal(LocalFields(2024, 1, 15, 12), Midnight(2024, 1, 15) + 1 * kHour);
    ExpectUtcOfLocal(LocalFields(2024, 7, 15, 12), Midnight(2024, 7, 15) + 2 * kHour);
    EXPECT_EQ(11.0, LocalAheadHours(Midnight(2024, 1, 15)));
    EXPECT_EQ(10.0, LocalAheadHours(Midnight(2024, 7, 15)));
}

TEST_F(TimeZoneSydney, RecordsUtc) {
    ExpectRecordedTimesAreUtc();
}

} // namespace tsl::test
