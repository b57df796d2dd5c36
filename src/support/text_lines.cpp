#include "support/text_lines.h"

#include <vector>

namespace trensil {

std::string read_text_line(std::istream& in) {
    std::string line;
    if (!std::getline(in, line)) return std::string();
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

std::string read_long_line(std::istream& in) {
    std::vector<char> buffer(2048);
    std::size_t used = 0;
    std::istream::int_type c;
    while ((c = in.get()) != std::istream::traits_type::eof()) {
        if (c == '\n') break;
        if (used == buffer.size()) buffer.resize(buffer.size() * 2);
        buffer[used++] = static_cast<char>(c);
    }
    if (used > 0 && buffer[used - 1] == '\r') --used;
    return std::string(buffer.data(), used);
}

void detect_line_ending(std::istream& in, int& flag) {
    flag = 1;
    in.clear();
    in.seekg(0, std::ios::beg);
    for (int count = 0; count < 512; ++count) {
        const std::istream::int_type c = in.get();
        if (c == std::istream::traits_type::eof()) break;
        if (count == 0 && c == 239) break;
        if (c == 13) {
            flag = 0;
            break;
        }
    }
    in.clear();
    in.seekg(0, std::ios::beg);
}

}  // namespace trensil
