// The Earth's field given to the commands that make a new line's model: --field F,I,D.
//
//   if (!apply_field_option("49299,62.6,0.1", model, why)) ... // why: the option's form
#pragma once

#include <string>

#include "core/model_record.h"

namespace trensil::cli {

inline constexpr const char* field_option_usage = "[--field INTENSITY,INCLINATION,DECLINATION]";

// Sets the model's intensity (nT), inclination and declination (degrees) from the text; an
// empty text changes nothing. False with the reason when the text is not three numbers.
bool apply_field_option(const std::string& text, model_record& model, std::string& why);

}  // namespace trensil::cli
