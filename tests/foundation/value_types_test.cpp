#include <climits>
#include <cstdint>
#include <ctime>
#include <limits>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "melodex/foundation/local_time.h"
#include "melodex/foundation/uuid.h"
#include "melodex/foundation/value.h"
#include "support/scoped_environment.h"

namespace melodex {
namespace {

// Two threads draw at once; every random position must then have shown all
// sixteen digits, so that no byte is left unfilled, fixed or shared.
TEST(UuidTest, GeneratesDistinctVersion4UuidsInCanonicalForm) {
    EXPECT_EQ(Uuid().toString(), "00000000-0000-0000-0000-000000000000");
    std::vector<String> uuids, other;
    const auto generate = [](std::vector<String>& out) {
        for (int i = 0; i < 5000; ++i)
            out.push_back(Uuid::generate().toString());
    };
    std::thread thread(generate, std::ref(other));
    generate(uuids);
    thread.join();
    uuids.insert(uuids.end(), other.begin(), other.end());
    EXPECT_EQ(std::set<String>(uuids.begin(), uuids.end()).size(), 10000u);
    const String pattern = "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        std::set<char> seen;
        for (const String& text : uuids)
            seen.insert(text.size() == pattern.size() ? text[at] : '?');
        const char c = pattern[at];
        const String expected = c == 'x' ? "0123456789abcdef" : c == 'y' ? "89ab" : String(1, c);
        EXPECT_EQ(String(seen.begin(), seen.end()), expected) << "position " << at;
    }
}

// Small integer types are numbers, not characters; a string literal is text,
// never a flag; doubles are written shortest and read back exactly.
TEST(ValueTest, WritesItsStoredFormAndReadsIntegersLeniently) {
    using Limits = std::numeric_limits<long long>;
    // clang-format off
    const std::pair<Value, const char*> cases[] = {
        {Value(Limits::min()), "-9223372036854775808"}, {Value(std::uint8_t(200)), "200"},
        {Value(std::numeric_limits<unsigned long long>::max()), "18446744073709551615"},
        {Value(std::int8_t(-5)), "-5"}, {Value(12.0), "12"}, {Value(0.1), "0.1"},
        {Value(true), "1"}, {Value(false), "0"}, {Value("true"), "true"},
        {Value(static_cast<const char*>(nullptr)), ""}};
    // clang-format on
    for (const auto& [value, text] : cases)
        EXPECT_EQ(value.toString(), text);
    for (const double number : {1.0 / 3.0, -123456.789, 1e21, 5e-324, 1.7976931348623157e308})
        EXPECT_EQ(parseDouble(Value(number).toString()), number) << Value(number).toString();
    EXPECT_EQ(Value(-3.9).toInteger(), -3);
    EXPECT_EQ(Value().toInteger(14), 14);
    EXPECT_EQ(Value(Limits::max()).toInteger(), INT_MAX);
    EXPECT_EQ(Value(Limits::min()).toInteger(), INT_MIN);
}

TEST(LocalTimeTest, ParsesFormatsAndCompares) {
    EXPECT_EQ(LocalTime::parse(" \t20240131174502 \r\n"), LocalTime(2024, 1, 31, 17, 45, 2));
    // Years below 1000 keep four digits, or the stored form would not read back.
    for (const char* stamp : {"19700101000000", "20000229235959", "09990101000000"})
        EXPECT_EQ(LocalTime::parse(stamp).value_or(LocalTime(1, 1, 1)).format(), stamp);
    for (const char* text : {"20230229000000", "19000229000000", "20231301000000", "20230001000000",
                             "20230100000000", "20230431000000", "20230101240000", "20230101006000",
                             "20230101000060", "2023010100000", "202301010000000", "2023010100000a",
                             "2023010100 000", "+2023010100000", "", "\uff120230101000000"})
        EXPECT_FALSE(LocalTime::parse(text).has_value()) << '"' << text << '"';
    EXPECT_EQ(LocalTime(2024, 1, 31).format(String(400, '%') + "%d.%m.%Y"),
              String(200, '%') + "31.01.2024");  // longer than any fixed buffer
    EXPECT_EQ(LocalTime().format(), "19700101000000");
    EXPECT_LT(LocalTime(2023, 12, 31, 23, 59, 59), LocalTime(2024, 1, 9));
    EXPECT_LT(LocalTime(2024, 1, 9), LocalTime(2024, 1, 10));  // not compared as text
}

TEST(LocalTimeTest, ConvertsToAndFromPointsInTime) {
    {  // a POSIX rule string needs no zone database on the machine
        test::ScopedEnvironment europe("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
        ::tzset();
        EXPECT_EQ(LocalTime::fromTimeT(1706723102), LocalTime(2024, 1, 31, 18, 45, 2));
        EXPECT_EQ(LocalTime(2024, 7, 1, 14).toTimeT(), std::time_t(1719835200));  // summer
        // A point in time survives the way through local time, across both
        // daylight-saving changes (noon is never in a gap or an overlap).
        for (std::time_t point = 1704110417; point < 1704110417 + 366 * 86400; point += 86400)
            EXPECT_EQ(LocalTime::fromTimeT(point).toTimeT(), point);
    }
    ::tzset();
}

}  // namespace
}  // namespace melodex
