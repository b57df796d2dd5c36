#include "field_option.h"

#include "support/text_tokens.h"

namespace trensil::cli {

bool apply_field_option(const std::string& text, model_record& model, std::string& why) {
    if (trim_text(text).empty()) return true;
    std::string rest = text;
    float values[3] = {0.0f, 0.0f, 0.0f};
    for (float& v : values) {
        const std::string word = take_word(rest);
        if (!is_numeric_text(word)) {
            why = "--field takes INTENSITY,INCLINATION,DECLINATION (nT, degrees, degrees)";
            return false;
        }
        v = static_cast<float>(parse_number(word));
    }
    if (!trim_text(rest).empty()) {
        why = "--field takes three numbers";
        return false;
    }
    model.mag_intensity = values[0];
    model.mag_inclination = values[1];
    model.mag_declination = values[2];
    return true;
}

}  // namespace trensil::cli
