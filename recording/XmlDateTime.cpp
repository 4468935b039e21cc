#include "recording/XmlDateTime.h"

#include <cmath>
#include <ctime>

namespace tsl {

namespace {

constexpr double kMillisecondsPerDay = 8.64e7;
constexpr double kMinutesPerHour = 60.0;
constexpr double kHoursPerDay = 24.0;

// Half a second before the epoch: dates from here down keep day and time with different signs.
constexpr double kNegativeBound = -5.787037037037037e-6;

// Beyond this many days there is no date at all.
constexpr double kWidestSpan = 3615897.0;

// OLE dates before the epoch run backwards within a day; in the linear form they can be added.
double ToLinear(DATE date) noexcept {
    return date <= kNegativeBound ? 2.0 * std::ceil(date) - date : date;
}

DATE FromLinear(double linear) noexcept {
    return linear <= kNegativeBound ? 2.0 * std::floor(linear) - linear : linear;
}

DATE AddLinear(DATE date, double span) noexcept {
    return FromLinear(ToLinear(date) + span);
}

bool SameSecond(const SYSTEMTIME& a, const SYSTEMTIME& b) noexcept {
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay && a.wHour == b.wHour &&
           a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}

bool DateToFields(DATE date, SYSTEMTIME& fields) noexcept {
    SYSTEMTIME converted{};
    if (!std::isfinite(date) || !VariantTimeToSystemTime(date, &converted)) return false;
    converted.wMilliseconds = 0;
    fields = converted;
    return true;
}

// What the date has beyond the whole seconds of its fields, in days.
double SubSecondDays(DATE date, SYSTEMTIME wholeSeconds) noexcept {
    wholeSeconds.wMilliseconds = 0;
    DATE whole = 0.0;
    SystemTimeToVariantTime(&wholeSeconds, &whole);
    return ToLinear(date) - ToLinear(whole);
}

} // namespace

bool SystemTimeToDateChecked(const SYSTEMTIME& fields, DATE& date) noexcept {
    SYSTEMTIME wholeSeconds = fields;
    wholeSeconds.wMilliseconds = 0;
    SYSTEMTIME back{};
    DATE converted = 0.0;
    if (!SystemTimeToVariantTime(&wholeSeconds, &converted)) return false;
    if (!DateToFields(converted, back) || !SameSecond(back, wholeSeconds)) return false;
    date = converted;
    return true;
}

const CXmlDateTime::ZoneDirection CXmlDateTime::kLocalToUtc = {&TzSpecificLocalTimeToSystemTime,
                                                               1.0};
const CXmlDateTime::ZoneDirection CXmlDateTime::kUtcToLocal = {&SystemTimeToTzSpecificLocalTime,
                                                               -1.0};

bool CXmlDateTime::SetFromSystemTime(const SYSTEMTIME& fields, bool isLocal) {
    Instant instant;
    if (!SystemTimeToDateChecked(fields, instant.date)) instant.status = kInvalid;
    instant.date = AddLinear(instant.date, fields.wMilliseconds / kMillisecondsPerDay);
    const bool converted = !isLocal || ConvertZone(instant, kLocalToUtc);
    Store(instant);
    return converted;
}

void CXmlDateTime::SetFromDate(DATE date, bool isLocal) {
    Instant instant{date, kValid};
    if (isLocal) ConvertZone(instant, kLocalToUtc);
    Store(instant);
}

bool CXmlDateTime::ToTime64(INT64& seconds, bool useLocal) {
    RefreshFields();
    const SYSTEMTIME& fields = useLocal ? m_localFields : m_utcFields;
    std::tm calendar{};
    calendar.tm_year = fields.wYear - 1900;
    calendar.tm_mon = fields.wMonth - 1;
    calendar.tm_mday = fields.wDay;
    calendar.tm_hour = fields.wHour;
    calendar.tm_min = fields.wMinute;
    calendar.tm_sec = fields.wSecond;
    seconds = _mkgmtime64(&calendar);
    return true;
}

void CXmlDateTime::AddDays(double span) noexcept {
    Store({AddLinear(m_instant.date, span), m_instant.status});
}

bool CXmlDateTime::ConvertZone(Instant& instant, const ZoneDirection& direction) {
    TIME_ZONE_INFORMATION zone{};
    if (GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID) return false;
    if (zone.StandardDate.wMonth != 0 && zone.DaylightDate.wMonth != 0) {
        return ConvertByRules(instant, zone, direction);
    }
    const double days = static_cast<double>(zone.Bias) / kMinutesPerHour / kHoursPerDay;
    instant.date = AddLinear(instant.date, direction.biasSign * days);
    return true;
}

bool CXmlDateTime::ConvertByRules(Instant& instant, const TIME_ZONE_INFORMATION& zone,
                                  const ZoneDirection& direction) {
    SYSTEMTIME fields{};
    SYSTEMTIME converted{};
    if (instant.status != kValid || !DateToFields(instant.date, fields)) return false;
    const double remainder = SubSecondDays(instant.date, fields);
    const bool result = direction.convertFields(&zone, &fields, &converted) != 0;
    if (!SystemTimeToDateChecked(converted, instant.date) || std::abs(remainder) > kWidestSpan) {
        instant.status = kInvalid;
    }
    instant.date = AddLinear(instant.date, remainder);
    return result;
}

void CXmlDateTime::Store(const Instant& instant) noexcept {
    m_instant = instant;
    m_stale = true;
}

void CXmlDateTime::RefreshFields() {
    if (!m_stale) return;
    m_stale = false;
    if (!IsValid() || !DateToFields(m_instant.date, m_utcFields)) return;
    Instant local = m_instant;
    ConvertZone(local, kUtcToLocal);
    if (local.status == kValid) DateToFields(local.date, m_localFields);

    const double milliseconds =
        SubSecondDays(m_instant.date, m_utcFields) * kMillisecondsPerDay + 0.4999;
    const WORD whole = milliseconds < 0.0 ? WORD{0} : static_cast<WORD>(milliseconds);
    m_utcFields.wMilliseconds = whole;
    m_localFields.wMilliseconds = whole;
}

} // namespace tsl
