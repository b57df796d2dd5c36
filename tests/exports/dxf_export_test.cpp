#include "exports/dxf_export.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <sstream>

#include "export_fixtures.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using testing::add_body;
using testing::dxf_reading;
using testing::model_with_stations;
using testing::read_all;
using testing::read_dxf;
using testing::read_lines;
using testing::scratch_dir;

const std::string reference_dir = std::string(TRENSIL_SOURCE_DIR) + "/tests/exports/data/";

// Two stations 100 apart running east, and one vertical thin sheet between them, striking north,
// 10 wide, 200 long, its top at 100 and 50 deep.
model_record small_model() {
    model_record model = model_with_stations({{1000.0, 5000.0}, {1100.0, 5000.0}});
    body_record& dyke = add_body(model, 1, "Dyke", 1050.0, 5000.0, 0.0f, 90.0f);
    dyke.cos_dip = 0.0f;
    dyke.sin_dip = 1.0f;
    dyke.width.value = 10.0f;
    dyke.length.value = 200.0f;
    dyke.top.value = 100.0f;
    dyke.depth_extent.value = 50.0f;
    return model;
}

std::string plan_text(const model_record& model) {
    std::ostringstream out;
    write_plan_dxf(out, model);
    return out.str();
}

std::string body_text(model_record& model) {
    response_state state;
    std::ostringstream out;
    write_body_dxf(out, model, state);
    return out.str();
}

TEST(squared_plan_extents, widen_the_shorter_range_about_its_centre) {
    model_record model = model_with_stations({{1000.0, 5000.0}, {1100.0, 5400.0}});
    const clip_rectangle r = squared_plan_extents(model);
    EXPECT_FLOAT_EQ(r.xmin, 850.0f);
    EXPECT_FLOAT_EQ(r.xmax, 1250.0f);
    EXPECT_FLOAT_EQ(r.ymin, 5000.0f);
    EXPECT_FLOAT_EQ(r.ymax, 5400.0f);

    // A line due north has no East range at all and takes the North range.
    model = model_with_stations({{300.0, 0.0}, {300.0, 80.0}});
    const clip_rectangle north = squared_plan_extents(model);
    EXPECT_FLOAT_EQ(north.xmin, 260.0f);
    EXPECT_FLOAT_EQ(north.xmax, 340.0f);
}

TEST(dxf_default_names, sit_beside_the_model_and_are_empty_without_one) {
    model_record model;
    EXPECT_EQ(plan_dxf_default_name(model), "");
    EXPECT_EQ(body_dxf_default_name(model), "");
    model.model_file = "/data/line.5/osborne 5676.qvx";
    EXPECT_EQ(plan_dxf_default_name(model), "/data/line.5/osborne 5676.dxf");
    EXPECT_EQ(body_dxf_default_name(model), "/data/line.5/osborne 5676_3d.dxf");
}

TEST(dxf_files, match_the_hand_written_reference_line_for_line) {
    model_record model = small_model();
    EXPECT_EQ(plan_text(model), read_all(reference_dir + "small_plan.dxf"));
    EXPECT_EQ(body_text(model), read_all(reference_dir + "small_3d.dxf"));
}

TEST(dxf_files, are_read_by_a_dxf_reader_with_the_written_geometry) {
    scratch_dir dir("dxf_read");
    model_record model = small_model();
    response_state state;
    std::string error;
    ASSERT_EQ(write_plan_dxf(model, dir.file("plan.dxf"), error), 0) << error;
    ASSERT_EQ(write_body_dxf(model, state, dir.file("body.dxf"), error), 0) << error;

    const dxf_reading plan = read_dxf(dir.file("plan.dxf"));
    ASSERT_TRUE(plan.readable);
    EXPECT_EQ(plan.extmin, (std::vector<double>{1000, 4950}));
    EXPECT_EQ(plan.extmax, (std::vector<double>{1100, 5050}));
    const auto lines = plan.of_kind("POLYLINE");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(plan.entities.size(), 2u);
    EXPECT_EQ(lines[0].numbers, (std::vector<double>{1000, 5000, 0, 1100, 5000, 0}));
    EXPECT_EQ(lines[1].numbers, (std::vector<double>{1050, 4950, 0, 1050, 5050, 0, 1060, 5050, 0,
                                                     1060, 4950, 0, 1050, 4950, 0}));

    const dxf_reading body = read_dxf(dir.file("body.dxf"));
    ASSERT_TRUE(body.readable);
    EXPECT_EQ(body.layers.find("Dyke"), std::string::npos);  // no layer table is written
    const auto faces = body.of_kind("3DFACE");
    ASSERT_EQ(faces.size(), 6u);
    for (const auto& f : faces) {
        EXPECT_EQ(f.layer, "Dyke");
        EXPECT_EQ(f.colour, 1);
    }
    // The top, then the bottom face wound the other way.
    EXPECT_EQ(faces[0].numbers, (std::vector<double>{1050, 5100, 100, 1050, 4900, 100, 1060, 4900,
                                                     100, 1060, 5100, 100}));
    EXPECT_EQ(faces[1].numbers, (std::vector<double>{1060, 5100, 50, 1060, 4900, 50, 1050, 4900, 50,
                                                     1050, 5100, 50}));
}

