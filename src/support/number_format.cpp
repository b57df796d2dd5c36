#include "support/number_format.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace trensil {

namespace {

// Below this decimal exponent of the leading digit a number is written in exponent form:
// .0001 is still written out, .00001 becomes 1E-05.
constexpr int smallest_plain_exponent = -4;

// The general form of `value` rounded to `digits` significant digits.
//
// The digits come from printf's %e, which rounds the exact binary value correctly; trailing
// zeros are dropped. The number is written plainly while its decimal exponent lies in
// smallest_plain_exponent .. digits - 1, else as mantissa, "E", sign and at least two exponent
// digits ("1.5E+12", "1E-08", "1E+100").
std::string general_form(double value, int digits) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
    if (value == 0.0) return "0";

    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*e", digits - 1, value);
    const std::string text(buffer);
    const bool negative = text[0] == '-';
    const std::size_t e_pos = text.find('e');
    const int exponent = std::atoi(text.c_str() + e_pos + 1);

    std::string mantissa;  // the significant digits alone, no trailing zeros
    for (std::size_t i = negative ? 1 : 0; i < e_pos; ++i)
        if (text[i] != '.') mantissa += text[i];
    while (mantissa.size() > 1 && mantissa.back() == '0') mantissa.pop_back();
    const int count = static_cast<int>(mantissa.size());

    std::string out = negative ? "-" : "";
    if (exponent >= digits || exponent < smallest_plain_exponent) {
        out += mantissa[0];
        if (count > 1) out.append(1, '.').append(mantissa, 1);
        char exp_text[16];
        std::snprintf(exp_text, sizeof exp_text, "E%c%02d", exponent < 0 ? '-' : '+',
                      std::abs(exponent));
        out += exp_text;
    } else if (exponent >= 0) {
        const int whole = exponent + 1;  // digits before the point
        if (count <= whole) {
            out.append(mantissa).append(static_cast<std::size_t>(whole - count), '0');
        } else {
            out.append(mantissa, 0, static_cast<std::size_t>(whole))
                .append(1, '.')
                .append(mantissa, static_cast<std::size_t>(whole));
        }
    } else {
        out.append(1, '.').append(static_cast<std::size_t>(-exponent - 1), '0').append(mantissa);
    }
    return out;
}

// A print-list item: a blank in place of a plus sign, and one blank after.
std::string print_item(const std::string& general) {
    std::string item;
    item.reserve(general.size() + 2);
    if (general[0] != '-') item.push_back(' ');
    item.append(general).push_back(' ');
    return item;
}

}  // namespace

std::string general_number(float value) {
    return general_form(static_cast<double>(value), 7);
}

std::string general_number(double value) {
    return general_form(value, 15);
}

std::string print_number(float value) {
    return print_item(general_number(value));
}

std::string print_number(double value) {
    return print_item(general_number(value));
}

std::string print_number(int value) {
    return print_item(std::to_string(value));
}

std::string format_fixed(double value, int decimals) {
    if (decimals < 0) decimals = 0;
    if (decimals > 4) decimals = 4;
    if (!std::isfinite(value)) return general_form(value, 15);

    // Rounded half away from zero on the value scaled to whole units of the last decimal, so
    // 0.125 with two decimals gives "0.13". A value rounding to zero is written without a sign.
    const double scale = std::pow(10.0, decimals);
    const double scaled = std::round(std::fabs(value) * scale);
    std::string digits;
    if (scaled < 1e18) {
        digits = std::to_string(static_cast<unsigned long long>(scaled));
    } else {
        char buffer[400];
        std::snprintf(buffer, sizeof buffer, "%.0f", scaled);
        digits = buffer;
    }
    if (static_cast<int>(digits.size()) <= decimals)
        digits.insert(0, static_cast<std::size_t>(decimals + 1) - digits.size(), '0');
    if (decimals > 0) digits.insert(digits.size() - static_cast<std::size_t>(decimals), 1, '.');
    if (value < 0 && scaled != 0.0) digits.insert(0, 1, '-');
    return digits;
}

}  // namespace trensil
