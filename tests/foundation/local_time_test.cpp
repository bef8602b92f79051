#include "melodex/foundation/local_time.h"

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace melodex {
namespace {

// Sets the process's time zone for one test and puts the old one back. POSIX
// rule strings need no zone database on the machine.
class ScopedTimeZone {
public:
    explicit ScopedTimeZone(const char* zone) {
        if (const char* old = std::getenv("TZ")) m_old = old;
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~ScopedTimeZone() {
        if (m_old)
            ::setenv("TZ", m_old->c_str(), 1);
        else
            ::unsetenv("TZ");
        ::tzset();
    }
    ScopedTimeZone(const ScopedTimeZone&) = delete;
    ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

private:
    std::optional<std::string> m_old;
};

constexpr const char* CentralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST(LocalTimeTest, ParsesAndFormatsTheStoredForm) {
    const std::optional<LocalTime> time = LocalTime::parse("20240131174502");
    ASSERT_TRUE(time.has_value());
    EXPECT_EQ(*time, LocalTime(2024, 1, 31, 17, 45, 2));
    EXPECT_EQ(time->year(), 2024);
    EXPECT_EQ(time->month(), 1);
    EXPECT_EQ(time->day(), 31);
    EXPECT_EQ(time->hour(), 17);
    EXPECT_EQ(time->minute(), 45);
    EXPECT_EQ(time->second(), 2);
    EXPECT_EQ(time->format(), "20240131174502");
    EXPECT_EQ(time->format("%Y%m%d%H%M%S"), "20240131174502");
    EXPECT_EQ(time->format("%d.%m.%Y %H:%M"), "31.01.2024 17:45");

    for (const char* stamp : {"19700101000000", "20000229235959", "20240229120000",
                              "19991231235959", "99991231235959", "20230704090807"}) {
        const std::optional<LocalTime> parsed = LocalTime::parse(stamp);
        ASSERT_TRUE(parsed.has_value()) << stamp;
        EXPECT_EQ(parsed->format(), stamp);
        EXPECT_EQ(LocalTime::parse(parsed->format()), parsed);
    }

    // Blanks and a line end around the digits, as read from a file.
    EXPECT_EQ(LocalTime::parse(" \t20240131174502 \r\n"), time);
    EXPECT_EQ(LocalTime().format(), "19700101000000");
}

TEST(LocalTimeTest, RejectsTextThatIsNoDate) {
    for (const char* text : {
             "20230229000000",   // not a leap year
             "19000229000000",   // a century that is not a leap year
             "20231301000000",   // 13th month
             "20230001000000",   // month 0
             "20230100000000",   // day 0
             "20230132000000",   // 32 January
             "20230431000000",   // 31 April
             "20230101240000",   // hour 24
             "20230101006000",   // minute 60
             "20230101000060",   // second 60
             "2023010100000",    // 13 digits
             "202301010000000",  // 15 digits
             "2023010100000a",      "2023010100 000", "2023-01-01 00:0",
             "+2023010100000",      "-2023010100000", "",
             "              ",
             "\uff120230101000000",  // a full-width digit
         }) {
        EXPECT_FALSE(LocalTime::parse(text).has_value()) << '"' << text << '"';
    }
}

// Years below 1000 are written with fewer than four digits by strftime's %Y,
// so the stored form of 0999-01-01 has thirteen digits and does not read back.
TEST(LocalTimeTest, FormatsEarlyYearsWithFourDigits) {
    const std::optional<LocalTime> early = LocalTime::parse("09990101000000");
    ASSERT_TRUE(early.has_value());
    EXPECT_EQ(early->format(), "09990101000000");
}

TEST(LocalTimeTest, ComparesFieldByFieldFromTheYearDown) {
    const LocalTime base(2024, 1, 31, 17, 45, 2);
    EXPECT_EQ(base, LocalTime(2024, 1, 31, 17, 45, 2));
    EXPECT_NE(base, LocalTime(2024, 1, 31, 17, 45, 3));
    EXPECT_LT(base, LocalTime(2024, 1, 31, 17, 45, 3));
    EXPECT_LT(base, LocalTime(2024, 2, 1));
    EXPECT_LT(LocalTime(2023, 12, 31, 23, 59, 59), base);
    EXPECT_GT(LocalTime(2024, 1, 31, 18), base);
    EXPECT_LT(LocalTime(2024, 1, 9), LocalTime(2024, 1, 10));  // not compared as text
    EXPECT_LE(base, base);
    EXPECT_GE(base, base);
    EXPECT_EQ(LocalTime(), LocalTime(1970, 1, 1));
}

TEST(LocalTimeTest, ConvertsToAndFromPointsInTime) {
    {
        ScopedTimeZone utc("UTC0");
        EXPECT_EQ(LocalTime::fromTimeT(0), LocalTime(1970, 1, 1));
        EXPECT_EQ(LocalTime::fromTimeT(1706723102), LocalTime(2024, 1, 31, 17, 45, 2));
        EXPECT_EQ(LocalTime(2024, 1, 31, 17, 45, 2).toTimeT(), std::time_t(1706723102));
    }
    {
        ScopedTimeZone europe(CentralEurope);
        EXPECT_EQ(LocalTime::fromTimeT(1706723102), LocalTime(2024, 1, 31, 18, 45, 2));
        EXPECT_EQ(LocalTime::fromTimeT(1719835200), LocalTime(2024, 7, 1, 14));  // summer
        EXPECT_EQ(LocalTime(2024, 7, 1, 14).toTimeT(), std::time_t(1719835200));

        // A point in time survives the way through local time, across both
        // daylight-saving changes (noon is never in a gap or an overlap).
        const std::time_t start = 1704110400;  // 2024-01-01 12:00 UTC
        for (int dayIndex = 0; dayIndex < 366; ++dayIndex) {
            const std::time_t point = start + std::time_t(dayIndex) * 86400 + 17;
            ASSERT_EQ(LocalTime::fromTimeT(point).toTimeT(), point) << "day " << dayIndex;
        }
    }
    // The stored form and points in time agree in any zone.
    ScopedTimeZone america("EST5EDT,M3.2.0,M11.1.0");
    const std::optional<LocalTime> parsed = LocalTime::parse("20240131174502");
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(LocalTime::fromTimeT(parsed->toTimeT()), *parsed);
    EXPECT_EQ(LocalTime::fromTimeT(parsed->toTimeT()).format(), "20240131174502");
}

TEST(LocalTimeTest, FormatsLongPatterns) {
    const LocalTime time(2024, 1, 31, 17, 45, 2);
    std::string pattern;
    std::string expected;
    for (int i = 0; i < 40; ++i) {
        pattern += "%Y%m%d%H%M%S|";
        expected += "20240131174502|";
    }
    EXPECT_EQ(time.format(pattern), expected);
    EXPECT_EQ(time.format(""), "");
    EXPECT_EQ(time.format("no fields"), "no fields");
}

}  // namespace
}  // namespace melodex
