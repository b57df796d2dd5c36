// Numbers in the lines of model and project files: taking them from the left of a line, and
// writing a line as one print list (each value in the general form with a leading blank in place
// of a plus sign and one trailing blank, the line ended by CR LF).
//
//   std::string line = "1.5 2 x";
//   take_f32(line) == 1.5f; take_i32(line) == 2; take_f32(line) == 0 (a bad token reads 0)
//   print_list().add(2).add(2.5f).line() == " 2  2.5 \r\n"
#pragma once

#include <cstdint>
#include <string>

#include "core/parameter.h"

namespace trensil {

// Takes the next word and reads it by the prefix parse. Throw file_run_error "Overflow" when
// the value does not fit the field or is not finite.
double take_f64(std::string& line);
float take_f32(std::string& line);
std::int32_t take_i32(std::string& line);

// Throws file_run_error "Overflow" on a value that is not finite: no file holds one.
class print_list {
public:
    print_list& add(std::int32_t value);
    print_list& add(float value);
    print_list& add(double value);
    print_list& add(const parameter& p);  // value, vary, min, max
    // The values and CR LF.
    std::string line() const { return text_ + "\r\n"; }
    const std::string& text() const { return text_; }

private:
    std::string text_;
};

}  // namespace trensil
