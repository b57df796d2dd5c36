#include "exports/body_geometry.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "export_fixtures.h"

namespace trensil {
namespace {

using testing::add_body;
using testing::model_with_stations;

const clip_rectangle square{0.0f, 10.0f, 0.0f, 10.0f};
const clip_rectangle view{0.0f, 1000.0f, -500.0f, 500.0f};

// A segment inside stays, one that crosses is cut at the edges (through two corners each end is
// moved twice), an axis-parallel line never divides by its zero extent, touching an edge counts
// as inside, and a segment wholly outside (even one found only after a cut) is refused.
TEST(clip_segment, keeps_cuts_or_refuses_against_the_square) {
    const struct {
        std::array<float, 4> in, out;
        bool inside;
    } table[] = {
        {{1, 1, 2, 9}, {1, 1, 2, 9}, true},
        {{-5, 5, 15, 5}, {0, 5, 10, 5}, true},
        {{-5, -5, 15, 15}, {0, 0, 10, 10}, true},
        {{5, -100, 5, 100}, {5, 0, 5, 10}, true},
        {{10, 2, 10, 20}, {10, 2, 10, 10}, true},
        {{-5, 1, -1, 9}, {}, false},  // both ends left
        {{-5, 8, 2, 15}, {}, false},  // left and above, passing outside the corner
    };
    for (const auto& r : table) {
        SCOPED_TRACE(::testing::PrintToString(r.in));
        auto p = r.in;
        const int status = clip_segment(p[0], p[1], p[2], p[3], square);
        if (!r.inside) {
            EXPECT_LT(status, 0);
            continue;
        }
        EXPECT_EQ(status, 0);
        for (std::size_t k = 0; k < 4; ++k) EXPECT_FLOAT_EQ(p[k], r.out[k]) << k;
    }
}

// Footprints of a sheet 20 wide at (500, 0) in a view 0..1000 by -500..500. The width lies to
// the right of strike; an unbounded body is clipped to the view, or held to the model's
// unbounded length, and drawn 250 long for the DXF; only a thick sheet reads its strike length,
// and the model's left and right clips hold its ends in the view only; a cylinder is centred on
// its axis and twice as broad as its width.
TEST(plan_outline, footprints_of_sheets_and_cylinders) {
    const auto plan = outline_rules::plan_view, dxf = outline_rules::dxf_export;
    // Outline A, B, B + w, A + w, A: given as A, B and the third point.
    const struct {
        const char* name;
        int type;
        float strike, length, offset, unbounded, left, right;
        outline_rules rules;
        std::array<float, 6> abc;
    } table[] = {
        {"clipped", 1, 0, 0, 0, 0, 0, 0, plan, {500, -500, 500, 500, 520, 500}},
        {"model length", 1, 0, 0, 0, 400, 0, 0, plan, {500, -200, 500, 200, 520, 200}},
        {"strike east", 3, 90, 0, 0, 100, 0, 0, plan, {450, 0, 550, 0, 550, -20}},
        {"thin: no length", 1, 0, 100, 0, 400, 0, 0, plan, {500, -200, 500, 200, 520, 200}},
        {"thick: length", 2, 0, 100, 10, 400, 0, 0, plan, {500, -40, 500, 60, 520, 60}},
        {"thick: clips", 2, 0, 100, 10, 400, 20, 30, plan, {500, -20, 500, 30, 520, 30}},
        {"thick: DXF", 2, 0, 100, 10, 400, 20, 30, dxf, {500, -40, 500, 60, 520, 60}},
        {"unbounded DXF", 2, 0, 0, 0, 400, 0, 0, dxf, {500, -125, 500, 125, 520, 125}},
        {"cylinder", 16, 0, 100, 0, 0, 0, 0, plan, {480, -50, 480, 50, 520, 50}},
    };
    for (const auto& r : table) {
        SCOPED_TRACE(r.name);
        model_record model = model_with_stations({{0.0, 0.0}, {1000.0, 0.0}});
        model.infinite_body_length = r.unbounded;
        model.finite_body_left_clip = r.left;
        model.finite_body_right_clip = r.right;
        body_record& b = add_body(model, r.type, "s", 500.0, 0.0, r.strike, 90.0f);
        b.width.value = 20.0f;
        b.length.value = r.length;
        b.offset.value = r.offset;
        std::array<float, 5> x{}, y{};
        ASSERT_EQ(body_plan_outline(model, view, 1, x, y, r.rules), 5);
        const auto& [ax, ay, bx, by, cx, cy] = r.abc;
        const std::array<float, 5> ex{ax, bx, cx, ax + cx - bx, ax};
        const std::array<float, 5> ey{ay, by, cy, ay + cy - by, ay};
        for (std::size_t k = 0; k < 5; ++k) {
            EXPECT_NEAR(x[k], ex[k], 1e-3) << "point " << k + 1;
            EXPECT_NEAR(y[k], ey[k], 1e-3) << "point " << k + 1;
        }
    }
}

// In the exact geometry a pipe's footprint follows its tilted axis: level, the whole length from
// the start of the axis; standing upright, the diameter about the start.
TEST(plan_outline, of_a_pipe_in_the_exact_geometry_follows_its_tilted_axis) {
    for (const auto& [dip, plunge, s1, s2] :
         {std::array<float, 4>{0, 0, -50, 50}, std::array<float, 4>{0, 90, -60, -40},
          std::array<float, 4>{60, -30, -55, 41.6025f}}) {
        SCOPED_TRACE(::testing::Message() << "dip " << dip << " plunge " << plunge);
        model_record model = model_with_stations({{0.0, 0.0}, {1000.0, 0.0}});
        model.exact_field_geometry = true;
        body_record& b = add_body(model, 16, "pipe", 500.0, 0.0, 0.0f, dip);
        b.plunge.value = plunge;
        b.width.value = 20.0f;
        b.length.value = 100.0f;
        std::array<float, 5> x{}, y{};
        ASSERT_EQ(body_plan_outline(model, view, 1, x, y), 5);
        EXPECT_NEAR(y[0], s1, 1e-3);  // strike north: along strike is north
        EXPECT_NEAR(y[1], s2, 1e-3);
    }
}

TEST(plan_outline, a_line_missing_the_view_and_bodies_without_a_footprint_give_none) {
    model_record model = model_with_stations({{0.0, 0.0}, {1000.0, 0.0}});
    add_body(model, 1, "far", 500.0, 2000.0, 90.0f, 90.0f);
    add_body(model, 5, "polygon", 500.0, 0.0, 0.0f, 90.0f).width.value = 20.0f;
    add_body(model, 6, "sphere", 500.0, 0.0, 0.0f, 90.0f).width.value = 20.0f;
    std::array<float, 5> x{}, y{};
    for (int b = 1; b <= 3; ++b) EXPECT_EQ(body_plan_outline(model, view, b, x, y), -1) << b;
}

// A sheet striking north, 10 wide, 200 long about its reference point, 50 deep, vertical.
class trapezoid : public ::testing::Test {
protected:
    body_record body;
    trapezoid_corners c;

