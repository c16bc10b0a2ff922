// Number writers against the C library, and the locale-free parsers.
#include "omb/base/number_text.h"
#include "omb/base/text.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

std::string ours(double value) {
    std::string text;
    number_text::append_g9(text, value);
    return text;
}

std::string of_printf(double value) {
    char text[64];
    std::snprintf(text, sizeof(text), "%0.9g", value);
    return text;
}

/// Compares, and stops early: a broken writer would otherwise report a million times.
bool same(double value) {
    const std::string expected = of_printf(value);
    const bool equal = ours(value) == expected;
    EXPECT_TRUE(equal) << std::hexfloat << value << ": " << ours(value) << " is not " << expected;
    return equal;
}

} // namespace

TEST(NumberText, SpecialAndBorderValues) {
    const double values[] = {0.0,
                             -0.0,
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN(),
                             -std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::max(),
                             999999999,
                             -999999999,
                             1000000000,
                             999999999.5,
                             999999999.4999,
                             99999999.95,
                             0.1,
                             1.5,
                             0.0001,
                             0.00009999999995,
                             1e-5,
                             123456789.5,
                             123456788.5,
                             1.0000000005,
                             65536.0000152587890625,
                             1e-18,
                             9.9999999999e-19};
    for (const double value : values) {
        same(value);
    }
}

TEST(NumberText, NeighboursOfPowersOfTen) {
    for (int power = -40; power < 30; ++power) {
        const double value = std::pow(10.0, power);
        for (const double v : {value, std::nextafter(value, 0.0), std::nextafter(value, 1e300),
                               value * 0.9999999995, value * 0.99999999949, value * 9.5}) {
            same(v);
        }
    }
}

TEST(NumberText, AMillionRandomValues) {
    std::mt19937_64 random(20240607);
    for (int i = 0; i < 250000; ++i) {
        const double unit = std::ldexp(static_cast<double>(random() >> 11), -53) - 0.5;
        const int power = static_cast<int>(random() % 34) - 22;
        const double any = std::bit_cast<double>(random());
        const double coordinate = unit * std::pow(10.0, power);
        const auto eighths = static_cast<double>(random() % 2000000000) / 64;
        if (!same(any) || !same(coordinate) || !same(eighths) ||
            !same(std::round(unit * 1e6) / 1e3)) {
            return;
        }
    }
}

TEST(NumberText, Integers) {
    char text[number_text::max_chars];
    const auto until = [&](char* end) { return std::string(text, end); };
    EXPECT_EQ(until(number_text::write_int(text, std::numeric_limits<int>::min())), "-2147483648");
    EXPECT_EQ(until(number_text::write_hex(text, 0xABCDEF01u)), "abcdef01");
    EXPECT_EQ(until(number_text::write_u64(text, ~0ull)), "18446744073709551615");
    EXPECT_EQ(until(number_text::write_hex64(text, ~0ull, true)), "FFFFFFFFFFFFFFFF");
}

TEST(Text, LooseNumbers) {
    EXPECT_EQ(omb::parse_unsigned("  +12abc"), 12u);
    EXPECT_EQ(omb::parse_unsigned("-1"), 0xffffffffu);
    EXPECT_EQ(omb::parse_unsigned("4294967296"), 0xffffffffu);
    EXPECT_EQ(omb::parse_unsigned("abc"), 0u);
    EXPECT_EQ(omb::parse_int("-99999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(omb::parse_int("2147483648"), std::numeric_limits<int>::max());
    EXPECT_EQ(omb::parse_double(" +1.5e2x"), 150.0);
    EXPECT_EQ(omb::parse_double("+-1"), 0.0);
    EXPECT_EQ(omb::parse_double("-"), 0.0);
    EXPECT_EQ(omb::parse_double("-1e400"), -std::numeric_limits<double>::max());
    EXPECT_EQ(omb::parse_double("1e-400"), 0.0);
    EXPECT_EQ(omb::parse_double("inf"), 0.0);
    EXPECT_EQ(omb::parse_double("nan"), 0.0);
    EXPECT_EQ(omb::parse_hex("fFz"), 255u);
}

TEST(Text, Utf16CodeUnits) {
    EXPECT_EQ(omb::to_utf16("aü厨😀").size(), 5u);
    EXPECT_EQ(omb::to_utf8(omb::to_utf16("aü厨😀")), "aü厨😀");
    EXPECT_EQ(omb::to_utf16("\xC0\x80\xFF"), u"\xFFFD\xFFFD\xFFFD") << "overlong and stray bytes";
    EXPECT_EQ(omb::to_utf16("\xE5\x8E"), u"\xFFFD\xFFFD") << "cut in the middle";
    EXPECT_EQ(omb::to_utf8(std::u16string(1, char16_t(0xD800))), "\xEF\xBF\xBD");
}

TEST(Text, Pieces) {
    using list = std::vector<std::string_view>;
    EXPECT_EQ(omb::split("a,,b,", ','), (list{"a", "", "b", ""}));
    EXPECT_EQ(omb::trim(" \t\r\n"), "");
    EXPECT_EQ(omb::replace_all("a\\\\\\b", "\\\\", "\\"), "a\\\\b");
    EXPECT_TRUE(omb::ends_with_no_case("A.DFL", ".dfl"));
    EXPECT_FALSE(omb::equal_no_case("Straße", "STRASSE"));
}
