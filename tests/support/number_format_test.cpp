#include "support/number_format.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "support/text_tokens.h"

namespace trensil {
namespace {

// The value of `x` rounded to `digits` significant decimal digits, read back as a double.
double rounded_to_digits(double x, int digits) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*e", digits - 1, x);
    return std::strtod(buffer, nullptr);
}

TEST(general_number, writes_the_print_list_forms) {
    EXPECT_EQ(print_number(2.5f), " 2.5 ");
    EXPECT_EQ(print_number(-0.25f), "-.25 ");
    EXPECT_EQ(print_number(0.25), " .25 ");
    EXPECT_EQ(print_number(0.0f), " 0 ");
    EXPECT_EQ(print_number(-0.0f), " 0 ");
    EXPECT_EQ(print_number(56000.0f), " 56000 ");
    EXPECT_EQ(print_number(-99999.0f), "-99999 ");
    EXPECT_EQ(print_number(12), " 12 ");
    EXPECT_EQ(print_number(-3), "-3 ");
    EXPECT_EQ(print_number(0), " 0 ");
    EXPECT_EQ(general_number(2.67f), "2.67");
    EXPECT_EQ(general_number(0.1f), ".1");
    EXPECT_EQ(general_number(1.0f / 3.0f), ".3333333");
    EXPECT_EQ(general_number(1.0 / 3.0), ".333333333333333");
    EXPECT_EQ(general_number(-65.0f), "-65");
}

TEST(general_number, switches_to_exponent_form_outside_the_plain_range) {
    // Plain up to digit-count digits before the point, exponent form from there on.
    EXPECT_EQ(general_number(1234567.0f), "1234567");
    EXPECT_EQ(general_number(12345678.0f), "1.234568E+07");
    EXPECT_EQ(general_number(1e7f), "1E+07");
    EXPECT_EQ(general_number(1.5e12f), "1.5E+12");
    EXPECT_EQ(general_number(1e20f), "1E+20");
    EXPECT_EQ(general_number(123456789012345.0), "123456789012345");
    EXPECT_EQ(general_number(1e15), "1E+15");
    EXPECT_EQ(general_number(1e100), "1E+100");
    EXPECT_EQ(general_number(-2.5e-300), "-2.5E-300");
    // Small numbers: .0001 is written out, below it the exponent form.
    EXPECT_EQ(general_number(0.0001f), ".0001");
    EXPECT_EQ(general_number(0.00012345f), ".00012345");
    EXPECT_EQ(general_number(0.00001f), "1E-05");
    EXPECT_EQ(general_number(1e-8), "1E-08");
    EXPECT_EQ(general_number(-1.25e-6f), "-1.25E-06");
    // Rounding that carries into a new decade.
    EXPECT_EQ(general_number(9.9999999f), "10");
    EXPECT_EQ(general_number(9999999.9), "9999999.9");
    EXPECT_EQ(general_number(static_cast<float>(9999999.9)), "1E+07");
}

TEST(general_number, float_values_read_back_exactly_at_seven_digits) {
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<double> mantissa(1.0, 10.0);
    std::uniform_int_distribution<int> exponent(-37, 37);
    for (int i = 0; i < 20000; ++i) {
        float x = static_cast<float>(mantissa(rng) * std::pow(10.0, exponent(rng)));
        if (i % 2) x = -x;
        if (!std::isnormal(x)) continue;
        const std::string text = print_number(x);
        const float back = static_cast<float>(parse_number(text));
        ASSERT_EQ(back, static_cast<float>(rounded_to_digits(x, 7))) << text;
        // A value that came from the writer is written the same way again.
        ASSERT_EQ(print_number(back), text);
    }
    // Integers, and values typed with seven digits, come back bit for bit.
    for (int k = -300000; k <= 300000; k += 7) {
        const float x = static_cast<float>(k);
        ASSERT_EQ(static_cast<float>(parse_number(print_number(x))), x);
        const float typed = static_cast<float>(k * 1e-3);
        ASSERT_EQ(static_cast<float>(parse_number(print_number(typed))), typed);
    }
    for (float x : {FLT_MAX, -FLT_MAX, FLT_MIN, 1e-30f, 3.4e38f, 16777216.0f, 1e32f, -1e32f})
        EXPECT_EQ(static_cast<float>(parse_number(print_number(x))),
                  static_cast<float>(rounded_to_digits(x, 7)))
            << x;
}

TEST(general_number, double_values_read_back_exactly_at_fifteen_digits) {
    std::mt19937_64 rng(77);
    std::uniform_real_distribution<double> mantissa(1.0, 10.0);
    std::uniform_int_distribution<int> exponent(-300, 300);
    for (int i = 0; i < 20000; ++i) {
        double x = mantissa(rng) * std::pow(10.0, exponent(rng));
        if (i % 3 == 0) x = -x;
        const std::string text = print_number(x);
        const double back = parse_number(text);
        ASSERT_EQ(back, rounded_to_digits(x, 15)) << text;
        ASSERT_EQ(print_number(back), text);
    }
    // Typical coordinates: easting and northing with centimetres.
    std::uniform_real_distribution<double> easting(300000.0, 800000.0);
    for (int i = 0; i < 5000; ++i) {
        const double typed = std::round(easting(rng) * 100.0) / 100.0;
        ASSERT_EQ(parse_number(print_number(typed)), typed);
    }
    for (double x : {DBL_MAX, DBL_MIN, 1e-320, 4503599627370496.0, 0.1, 1e32})
        EXPECT_EQ(parse_number(print_number(x)), rounded_to_digits(x, 15)) << x;
}

TEST(general_number, non_finite_values_are_named) {
    EXPECT_EQ(general_number(std::nanf("")), "NaN");
    EXPECT_EQ(print_number(HUGE_VAL), " Inf ");
    EXPECT_EQ(print_number(-HUGE_VALF), "-Inf ");
}

TEST(format_fixed, rounds_half_away_from_zero_with_a_leading_zero) {
    EXPECT_EQ(format_fixed(2.456, 2), "2.46");
    EXPECT_EQ(format_fixed(0.5, 0), "1");
    EXPECT_EQ(format_fixed(-0.5, 0), "-1");
    EXPECT_EQ(format_fixed(2.5, 0), "3");
    EXPECT_EQ(format_fixed(0.125, 2), "0.13");
    EXPECT_EQ(format_fixed(0.25, 1), "0.3");
    EXPECT_EQ(format_fixed(0.04, 1), "0.0");
    EXPECT_EQ(format_fixed(3.0, 4), "3.0000");
    EXPECT_EQ(format_fixed(0.00004, 4), "0.0000");
    EXPECT_EQ(format_fixed(0.00005, 4), "0.0001");
    EXPECT_EQ(format_fixed(-12.3456, 3), "-12.346");
    EXPECT_EQ(format_fixed(123456789.0, 0), "123456789");
    EXPECT_EQ(format_fixed(1e20, 1), "100000000000000000000.0");
}

TEST(format_fixed, a_negative_value_rounding_to_zero_has_no_sign) {
    EXPECT_EQ(format_fixed(-0.4, 0), "0");
    EXPECT_EQ(format_fixed(-0.004, 2), "0.00");
    EXPECT_EQ(format_fixed(-0.0, 1), "0.0");
}

}  // namespace
}  // namespace trensil
