// Widths of label text for the section view, from a fixed table of character widths.
//
//   text_width("Body 1", 12.0f)   // width of the text in the units of its height 12
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace trensil {

// Width of each character code in 256ths of the font height; codes outside 32..126 are 0.
extern const std::array<std::int32_t, 256> char_width_table;

// The sum of the widths of the text's characters, divided by 256, times `height`: the width of
// the text in the units the height is given in. Characters outside 32..126 count 0.
float text_width(std::string_view text, float height);

}  // namespace trensil