// Sheets and cylinders that reach the squared view get a footprint (the pipe twice as broad as
// its width); a sphere, a polygon and a sheet wholly outside get none. Without stations the file
// holds only the bodies.
TEST(plan_dxf, writes_footprints_only_for_sheets_and_cylinders_that_reach_the_view) {
    model_record model = small_model();
    add_body(model, 6, "Sphere", 1050.0, 5000.0, 0.0f, 90.0f);
    add_body(model, 5, "Polygon", 1050.0, 5000.0, 0.0f, 90.0f);
    add_body(model, 2, "Far", 1050.0, 9000.0, 90.0f, 90.0f).width.value = 5.0f;
    body_record& pipe = add_body(model, 16, "Pipe", 1080.0, 5000.0, 0.0f, 90.0f);
    pipe.width.value = 4.0f;
    pipe.length.value = 20.0f;
    scratch_dir dir("plan_bodies");
    std::string error;
    ASSERT_EQ(write_plan_dxf(model, dir.file("p.dxf"), error), 0);
    auto lines = read_dxf(dir.file("p.dxf")).of_kind("POLYLINE");
    ASSERT_EQ(lines.size(), 3u);  // profile, dyke, pipe
    EXPECT_EQ(lines[2].numbers, (std::vector<double>{1076, 4990, 0, 1076, 5010, 0, 1084, 5010, 0,
                                                     1084, 4990, 0, 1076, 4990, 0}));
    model.profile.num_stations = 0;  // the ranges stay as the data gave them
    ASSERT_EQ(write_plan_dxf(model, dir.file("p.dxf"), error), 0);
    lines = read_dxf(dir.file("p.dxf")).of_kind("POLYLINE");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].numbers[6], 1060.0);  // the dyke comes first
}

TEST(body_dxf, keeps_the_four_character_group_codes_of_sheet_faces_and_empty_names) {
    model_record model = small_model();
    model.body(1).name = "";
    const auto text = body_text(model);
    EXPECT_NE(text.find("3DFACE\r\n  8\r\n\r\n  62\r\n  1\r\n  10\r\n"), std::string::npos);
    EXPECT_NE(text.find("\r\n  33\r\n"), std::string::npos);
}

// Every body but a cylinder is written as a sheet, a zero depth extent as 1000 deep, and a
// cylinder whose mesh cannot be made is left out.
TEST(body_dxf, writes_every_non_cylinder_as_a_sheet_and_leaves_out_an_unmeshable_cylinder) {
    model_record model = small_model();
    model.body(1).depth_extent.value = 0.0f;
    add_body(model, 6, "Sphere", 1050.0, 5000.0, 0.0f, 90.0f).top.value = 20.0f;
    body_record& hollow = add_body(model, 16, "Hollow", 1050.0, 5000.0, 0.0f, 0.0f);
    hollow.width.value = 10.0f;
    hollow.length.value = 50.0f;
    hollow.shell_thickness = 8.0f;  // not below the radius: refused
    scratch_dir dir("body_sheets");
    response_state state;
    std::string error;
    ASSERT_EQ(write_body_dxf(model, state, dir.file("b.dxf"), error), 0);
    const auto faces = read_dxf(dir.file("b.dxf")).of_kind("3DFACE");
    ASSERT_EQ(faces.size(), 12u);
    EXPECT_DOUBLE_EQ(faces[1].numbers[2], -900.0);  // bottom: top 100 less 1000
    EXPECT_EQ(faces[6].layer, "Sphere");
    EXPECT_EQ(faces[11].layer, "Sphere");
}

