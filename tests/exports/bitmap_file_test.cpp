#include "exports/bitmap_file.h"

#include <gtest/gtest.h>

#include "export_fixtures.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using testing::read_all;
using testing::run_command;
using testing::scratch_dir;

// 3 by 2 pixels: 9 bytes a row, so every row is padded to 12. Top row red, green, blue; bottom
// row white, black, a grey of 1, 2, 3 (the byte order shows in it).
picture small_picture() {
    picture image;
    image.width = 3;
    image.height = 2;
    image.rgb = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 1, 2, 3};
    return image;
}

TEST(bitmap_file, reads_back_with_its_size_and_pixels) {
    scratch_dir dir("bitmap");
    const std::string path = dir.file("capture.bmp");
    std::string error;
    ASSERT_EQ(write_bitmap_file(path, small_picture(), error), 0) << error;

    const std::string bytes = read_all(path);
    EXPECT_EQ(bytes.size(), 14u + 40u + 2u * 12u);
    EXPECT_EQ(bytes.substr(0, 2), "BM");

    const auto [size, size_status] = run_command("identify -format '%w %h %z' '" + path + "'");
    ASSERT_EQ(size_status, 0);
    EXPECT_EQ(size, "3 2 8");  // 8 bits a channel

    // One "x,y r g b" line a pixel, from the top left.
    const auto [pixels, status] = run_command(
        "convert '" + path +
        "' -depth 8 txt:- | tail -n +2 | "
        "sed -E 's/^([0-9]+),([0-9]+): \\(([0-9]+),([0-9]+),([0-9]+).*/\\1,\\2 \\3 \\4 \\5/'");
    ASSERT_EQ(status, 0);
    EXPECT_EQ(pixels,
              "0,0 255 0 0\n1,0 0 255 0\n2,0 0 0 255\n"
              "0,1 255 255 255\n1,1 0 0 0\n2,1 1 2 3\n");
}

TEST(bitmap_file, refuses_a_picture_without_pixels) {
    scratch_dir dir("bitmap_empty");
    std::string error;
    EXPECT_EQ(write_bitmap_file(dir.file("empty.bmp"), picture{}, error), -1);
    picture short_one = small_picture();
    short_one.rgb.pop_back();
    EXPECT_EQ(write_bitmap_file(dir.file("short.bmp"), short_one, error), -1);
    EXPECT_FALSE(std::filesystem::exists(dir.file("short.bmp")));
}

TEST(screen_capture, is_named_for_the_view_beside_the_model) {
    model_record model;
    EXPECT_EQ(capture_file_name(model, false), "");
    model.model_file = "/data/run.2/line 7.qvx";
    EXPECT_EQ(capture_file_name(model, false), "/data/run.2/line 7_model.bmp");
    EXPECT_EQ(capture_file_name(model, true), "/data/run.2/line 7_plan.bmp");
}

TEST(screen_capture, replaces_an_earlier_capture_and_always_fills_the_clipboard) {
    scratch_dir dir("capture");
    model_record model;
    model.model_file = dir.file("line.qvx");
    scripted_platform ui;
    picture first = small_picture();
    EXPECT_EQ(save_screen_capture(model, first, true, ui), dir.file("line_plan.bmp"));
    picture second = first;
    second.rgb[0] = 7;
    EXPECT_EQ(save_screen_capture(model, second, true, ui), dir.file("line_plan.bmp"));
    EXPECT_TRUE(ui.questions.empty());
    EXPECT_EQ(static_cast<unsigned char>(read_all(dir.file("line_plan.bmp"))[14 + 40 + 12 + 2]),
              7u);  // top row is last in the file; red is its third byte
    EXPECT_EQ(ui.clipboard.rgb, second.rgb);

    // Without a model file only the clipboard is written.
    model.model_file.clear();
    ui.clipboard = picture{};
    EXPECT_EQ(save_screen_capture(model, first, false, ui), "");
    EXPECT_EQ(ui.clipboard.rgb, first.rgb);
    EXPECT_TRUE(ui.messages.empty());
}

}  // namespace
}  // namespace trensil
