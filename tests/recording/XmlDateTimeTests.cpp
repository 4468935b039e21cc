// Instants without any time zone: calendar fields, OLE dates before and after their epoch, seconds.
#include "recording/XmlDateTime.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace tsl::test {

namespace {

constexpr double kSecond = 1.0 / 86400.0;
constexpr double kTiny = 1e-9; // a tenth of a millisecond

static_assert(std::has_virtual_destructor_v<CXmlDateTime>);

SYSTEMTIME Fields(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0,
                  WORD milliseconds = 0) {
    return {year, month, /*wDayOfWeek=*/0, day, hour, minute, second, milliseconds};
}

CXmlDateTime FromUtcFields(const SYSTEMTIME& fields) {
    CXmlDateTime time;
    EXPECT_TRUE(time.SetFromSystemTime(fields, /*isLocal=*/false));
    return time;
}

CXmlDateTime FromUtcDate(DATE date) {
    CXmlDateTime time;
    time.SetFromDate(date, /*isLocal=*/false);
    return time;
}

INT64 Seconds(CXmlDateTime time) {
    INT64 seconds = -12345;
    EXPECT_TRUE(time.ToTime64(seconds, /*useLocal=*/false));
    return seconds;
}

DATE AfterAdding(DATE date, double span) {
    CXmlDateTime time = FromUtcDate(date);
    time.AddDays(span);
    return time.Date();
}

const SYSTEMTIME kNoDates[] = {
    Fields(2023, 2, 29),    Fields(2024, 2, 30),       Fields(2024, 13, 1),
    Fields(2024, 0, 1),     Fields(2024, 4, 31),       Fields(2024, 1, 0),
    Fields(2024, 1, 1, 24), Fields(2024, 1, 1, 0, 60), Fields(2024, 1, 1, 0, 0, 60),
    Fields(50, 1, 1),       Fields(10000, 1, 1),
};

} // namespace

TEST(XmlDateTime, StartsValidAtTheEpochOfDates) {
    const CXmlDateTime time;
    EXPECT_TRUE(time.IsValid());
    EXPECT_EQ(0.0, time.Date());
}

TEST(XmlDateTime, TurnsCalendarFieldsIntoADate) {
    const struct {
        SYSTEMTIME fields;
        DATE date;
    } cases[] = {
        {Fields(1899, 12, 30), 0.0},        {Fields(1899, 12, 31, 6), 1.25},
        {Fields(1900, 1, 1), 2.0},          {Fields(1970, 1, 1), 25569.0},
        {Fields(2000, 2, 29, 12), 36585.5}, {Fields(1899, 12, 29), -1.0},
        {Fields(1899, 12, 29, 18), -1.75},  {Fields(9999, 12, 31), 2958465.0},
        {Fields(100, 1, 1), -657434.0},
    };
    for (const auto& [fields, date] : cases) {
        const CXmlDateTime time = FromUtcFields(fields);
        EXPECT_TRUE(time.IsValid());
        EXPECT_NEAR(date, time.Date(), kTiny);
    }
}

TEST(XmlDateTime, AddsTheMilliseconds) {
    EXPECT_NEAR(25569.0 + 0.25 * kSecond, FromUtcFields(Fields(1970, 1, 1, 0, 0, 0, 250)).Date(),
                kTiny);
    EXPECT_NEAR(25569.0 + 0.999 * kSecond, FromUtcFields(Fields(1970, 1, 1, 0, 0, 0, 999)).Date(),
                kTiny);
}

TEST(XmlDateTime, AddsTheMillisecondsForwardBeforeTheEpochToo) {
    // The time part of a date before the epoch is counted from its day on, not backwards.
    EXPECT_NEAR(-1.75 - 0.5 * kSecond, FromUtcFields(Fields(1899, 12, 29, 18, 0, 0, 500)).Date(),
                kTiny);
    EXPECT_NEAR(-1.0 - 0.5 * kSecond, FromUtcFields(Fields(1899, 12, 29, 0, 0, 0, 500)).Date(),
                kTiny);
}

TEST(XmlDateTime, IgnoresTheDayOfTheWeek) {
    SYSTEMTIME fields = Fields(1970, 1, 1);
    fields.wDayOfWeek = 6;
    EXPECT_TRUE(FromUtcFields(fields).IsValid());
}

TEST(XmlDateTime, IsInvalidForFieldsThatAreNoDate) {
    for (const SYSTEMTIME& fields : kNoDates) {
        EXPECT_FALSE(FromUtcFields(fields).IsValid())
            << fields.wYear << "-" << fields.wMonth << "-" << fields.wDay << " " << fields.wHour
            << ":" << fields.wMinute << ":" << fields.wSecond;
    }
}

TEST(XmlDateTime, BecomesValidAgainWithTheNextValue) {
    CXmlDateTime time = FromUtcFields(Fields(2023, 2, 29));
    ASSERT_FALSE(time.IsValid());
    time.SetFromDate(1.0, /*isLocal=*/false);
    EXPECT_TRUE(time.IsValid());
    EXPECT_EQ(1.0, time.Date());

    time = FromUtcFields(Fields(2023, 2, 29));
    EXPECT_TRUE(time.SetFromSystemTime(Fields(1899, 12, 31), /*isLocal=*/false));
    EXPECT_TRUE(time.IsValid());
}

TEST(XmlDateTime, TakesADateAsItIs) {
    for (const DATE date : {0.0, 45000.123456789, -1.75, -0.000005, -0.00001, 1e-12})
        EXPECT_EQ(date, FromUtcDate(date).Date());
}

