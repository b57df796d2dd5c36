#include "io/model_file_fields.h"

#include "io/model_line_source.h"
#include "support/number_format.h"
#include "support/text_tokens.h"

namespace trensil {

double take_f64(std::string& line) {
    return parse_number(take_word(line));
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
    text_ += print_number(value);
    return *this;
}

print_list& print_list::add(double value) {
    text_ += print_number(value);
    return *this;
}

print_list& print_list::add(const parameter& p) {
    return add(p.value).add(p.vary).add(p.min).add(p.max);
}

}  // namespace trensil
