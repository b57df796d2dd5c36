#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/text_lines.h"
#include "support/text_measure.h"

namespace trensil {
namespace {

TEST(text_width, sums_the_table_of_printable_codes_in_units_of_the_height) {
    // B 171, o 128, d 128, y 128, blank 64, 1 128: 747 / 256 of the height.
    EXPECT_FLOAT_EQ(text_width("Body 1", 12.0f), 747.0f / 256.0f * 12.0f);
    EXPECT_FLOAT_EQ(text_width("", 10.0f), 0.0f);
    // Tabs and bytes above 126 count nothing.
    EXPECT_FLOAT_EQ(text_width("A\t\xC3\xA9", 256.0f), 185.0f);
}

TEST(read_text_line, reads_lf_and_crlf_lines_and_a_last_line_without_terminator) {
    std::istringstream in("one\r\ntwo\n\nlast");
    for (const char* line : {"one", "two", "", "last", "", ""}) EXPECT_EQ(read_text_line(in), line);
    // The long-line reader returns lines far longer than its first buffer.
    const std::string longline(100000, 'x');
    std::istringstream long_in(longline + "\r\nshort\n" + longline + "y");
    EXPECT_EQ(read_long_line(long_in), longline);
    EXPECT_EQ(read_long_line(long_in), "short");
    EXPECT_EQ(read_long_line(long_in), longline + "y");
    EXPECT_EQ(read_long_line(long_in), "");
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