TEST(XmlDateTime, CountsLessThanHalfASecondBeforeTheEpochAsItIs) {
    EXPECT_NEAR(1.0 - 0.000005, AfterAdding(-0.000005, 1.0), kTiny);
    EXPECT_NEAR(-0.000005, AfterAdding(-0.000005, 0.0), kTiny);
}

TEST(XmlDateTime, CountsMoreThanHalfASecondBeforeTheEpochInTheLinearForm) {
    EXPECT_NEAR(1.0 + 0.00001, AfterAdding(-0.00001, 1.0), kTiny);
}

TEST(XmlDateTime, TurnsExactlyHalfASecondBeforeTheEpochIntoTheLinearForm) {
    EXPECT_NEAR(1.0 + 5.787037037037037e-6, AfterAdding(-5.787037037037037e-6, 1.0), 1e-15);
    EXPECT_NEAR(1.0 - 5.787037037037036e-6, AfterAdding(-5.787037037037036e-6, 1.0), 1e-15);
}

TEST(XmlDateTime, AddsSpansAcrossTheEpoch) {
    const struct {
        DATE from;
        double span;
        DATE to;
    } cases[] = {
        {0.5, -1.0, -1.5},    // noon of the day before
        {-1.5, 1.0, 0.5},     // and back
        {0.0, -0.25, -1.75},  // six hours before the epoch
        {-1.75, 0.25, 0.0},   // and back
        {-1.25, 0.5, -1.75},  // forward within a day before the epoch
        {-2.75, -0.5, -2.25}, // backward within a day before the epoch
        {100.25, -200.0, -100.25}, {3.0, 1.5, 4.5},
    };
    for (const auto& [from, span, to] : cases)
        EXPECT_NEAR(to, AfterAdding(from, span), kTiny) << from << " and " << span;
}

TEST(XmlDateTime, CountsTheSecondsSince1970) {
    EXPECT_EQ(0, Seconds(FromUtcFields(Fields(1970, 1, 1))));
    EXPECT_EQ(0, Seconds(FromUtcDate(25569.0)));
    EXPECT_EQ(1, Seconds(FromUtcFields(Fields(1970, 1, 1, 0, 0, 1))));
    EXPECT_EQ(951782400, Seconds(FromUtcFields(Fields(2000, 2, 29))));
    EXPECT_EQ(1000000000, Seconds(FromUtcFields(Fields(2001, 9, 9, 1, 46, 40))));
    EXPECT_EQ(2147483648, Seconds(FromUtcFields(Fields(2038, 1, 19, 3, 14, 8))));
    EXPECT_EQ(32503679999, Seconds(FromUtcFields(Fields(2999, 12, 31, 23, 59, 59))));
}

TEST(XmlDateTime, CountsWholeSecondsOnly) {
    EXPECT_EQ(0, Seconds(FromUtcFields(Fields(1970, 1, 1, 0, 0, 0, 250))));
}

TEST(XmlDateTime, BringsTheFieldsOfManyMomentsBackToTheSecond) {
    for (INT64 expected = 0; expected < 4'000'000'000; expected += 86'399 * 17) {
        const DATE date = 25569.0 + static_cast<double>(expected) * kSecond;
        ASSERT_EQ(expected, Seconds(FromUtcDate(date)));
    }
}

TEST(XmlDateTime, CountsAnewAfterEveryChange) {
    CXmlDateTime time = FromUtcDate(25569.0);
    INT64 seconds = -1;
    EXPECT_TRUE(time.ToTime64(seconds, /*useLocal=*/false));
    EXPECT_EQ(0, seconds);
    time.AddDays(1.0);
    EXPECT_TRUE(time.ToTime64(seconds, /*useLocal=*/false));
    EXPECT_EQ(86400, seconds);
    time.SetFromDate(25571.0, /*isLocal=*/false);
    EXPECT_TRUE(time.ToTime64(seconds, /*useLocal=*/false));
    EXPECT_EQ(2 * 86400, seconds);
    time.SetFromSystemTime(Fields(1970, 1, 4), /*isLocal=*/false);
    EXPECT_TRUE(time.ToTime64(seconds, /*useLocal=*/false));
    EXPECT_EQ(3 * 86400, seconds);
}

TEST(XmlDateTime, KeepsTheFieldsItHadWhenItBecomesInvalid) {
    CXmlDateTime time = FromUtcDate(25570.0);
    INT64 seconds = 0;
    EXPECT_TRUE(time.ToTime64(seconds, /*useLocal=*/false));
    time.SetFromSystemTime(Fields(2023, 2, 29), /*isLocal=*/false);
    seconds = 0;
    EXPECT_TRUE(time.ToTime64(seconds, /*useLocal=*/false)) << "counting never fails";
    EXPECT_EQ(86400, seconds);
}

TEST(CheckedDate, HoldsTheWholeSeconds) {
    DATE date = 7.0;
    EXPECT_TRUE(SystemTimeToDateChecked(Fields(1970, 1, 1, 6, 0, 0, 999), date));
    EXPECT_NEAR(25569.25, date, kTiny);
}

TEST(CheckedDate, FailsForFieldsThatDoNotComeBack) {
    for (const SYSTEMTIME& fields : kNoDates) {
        DATE date = 7.0;
        EXPECT_FALSE(SystemTimeToDateChecked(fields, date));
    }
}

TEST(CheckedDate, WorksForEverySecondOfADay) {
    for (unsigned second = 0; second < 86400; second += 7) {
        DATE date = 0.0;
        ASSERT_TRUE(SystemTimeToDateChecked(Fields(2024, 2, 29, static_cast<WORD>(second / 3600),
                                                   static_cast<WORD>(second / 60 % 60),
                                                   static_cast<WORD>(second % 60)),
                                            date));
        ASSERT_NEAR(45351.0 + second * kSecond, date, kTiny);
    }
}

} // namespace tsl::test
