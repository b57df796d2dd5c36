#include "exports/bitmap_file.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/atomic_file.h"
#include "support/paths.h"

namespace trensil {

namespace {

constexpr std::uint32_t file_header_size = 14;
constexpr std::uint32_t info_header_size = 40;
// 96 dots an inch, the screen's resolution, in pixels a metre.
constexpr std::uint32_t screen_pixels_per_metre = 3780;

void put16(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value & 0xffu));
    bytes.push_back(static_cast<std::uint8_t>((value >> 8) & 0xffu));
}

void put32(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    put16(bytes, value & 0xffffu);
    put16(bytes, value >> 16);
}

}  // namespace

int write_bitmap_file(const std::string& path, const picture& image, std::string& error) {
    if (image.width <= 0 || image.height <= 0) {
        error = "The picture is empty";
        return -1;
    }
    const auto width = static_cast<std::size_t>(image.width);
    const auto height = static_cast<std::size_t>(image.height);
    if (image.rgb.size() != width * height * 3) {
        error = "The picture's pixels do not match its size";
        return -1;
    }

    const std::size_t row_bytes = (width * 3 + 3) / 4 * 4;
    const auto pixel_bytes = static_cast<std::uint32_t>(row_bytes * height);
    std::vector<std::uint8_t> bytes;
    bytes.reserve(file_header_size + info_header_size + pixel_bytes);

    // File header: "BM", file size, two reserved words, offset of the pixels.
    bytes.push_back('B');
    bytes.push_back('M');
    put32(bytes, file_header_size + info_header_size + pixel_bytes);
    put32(bytes, 0);
    put32(bytes, file_header_size + info_header_size);

    // Information header: size, width, height (positive: rows from the bottom), one plane,
    // 24 bits a pixel, no compression, pixel bytes, resolution, no palette.
    put32(bytes, info_header_size);
    put32(bytes, static_cast<std::uint32_t>(image.width));
    put32(bytes, static_cast<std::uint32_t>(image.height));
    put16(bytes, 1);
    put16(bytes, 24);
    put32(bytes, 0);
    put32(bytes, pixel_bytes);
    put32(bytes, screen_pixels_per_metre);
    put32(bytes, screen_pixels_per_metre);
    put32(bytes, 0);
    put32(bytes, 0);

    for (std::size_t r = height; r-- > 0;) {
        const std::uint8_t* row = image.rgb.data() + r * width * 3;
        for (std::size_t c = 0; c < width; ++c) {
            bytes.push_back(row[c * 3 + 2]);
            bytes.push_back(row[c * 3 + 1]);
            bytes.push_back(row[c * 3]);
        }
        for (std::size_t pad = width * 3; pad < row_bytes; ++pad) bytes.push_back(0);
    }

    atomic_file file(path);
    if (!file.is_open()) {
        error = file.error();
        return -1;
    }
    file.stream().write(reinterpret_cast<const char*>(bytes.data()),
                        static_cast<std::streamsize>(bytes.size()));
    if (!file.commit()) {
        error = file.error();
        return -1;
    }
    return 0;
}

std::string capture_file_name(const model_record& model, bool plan_shown) {
    if (model.model_file.empty()) return {};
    return drop_extension(model.model_file) + (plan_shown ? "_plan.bmp" : "_model.bmp");
}

std::string save_screen_capture(const model_record& model, const picture& image, bool plan_shown,
                                platform& ui) {
    std::string written = capture_file_name(model, plan_shown);
    if (!written.empty()) {
        std::string error;
        if (write_bitmap_file(written, image, error) != 0) {
            ui.show_message("An error occurred while writing the file: " + error);
            written.clear();
        }
    }
    ui.copy_picture_to_clipboard(image);
    return written;
}

}  // namespace trensil
