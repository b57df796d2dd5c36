// Reading text files line by line from a std::istream opened in binary mode.
//
//   std::ifstream in(path, std::ios::binary);
//   int lf_only = 1;
//   detect_line_ending(in, lf_only);          // 0 when the file has carriage returns
//   while (in.peek() != EOF) { std::string line = read_text_line(in); ... }
//
// Lines end at a line feed; a carriage return just before it is dropped, so files with CR LF
// and with LF alone read the same. A last line without a line feed is returned as it stands.
#pragma once

#include <istream>
#include <string>

namespace trensil {

// The next line, or "" at the end of the file.
std::string read_text_line(std::istream& in);

// The next line, read character by character into a buffer that starts at 2048 characters and
// doubles as needed, so a line of any length comes back whole; "" at the end of the file.
std::string read_long_line(std::istream& in);

// Looks at no more than the first 512 characters: `flag` becomes 1, or 0 if a carriage return is
// among them. A first byte of 239 (the start of a UTF-8 byte-order mark) ends the look at once,
// leaving 1. The stream is put back to its start, its end-of-file state cleared.
void detect_line_ending(std::istream& in, int& flag);

}  // namespace trensil