    void SetUp() override {
        body.cos_strike = body.sin_dip = 1.0f;
        body.width.value = 10.0f;
        body.length.value = 200.0f;
        body.depth_extent.value = 50.0f;
    }
};

// Each case changes the sheet and names corners (end 1 top, 2 bottom) as east, north, up.
TEST_F(trapezoid, corners_of_sheets) {
    struct corner {
        int end, k;
        float e, n, up;
    };
    const struct {
        const char* name;
        std::function<void(body_record&)> change;
        std::vector<corner> corners;
    } table[] = {
        {"vertical: bottom under top",
         [](body_record&) {},
         {{1, 1, 0, 100, 0},
          {1, 2, 0, -100, 0},
          {1, 3, 10, -100, 0},
          {1, 4, 10, 100, 0},
          {2, 1, 0, 100, -50},
          {2, 2, 0, -100, -50},
          {2, 3, 10, -100, -50},
          {2, 4, 10, 100, -50}}},
        // Corners come from length and offset alone: an unbounded sheet is a ribbon of no
        // length here, unlike the plan, which draws it 250 long.
        {"no strike length: collapses to its reference line",
         [](body_record& b) { b.length.value = 0.0f; },
         {{1, 1, 0, 0, 0}, {1, 2, 0, 0, 0}, {1, 3, 10, 0, 0}}},
        {"zero depth extent: 1000 deep, thrown down dip",
         [](body_record& b) {
             b.depth_extent.value = 0.0f;
             b.cos_dip = b.sin_dip = static_cast<float>(std::sqrt(0.5));
         },
         {{2, 1, 1000, 100, -1000}, {2, 3, 1010, -100, -1000}}},
        {"flat: no dip throw",
         [](body_record& b) {
             b.cos_dip = 1.0f;
             b.sin_dip = 0.0f;
         },
         {{2, 4, 10, 100, -50}}},
        {"offset moves the ends, plunge tilts them",
         [](body_record& b) {
             b.offset.value = 50.0f;
             b.plunge.value = 30.0f;
         },
         {{1, 1, 0, 150, -75}, {1, 2, 0, -50, 25}, {1, 4, 10, 150, -75}}},
        {"sloping top of a vertical sheet rises over the full width; the near edge stays",
         [](body_record& b) { b.slope.value = 45.0f; },
         {{1, 3, 10, -100, 10}, {1, 4, 10, 100, 10}, {2, 3, 10, -100, -40}, {1, 2, 0, -100, 0}}},
    };
    for (const auto& r : table) {
        SCOPED_TRACE(r.name);
        body_record b = body;
        r.change(b);
        convert_profile_model_to_trapezoid(b, c);
        for (const corner& p : r.corners) {
            EXPECT_NEAR(c(p.end, p.k, 1), p.e, 1e-3) << p.end << "," << p.k;
            EXPECT_NEAR(c(p.end, p.k, 2), p.n, 1e-3) << p.end << "," << p.k;
            EXPECT_NEAR(c(p.end, p.k, 3), p.up, 1e-3) << p.end << "," << p.k;
        }
    }
}

TEST_F(trapezoid, sloping_top_of_a_dipping_sheet_meets_its_far_face) {
    // The reduced width puts the new far corner on the plane of the sheet's far face.
    body.cos_dip = 0.5f;
    body.sin_dip = static_cast<float>(std::sqrt(0.75));
    body.slope.value = 20.0f;
    trapezoid_corners flat;
    body_record level = body;
    level.slope.value = 0.0f;
    convert_profile_model_to_trapezoid(level, flat);
    convert_profile_model_to_trapezoid(body, c);
    for (int end = 1; end <= 2; ++end) {
        // Far face in section (east, up): through flat corner 3 of this end, down dip.
        const float e0 = flat(end, 3, 1), z0 = flat(end, 3, 3);
        const float cross = (c(end, 3, 1) - e0) * body.sin_dip + (c(end, 3, 3) - z0) * body.cos_dip;
        EXPECT_NEAR(cross, 0.0f, 1e-3) << "end " << end;
        EXPECT_GT(c(end, 3, 3), flat(end, 3, 3));  // a positive slope raises the far edge
    }
}

}  // namespace
}  // namespace trensil
