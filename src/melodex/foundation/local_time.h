#pragma once

// A local date and time at whole seconds.
//
// Song files and the library index store times as fourteen digits,
// "%Y%m%d%H%M%S" (20240131174502 for 31 January 2024, 17:45:02), in local
// time. LocalTime keeps the broken-down fields, so reading and writing that
// form costs no time-zone work and two times compare field by field.
//
//     LocalTime updated = LocalTime::now();
//     String stamp = updated.format("%Y%m%d%H%M%S");
//     std::optional<LocalTime> back = LocalTime::parse(stamp);

#include <compare>
#include <ctime>
#include <optional>
#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

class LocalTime {
public:
    // 1 January 1970, 00:00:00.
    LocalTime() = default;
    LocalTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

    static LocalTime now();

    // The local time of a point in time.
    static LocalTime fromTimeT(std::time_t time);

    // Reads "YYYYMMDDhhmmss" (exactly fourteen digits, blanks around them
    // allowed); nullopt when the text is not that or names no real date.
    static std::optional<LocalTime> parse(std::string_view text);

    // The point in time of this local time (mktime rules for gaps and
    // overlaps).
    std::time_t toTimeT() const;

    // strftime-style formatting; the library uses "%Y%m%d%H%M%S".
    String format(std::string_view pattern = "%Y%m%d%H%M%S") const;

    int year() const { return m_year; }
    int month() const { return m_month; }  // 1 to 12
    int day() const { return m_day; }      // 1 to 31
    int hour() const { return m_hour; }
    int minute() const { return m_minute; }
    int second() const { return m_second; }

    friend bool operator==(const LocalTime&, const LocalTime&) = default;
    friend auto operator<=>(const LocalTime&, const LocalTime&) = default;

private:
    int m_year = 1970;
    int m_month = 1;
    int m_day = 1;
    int m_hour = 0;
    int m_minute = 0;
    int m_second = 0;
};

}  // namespace melodex
