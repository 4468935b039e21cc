// One instant, convertible between UTC and local time, calendar fields and seconds since 1970 by
// the machine's time zone rules. Not shared between threads without a lock of the caller's.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace tsl {

class CXmlDateTime {
public:
    CXmlDateTime() noexcept = default;
    virtual ~CXmlDateTime() = default;

    // Takes calendar fields with their milliseconds. Fields that are no date make the instant
    // invalid. Returns whether the step from local time to UTC worked, true when there is none.
    bool SetFromSystemTime(const SYSTEMTIME& fields, bool isLocal);

    // Takes an OLE date; the instant is valid unless the step from local time to UTC fails.
    void SetFromDate(DATE date, bool isLocal);

    // Seconds since 1970-01-01 UTC; with useLocal, the local wall clock counted as if it were UTC.
    // Always true.
    bool ToTime64(INT64& seconds, bool useLocal);

    // Moves the instant by a span in days.
    void AddDays(double span) noexcept;

    // The instant as an OLE date in UTC.
    DATE Date() const noexcept { return m_instant.date; }
    bool IsValid() const noexcept { return m_instant.status == kValid; }

private:
    static constexpr LONG kValid = 0;
    static constexpr LONG kInvalid = 1;

    struct Instant {
        DATE date = 0.0;
        LONG status = kValid;
    };

    // What the two directions between local time and UTC differ in.
    struct ZoneDirection {
        decltype(&TzSpecificLocalTimeToSystemTime) convertFields;
        double biasSign;
    };
    static const ZoneDirection kLocalToUtc;
    static const ZoneDirection kUtcToLocal;

    static bool ConvertZone(Instant& instant, const ZoneDirection& direction);
    static bool ConvertByRules(Instant& instant, const TIME_ZONE_INFORMATION& zone,
                               const ZoneDirection& direction);
    void Store(const Instant& instant) noexcept;
    void RefreshFields();

    Instant m_instant;
    bool m_stale = true;
    SYSTEMTIME m_utcFields{};
    SYSTEMTIME m_localFields{};
};

// The OLE date of the fields' whole seconds. False when it does not turn back into the same year,
// month, day, hour, minute and second.
bool SystemTimeToDateChecked(const SYSTEMTIME& fields, DATE& date) noexcept;

} // namespace tsl