TEST(body_dxf, writes_each_cylinder_triangle_with_three_character_codes_to_two_decimals) {
    model_record model = model_with_stations({{0.0, 0.0}, {100.0, 0.0}});
    body_record& pipe = add_body(model, 16, "Pipe", 50.0, 0.0, 30.0f, 60.0f);
    pipe.width.value = 20.0f;
    pipe.length.value = 100.0f;
    pipe.top.value = -15.0f;
    pipe.num_sectors = 8;
    scratch_dir dir("body_cylinder");
    response_state state;
    std::string error;
    ASSERT_EQ(write_body_dxf(model, state, dir.file("c.dxf"), error), 0);
    const solid_cache& solid = model.body(1).solid;
    ASSERT_GT(solid.num_triangles, 0);

    const auto lines = read_lines(dir.file("c.dxf"));
    const auto face = std::find(lines.begin(), lines.end(), "3DFACE");
    ASSERT_NE(face, lines.end());
    EXPECT_EQ(face[4], "  1");
    EXPECT_EQ(face[5], " 10");
    EXPECT_EQ(face[6].find('.'), face[6].size() - 3);  // "0.00"
    EXPECT_EQ(face[23], " 13");

    const auto faces = read_dxf(dir.file("c.dxf")).of_kind("3DFACE");
    ASSERT_EQ(static_cast<int>(faces.size()), solid.num_triangles);
    for (int t = 1; t <= solid.num_triangles; ++t) {
        const auto& f = faces[static_cast<std::size_t>(t - 1)];
        EXPECT_EQ(f.layer, "Pipe");
        for (int k = 0; k < 4; ++k) {
            const int v = solid.triangles(std::min(k, 2) + 1, t);
            for (int axis = 1; axis <= 3; ++axis) {
                EXPECT_NEAR(f.numbers[static_cast<std::size_t>(k * 3 + axis - 1)],
                            solid.placed_vertices(axis, v), 0.005 + 1e-9);
            }
        }
    }
}

// In the exact geometry the plunge tilts the pipe's axis, and the 3-D file draws the pipe so: a
// horizontal pipe striking north, plunged 30 degrees, spans its length's projections plus its
// diameter's; in the format's pose the same body lies level.
TEST(body_dxf, draws_a_pipe_in_the_pose_of_the_model_field_geometry) {
    const auto extent = [](bool exact, int axis) {
        model_record model = model_with_stations({{0.0, 0.0}, {100.0, 0.0}});
        model.exact_field_geometry = exact;
        body_record& pipe = add_body(model, 16, "Pipe", 50.0, 0.0, 0.0f, 0.0f);
        pipe.width.value = 20.0f;
        pipe.length.value = 400.0f;
        pipe.plunge.value = 30.0f;
        pipe.top.value = -100.0f;
        scratch_dir dir("body_plunged_pipe");
        response_state state;
        std::string error;
        EXPECT_EQ(write_body_dxf(model, state, dir.file("c.dxf"), error), 0);
        double lo = 1e30, hi = -1e30;
        for (const auto& f : read_dxf(dir.file("c.dxf")).of_kind("3DFACE"))
            for (std::size_t k = static_cast<std::size_t>(axis); k < f.numbers.size(); k += 3) {
                lo = std::min(lo, f.numbers[k]);
                hi = std::max(hi, f.numbers[k]);
            }
        return hi - lo;
    };
    const double s = std::sin(30.0 * 0.017453292), c = std::cos(30.0 * 0.017453292);
    EXPECT_NEAR(extent(true, 2), 400.0 * s + 20.0 * c, 0.5);  // elevation
    EXPECT_NEAR(extent(true, 1), 400.0 * c + 20.0 * s, 0.5);  // north
    EXPECT_LT(extent(false, 2), 21.0);
}

// The menu command asks for the plan file (".dxf" added), then the 3-D file, and reports each;
// a cancelled plan does not stop the 3-D file; without bodies no 3-D file is asked for.
TEST(dxf_commands, write_plan_then_3d_and_report_each) {
    const struct {
        const char* name;
        std::optional<std::string> plan;
        int bodies;
        bool plan_written, body_written;
        std::size_t messages;
    } table[] = {
        {"both", "plan", 1, true, true, 2},
        {"plan cancelled", std::nullopt, 1, false, true, 1},
        {"no bodies", "plan", 0, true, false, 1},
    };
    for (const auto& r : table) {
        SCOPED_TRACE(r.name);
        scratch_dir dir("dxf_commands");
        model_record model = small_model();
        model.num_bodies = r.bodies;
        response_state state;
        scripted_platform ui;
        ui.file_answers = {r.plan ? std::optional(dir.file(*r.plan)) : std::nullopt,
                           dir.file("model_3d.dxf")};
        menu_export_dxf(model, state, ui);
        EXPECT_EQ(read_dxf(dir.file("plan.dxf")).readable, r.plan_written);
        EXPECT_EQ(ui.file_answers.size(), r.body_written ? 0u : 1u);
        if (r.body_written) {
            EXPECT_EQ(read_all(dir.file("model_3d.dxf")), read_all(reference_dir + "small_3d.dxf"));
        }
        EXPECT_EQ(ui.messages, std::vector<std::string>(r.messages, "Output complete"));
    }
}

TEST(dxf_commands, a_failed_write_is_reported_and_leaves_the_working_directory) {
    scratch_dir dir("dxf_fail");
    model_record model = small_model();
    scripted_platform ui;
    const auto before = std::filesystem::current_path();
    ui.file_answers = {dir.file("missing/plan.dxf")};
    EXPECT_EQ(export_plan_dxf(model, ui), -1);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].rfind("An error occurred while writing the file: ", 0), 0u);
    EXPECT_EQ(std::filesystem::current_path(), before);
}

}  // namespace
}  // namespace trensil
