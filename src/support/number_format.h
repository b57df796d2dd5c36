// Numbers as the program writes them in its files and shows them.
//
// The print-list general form: a leading blank for a number that is not negative, a trailing
// blank, up to 7 significant digits for single precision (15 for double), no leading 0 before
// the decimal point, an exponent form "1.5E+12" when the number is too large or too small.
//   print_number(2.5f) == " 2.5 "; print_number(-0.25f) == "-.25 "; print_number(1e20f) == " 1E+20
//   "
//
// The fixed formats "0", "0.0", "0.00", "0.000", "0.0000": rounded, with a leading 0.
//   format_fixed(2.456, 2) == "2.46"; format_fixed(-0.4, 0) == "0"... see the tests for signs.
#pragma once

#include <string>

namespace trensil {

std::string print_number(float value);   // 7 significant digits
std::string print_number(double value);  // 15 significant digits
std::string print_number(int value);     // " 12 ", "-3 "
// The general form without the surrounding blanks ("2.5", "-.25", "1E+20").
std::string general_number(float value);
std::string general_number(double value);
// Fixed format with `decimals` digits after the point (0 to 4): the "0", "0.0" ... formats.
std::string format_fixed(double value, int decimals);

}  // namespace trensil
