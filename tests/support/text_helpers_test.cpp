#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

#include "support/text_lines.h"
#include "support/text_measure.h"
#include "support/value_helpers.h"

namespace trensil {
namespace {

TEST(char_width_table, holds_the_widths_of_the_printable_codes_only) {
    EXPECT_EQ(char_width_table[32], 64);   // blank, first of the table
    EXPECT_EQ(char_width_table[47], 71);   // '/', end of the first row
    EXPECT_EQ(char_width_table[48], 128);  // '0'
    EXPECT_EQ(char_width_table['@'], 236);
    EXPECT_EQ(char_width_table['W'], 242);
    EXPECT_EQ(char_width_table['m'], 199);
    EXPECT_EQ(char_width_table['|'], 51);
    EXPECT_EQ(char_width_table[126], 139);  // '~', last of the table
    EXPECT_EQ(char_width_table[31], 0);
    EXPECT_EQ(char_width_table[127], 0);
    EXPECT_EQ(char_width_table[233], 0);
}

TEST(text_width, sums_the_table_in_units_of_the_height) {
    // B 171, o 128, d 128, y 128, blank 64, 1 128: 747 / 256 of the height.
    EXPECT_FLOAT_EQ(text_width("Body 1", 12.0f), 747.0f / 256.0f * 12.0f);
    EXPECT_FLOAT_EQ(text_width("", 10.0f), 0.0f);
    // Tabs and bytes above 126 count nothing.
    EXPECT_FLOAT_EQ(text_width("A\t\xC3\xA9", 256.0f), 185.0f);
}

TEST(value_helpers, yes_no_log_and_extremes) {
    EXPECT_EQ(yes_no_text(-1), "Yes");
    EXPECT_EQ(yes_no_text(1), "Yes");
    EXPECT_EQ(yes_no_text(0), "No");

    EXPECT_EQ(log10_of(0.0), 0.0f);
    EXPECT_FLOAT_EQ(log10_of(1000.0), 3.0f);
    EXPECT_FLOAT_EQ(log10_of(-1000.0), 3.0f);
    EXPECT_FLOAT_EQ(log10_of(0.01), -2.0f);
    EXPECT_EQ(log10_of(2.0), static_cast<float>(std::log(2.0) / std::log(10.0)));

    EXPECT_EQ(greater_of(2, 3), 3);
    EXPECT_EQ(lesser_of(2, 3), 2);
    EXPECT_DOUBLE_EQ(greater_of(2, 3.5), 3.5);
    EXPECT_DOUBLE_EQ(lesser_of(-1.5f, 2.0), -1.5);
    EXPECT_EQ(greater_of(-99999.0f, -1e32f), -99999.0f);
}

TEST(read_text_line, reads_lf_and_crlf_lines_and_a_last_line_without_terminator) {
    std::istringstream in("one\r\ntwo\n\nlast");
    EXPECT_EQ(read_text_line(in), "one");
    EXPECT_EQ(read_text_line(in), "two");
    EXPECT_EQ(read_text_line(in), "");
    EXPECT_EQ(read_text_line(in), "last");
    EXPECT_EQ(read_text_line(in), "");
    EXPECT_EQ(read_text_line(in), "");
}

TEST(read_long_line, returns_lines_far_longer_than_its_first_buffer) {
    const std::string longline(100000, 'x');
    std::istringstream in(longline + "\r\nshort\n" + longline + "y");
    EXPECT_EQ(read_long_line(in), longline);
    EXPECT_EQ(read_long_line(in), "short");
    EXPECT_EQ(read_long_line(in), longline + "y");
    EXPECT_EQ(read_long_line(in), "");
}

TEST(detect_line_ending, looks_at_the_first_512_characters_and_rewinds) {
    int flag = -5;
    std::istringstream crlf("a,b\r\n1,2\r\n");
    crlf.get();
    detect_line_ending(crlf, flag);
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(read_text_line(crlf), "a,b");

    std::istringstream lf("a,b\n1,2\n");
    detect_line_ending(lf, flag);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(read_text_line(lf), "a,b");

    // A carriage return past the first 512 characters is not seen.
    std::istringstream late(std::string(512, 'x') + "\r\n");
    detect_line_ending(late, flag);
    EXPECT_EQ(flag, 1);
    std::istringstream just_in(std::string(511, 'x') + "\r\n");
    detect_line_ending(just_in, flag);
    EXPECT_EQ(flag, 0);

    // A byte-order mark stops the look at once, even with carriage returns after it.
    std::istringstream bom("\xEF\xBB\xBFname\r\n");
    detect_line_ending(bom, flag);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(bom.get(), 0xEF);

    std::istringstream empty("");
    detect_line_ending(empty, flag);
    EXPECT_EQ(flag, 1);
    EXPECT_TRUE(empty.good());
}

}  // namespace
}  // namespace trensil
