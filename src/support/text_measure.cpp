#include "support/text_measure.h"

namespace trensil {

namespace {
// Widths of the codes 32 (blank) to 126 ('~'), sixteen to a row.
constexpr std::int32_t printable_widths[95] = {
    64,  85,  104, 128, 128, 213, 199, 85,  85,  85,  128, 144, 64,  85,  64,  71,   // 32-47
    128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 71,  71,  144, 144, 144, 114,  // 48-63
    236, 185, 171, 171, 185, 156, 142, 185, 185, 85,  100, 185, 156, 228, 185, 185,  // 64-79
    142, 185, 171, 142, 156, 185, 185, 242, 185, 185, 156, 85,  71,  85,  120, 128,  // 80-95
    85,  114, 128, 114, 128, 114, 85,  128, 128, 71,  71,  128, 71,  199, 128, 128,  // 96-111
    128, 128, 85,  104, 71,  128, 128, 185, 128, 128, 114, 123, 51,  123, 139,       // 112-126
};

constexpr std::array<std::int32_t, 256> make_width_table() {
    std::array<std::int32_t, 256> table{};
    for (int code = 32; code <= 126; ++code) table[code] = printable_widths[code - 32];
    return table;
}
}  // namespace

const std::array<std::int32_t, 256> char_width_table = make_width_table();

float text_width(std::string_view text, float height) {
    std::int64_t sum = 0;
    for (const char c : text) sum += char_width_table[static_cast<unsigned char>(c)];
    return static_cast<float>(sum) / 256.0f * height;
}

}  // namespace trensil
