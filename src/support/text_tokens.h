// Reading numbers and words from lines of text, the way every file of the program is read.
//
//   std::string line = "  12.5, 300 ,abc";
//   take_word(line) == "12.5"; take_word(line) == "300"; parse_number("abc") == 0
//   parse_number("1.5e3x") == 1500 (the numeric prefix); parse_number("-.5") == -0.5
#pragma once

#include <string>
#include <string_view>

namespace trensil {

// Removes the first word from `text` and returns it. Blanks, tabs and commas separate words;
// blanks before the word and the separator run after it (blanks, tabs and at most one comma) are
// removed too. Two commas with only blanks between enclose an empty word, so "1,,3" gives "1",
// "", "3". "" when the text holds no word.
std::string take_word(std::string& text);

// The value of the longest numeric prefix of `text` after leading blanks: sign, digits, a
// decimal point, an exponent ("1e5", "2.5E-3", ".5", "-.5"). A text with no numeric prefix
// reads 0.
double parse_number(std::string_view text);

// True when the whole text (blanks around allowed) is one number.
bool is_numeric_text(std::string_view text);

// `text` without blanks, tabs, carriage returns and line feeds at either end.
std::string trim_text(std::string_view text);

}  // namespace trensil
