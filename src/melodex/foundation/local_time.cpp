#include "melodex/foundation/local_time.h"

#include <chrono>
#include <cstdio>

namespace melodex {

namespace {

bool isLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month) {
    static constexpr int Days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : Days[month - 1];
}

std::tm toTm(const LocalTime& time) {
    std::tm tm{};
    tm.tm_year = time.year() - 1900;
    tm.tm_mon = time.month() - 1;
    tm.tm_mday = time.day();
    tm.tm_hour = time.hour();
    tm.tm_min = time.minute();
    tm.tm_sec = time.second();
    tm.tm_isdst = -1;
    return tm;
}

}  // namespace

LocalTime::LocalTime(int year, int month, int day, int hour, int minute, int second)
    : m_year(year), m_month(month), m_day(day), m_hour(hour), m_minute(minute), m_second(second) {}

LocalTime LocalTime::now() {
    return fromTimeT(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
}

LocalTime LocalTime::fromTimeT(std::time_t time) {
    std::tm tm{};
    if (localtime_r(&time, &tm) == nullptr) return LocalTime();
    return LocalTime(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min,
                     // A leap second reads as the last second of its minute.
                     tm.tm_sec > 59 ? 59 : tm.tm_sec);
}

std::optional<LocalTime> LocalTime::parse(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r' ||
                             text.back() == '\n')) {
        text.remove_suffix(1);
    }
    if (text.size() != 14) return std::nullopt;
    for (char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
    }
    const auto field = [text](std::size_t at, std::size_t length) {
        int value = 0;
        for (std::size_t i = at; i < at + length; ++i)
            value = value * 10 + (text[i] - '0');
        return value;
    };
    const LocalTime time(field(0, 4), field(4, 2), field(6, 2), field(8, 2), field(10, 2),
                         field(12, 2));
    if (time.m_month < 1 || time.m_month > 12 || time.m_day < 1 ||
        time.m_day > daysInMonth(time.m_year, time.m_month) || time.m_hour > 23 ||
        time.m_minute > 59 || time.m_second > 59) {
        return std::nullopt;
    }
    return time;
}

std::time_t LocalTime::toTimeT() const {
    std::tm tm = toTm(*this);
    return std::mktime(&tm);
}

String LocalTime::format(std::string_view pattern) const {
    const std::tm tm = toTm(*this);
    // strftime does not pad years before 1000, which would break the
    // fourteen-digit form; write the year ourselves.
    String format;
    format.reserve(pattern.size() + 8);
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '%' && i + 1 < pattern.size()) {
            if (pattern[i + 1] == 'Y' && m_year >= 0 && m_year <= 9999) {
                char year[8];
                std::snprintf(year, sizeof year, "%04d", m_year);
                format += year;
            } else {
                format += pattern.substr(i, 2);
            }
            ++i;
        } else {
            format += pattern[i];
        }
    }
    String out(64, '\0');
    for (;;) {
        const std::size_t written = std::strftime(out.data(), out.size(), format.c_str(), &tm);
        // strftime reports 0 both for "did not fit" and for an empty result.
        if (written > 0 || out.size() > 64 * format.size() + 64) {
            out.resize(written);
            return out;
        }
        out.resize(out.size() * 2);
    }
}

}  // namespace melodex
