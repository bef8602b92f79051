#include "melodex/foundation/value.h"

#include <climits>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace melodex {
namespace {

TEST(ValueTest, KeepsIntegersInDecimal) {
    EXPECT_EQ(Value(12).toString(), "12");
    EXPECT_EQ(Value(-7).toString(), "-7");
    EXPECT_EQ(Value(0).toString(), "0");
    EXPECT_EQ(Value(std::numeric_limits<long long>::max()).toString(), "9223372036854775807");
    EXPECT_EQ(Value(std::numeric_limits<long long>::min()).toString(), "-9223372036854775808");
    EXPECT_EQ(Value(std::numeric_limits<unsigned long long>::max()).toString(),
              "18446744073709551615");
    EXPECT_EQ(Value(short(-3)).toString(), "-3");
    // Small integer types are numbers, not characters.
    EXPECT_EQ(Value(std::uint8_t(200)).toString(), "200");
    EXPECT_EQ(Value(std::int8_t(-5)).toString(), "-5");
    EXPECT_EQ(Value(0xFFu).toString(), "255");
}

TEST(ValueTest, KeepsDoublesInAFormThatReadsBack) {
    for (const double number : {0.1, 1.0 / 3.0, -0.5, 12.0, 123456.789, 1e21, 1e-7, 5e-324,
                                std::numeric_limits<double>::max(), -2.5e-300, 0.0}) {
        const String text = Value(number).toString();
        const std::optional<double> back = parseDouble(text);
        ASSERT_TRUE(back.has_value()) << text;
        EXPECT_EQ(*back, number) << text;
    }
    EXPECT_EQ(Value(12.0).toString(), "12");
    EXPECT_EQ(Value(0.5).toString(), "0.5");
    EXPECT_EQ(Value(0.1).toString(), "0.1");  // shortest, not 0.1000000000000000055
    EXPECT_EQ(Value(-1.25).toString(), "-1.25");
}

TEST(ValueTest, KeepsFlagsAsOneAndZero) {
    EXPECT_EQ(Value(true).toString(), "1");
    EXPECT_EQ(Value(false).toString(), "0");
    EXPECT_EQ(Value(true), Value(1));
    EXPECT_EQ(Value(false).toInteger(5), 0);
    // A string literal is text, never taken for a flag.
    EXPECT_EQ(Value("true").toString(), "true");
    EXPECT_EQ(Value("").toString(), "");
}

TEST(ValueTest, KeepsTextAsGiven) {
    const String title = "J\u00e9sus, \u0421\u043b\u0430\u0432\u0430";
    EXPECT_EQ(Value(title).toString(), title);
    EXPECT_EQ(Value(String(title)).toString(), title);
    EXPECT_EQ(Value(std::string_view(title).substr(0, 3)).toString(), "J\u00e9");
    const char* none = nullptr;
    EXPECT_TRUE(Value(none).isEmpty());
    EXPECT_TRUE(Value().isEmpty());
    EXPECT_FALSE(Value(0).isEmpty());
    EXPECT_EQ(Value(), Value(""));
    EXPECT_NE(Value("12"), Value("012"));
}

TEST(ValueTest, ReadsIntegersLeniently) {
    EXPECT_EQ(Value("12px").toInteger(), 12);
    EXPECT_EQ(Value(" -3 ").toInteger(), -3);
    EXPECT_EQ(Value("large").toInteger(14), 14);
    EXPECT_EQ(Value().toInteger(14), 14);
    EXPECT_EQ(Value().toInteger(), 0);
    EXPECT_EQ(Value(3.9).toInteger(), 3);
    EXPECT_EQ(Value(-3.9).toInteger(), -3);
    EXPECT_EQ(Value(std::numeric_limits<long long>::max()).toInteger(), INT_MAX);
    EXPECT_EQ(Value(std::numeric_limits<long long>::min()).toInteger(), INT_MIN);
    EXPECT_EQ(Value(INT_MIN).toInteger(), INT_MIN);
}

}  // namespace
}  // namespace melodex
