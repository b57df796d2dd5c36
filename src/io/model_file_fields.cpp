#include "io/model_file_fields.h"

#include <cmath>

#include "io/model_line_source.h"
#include "support/number_format.h"
#include "support/text_tokens.h"

namespace trensil {

double take_f64(std::string& line) {
    // A number beyond double precision ("1e999") parses as infinite: no field holds one.
    const double value = parse_number(take_word(line));
    if (!std::isfinite(value)) throw file_run_error("Overflow");
    return value;
}

float take_f32(std::string& line) {
    return to_f32(take_f64(line));
}

std::int32_t take_i32(std::string& line) {
    return to_i32(take_f64(line));
}

print_list& print_list::add(std::int32_t value) {
    text_ += print_number(static_cast<int>(value));
    return *this;
}

print_list& print_list::add(float value) {
    if (!std::isfinite(value)) throw file_run_error("Overflow");
    text_ += print_number(value);
    return *this;
}

print_list& print_list::add(double value) {
    // What is written must read back: an infinite value or one that is not a number would be
    // text that reads as another value.
    if (!std::isfinite(value)) throw file_run_error("Overflow");
    text_ += print_number(value);
    return *this;
}

print_list& print_list::add(const parameter& p) {
    return add(p.value).add(p.vary).add(p.min).add(p.max);
}

}  // namespace trensil
