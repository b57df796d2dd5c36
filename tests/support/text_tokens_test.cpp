#include "support/text_tokens.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trensil {
namespace {

std::vector<std::string> all_words(std::string line) {
    std::vector<std::string> words;
    while (true) {
        std::string w = take_word(line);
        if (w.empty() && line.empty()) break;
        words.push_back(w);
    }
    return words;
}

TEST(take_word, separates_at_blanks_tabs_and_commas_and_keeps_empty_fields) {
    std::string line = "  12.5, 300 ,abc";
    EXPECT_EQ(take_word(line), "12.5");
    EXPECT_EQ(line, "300 ,abc");
    EXPECT_EQ(take_word(line), "300");
    EXPECT_EQ(take_word(line), "abc");
    EXPECT_EQ(line, "");
    EXPECT_EQ(take_word(line), "");

    EXPECT_EQ(all_words("a\tb\t\tc"), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(all_words("x ,\t y"), (std::vector<std::string>{"x", "y"}));
    // An empty csv field is kept as an empty word, so columns stay in place.
    EXPECT_EQ(all_words("1,,3"), (std::vector<std::string>{"1", "", "3"}));
    EXPECT_EQ(all_words("1, ,3"), (std::vector<std::string>{"1", "", "3"}));
    EXPECT_EQ(all_words(",2"), (std::vector<std::string>{"", "2"}));
    // A trailing comma ends the line without a further word.
    EXPECT_EQ(all_words("1,2,"), (std::vector<std::string>{"1", "2"}));
}

TEST(parse_number, reads_the_numeric_prefix) {
    EXPECT_EQ(parse_number("12.5"), 12.5);
    EXPECT_EQ(parse_number("  -3"), -3.0);
    EXPECT_EQ(parse_number("+7"), 7.0);
    EXPECT_EQ(parse_number(".5"), 0.5);
    EXPECT_EQ(parse_number("-.5"), -0.5);
    EXPECT_EQ(parse_number("5."), 5.0);
    EXPECT_EQ(parse_number("1.5e3x"), 1500.0);
    EXPECT_EQ(parse_number("2.5E-3"), 0.0025);
    EXPECT_EQ(parse_number("1E+07"), 1e7);
    EXPECT_EQ(parse_number("1D2"), 100.0);
    EXPECT_EQ(parse_number("12abc"), 12.0);
    // An exponent marker without digits ends the number before it.
    EXPECT_EQ(parse_number("3e"), 3.0);
    EXPECT_EQ(parse_number("3e+"), 3.0);
    // A text without a numeric prefix reads zero.
    for (const char* bad : {"", "abc", "-", ".", "+.", "e5", "--1", "*", "nan", "inf"})
        EXPECT_EQ(parse_number(bad), 0.0) << bad;
}

TEST(is_numeric_text, wants_the_whole_text_to_be_one_number) {
    EXPECT_TRUE(is_numeric_text("45"));
    EXPECT_TRUE(is_numeric_text(" -1.5E+3 "));
    EXPECT_TRUE(is_numeric_text(".5"));
    EXPECT_FALSE(is_numeric_text(""));
    EXPECT_FALSE(is_numeric_text("   "));
    EXPECT_FALSE(is_numeric_text("45deg"));
    EXPECT_FALSE(is_numeric_text("<no value>"));
    EXPECT_FALSE(is_numeric_text("1 2"));
}

TEST(trim_text, drops_blanks_and_line_ends_at_both_ends) {
    EXPECT_EQ(trim_text(" \t a b \r\n"), "a b");
    EXPECT_EQ(trim_text("\r\n"), "");
}

}  // namespace
}  // namespace trensil
