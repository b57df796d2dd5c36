#include "support/text_tokens.h"

#include <cctype>
#include <cstdlib>

namespace trensil {

namespace {
bool is_separator(char c) {
    return c == ' ' || c == '\t' || c == ',';
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Length of the numeric prefix of `s` starting at `pos` (sign, digits, point, exponent).
std::size_t numeric_prefix_length(std::string_view s, std::size_t pos) {
    std::size_t i = pos;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < s.size() && is_digit(s[i])) ++i, ++digits;
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && is_digit(s[i])) ++i, ++digits;
    }
    if (digits == 0) return 0;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
        std::size_t j = i + 1;
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
        if (j < s.size() && is_digit(s[j])) {
            while (j < s.size() && is_digit(s[j])) ++j;
            i = j;
        }
    }
    return i - pos;
}
}  // namespace

std::string take_word(std::string& text) {
    std::size_t start = 0;
    while (start < text.size() && (text[start] == ' ' || text[start] == '\t')) ++start;
    // A comma where a word should begin closes an empty field: "1,,3" is "1", "", "3", so the
    // columns of a csv line with a missing value stay in place.
    if (start < text.size() && text[start] == ',') {
        std::size_t rest = start + 1;
        while (rest < text.size() && (text[rest] == ' ' || text[rest] == '\t')) ++rest;
        text.erase(0, rest);
        return std::string();
    }
    std::size_t end = start;
    while (end < text.size() && !is_separator(text[end])) ++end;
    std::string word = text.substr(start, end - start);
    // Drop the blanks after the word and at most one comma among them.
    std::size_t rest = end;
    bool comma_seen = false;
    while (rest < text.size() && is_separator(text[rest])) {
        if (text[rest] == ',') {
            if (comma_seen) break;
            comma_seen = true;
        }
        ++rest;
    }
    text.erase(0, rest);
    return word;
}

double parse_number(std::string_view text) {
    std::size_t pos = 0;
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t')) ++pos;
    const std::size_t len = numeric_prefix_length(text, pos);
    if (len == 0) return 0.0;
    std::string digits(text.substr(pos, len));
    for (char& c : digits)
        if (c == 'd' || c == 'D') c = 'e';
    return std::strtod(digits.c_str(), nullptr);
}

bool is_numeric_text(std::string_view text) {
    const std::string t = trim_text(text);
    if (t.empty()) return false;
    return numeric_prefix_length(t, 0) == t.size();
}

std::string trim_text(std::string_view text) {
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    std::size_t a = 0, b = text.size();
    while (a < b && blank(text[a])) ++a;
    while (b > a && blank(text[b - 1])) --b;
    return std::string(text.substr(a, b - a));
}

}  // namespace trensil
