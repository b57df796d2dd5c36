#include "io/display_settings.h"

#include "io/model_file_fields.h"
#include "io/model_line_source.h"
#include "support/text_tokens.h"

namespace trensil {

std::string display_settings_text(model_record& model) {
    model.display_settings_present = -1;
    print_list d1, d2, d3;
    d1.add(model.display_axes).add(model.show_body_label).add(model.maintain_aspect_ratio);
    for (float s : model.splitter) d2.add(s);
    d3.add(model.tab_width).add(model.display_width);
    return std::string(display_settings_head) + "\r\n" + d1.line() + d2.line() + d3.line();
}

void read_display_settings(std::string d1, std::string d2, std::string d3, model_record& model) {
    model.display_settings_present = -1;
    model.display_axes = take_i32(d1);
    model.show_body_label = take_i32(d1);
    model.maintain_aspect_ratio = take_i32(d1);
    for (float& s : model.splitter) s = take_f32(d2);
    model.tab_width = take_i32(d3);
    model.display_width = take_i32(d3);
}

}  // namespace trensil
