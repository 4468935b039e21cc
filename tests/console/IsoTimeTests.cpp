// Times as people write them.
#include "console/IsoTime.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tsl::test {

TEST(IsoTime, IsAnOleDateInUtc) {
    EXPECT_DOUBLE_EQ(2.0, ParseIsoTime("1900-01-01T00:00:00Z"));
    EXPECT_DOUBLE_EQ(25569.0, ParseIsoTime("1970-01-01T00:00:00Z"));
    EXPECT_DOUBLE_EQ(46347.75, ParseIsoTime("2026-11-21T18:00:00Z"));
}

TEST(IsoTime, OffsetIsTakenOff) {
    const DATE utc = ParseIsoTime("2026-11-21T08:30:00Z");
    EXPECT_DOUBLE_EQ(utc, ParseIsoTime("2026-11-21T09:30:00+01:00"));
    EXPECT_DOUBLE_EQ(utc, ParseIsoTime("2026-11-21T03:00:00-05:30"));
}

TEST(IsoTime, WithoutOffsetIsUtc) {
    EXPECT_DOUBLE_EQ(ParseIsoTime("2026-11-21T08:30:00Z"), ParseIsoTime("2026-11-21T08:30:00"));
}

TEST(IsoTime, KeepsMilliseconds) {
    const DATE whole = ParseIsoTime("2026-11-21T08:30:00Z");
    const DATE withMilliseconds = ParseIsoTime("2026-11-21T08:30:00.250Z");
    EXPECT_NEAR(0.250, (withMilliseconds - whole) * 86400.0, 1e-5);
}

TEST(IsoTime, RefusesWhatIsNoTime) {
    for (const char* const text :
         {"", "yesterday", "2026-11-21", "2026-13-01T00:00:00Z", "2026-11-31T00:00:00Z",
          "2026-11-21T25:00:00Z", "2026-11-21T08:30:00Zx", "1899-12-31T23:59:59Z"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(ParseIsoTime(text), std::invalid_argument);
    }
}

} // namespace tsl::test
