#include "exports/body_geometry.h"

#include <gtest/gtest.h>

#include <cmath>

#include "export_fixtures.h"

namespace trensil {
namespace {

using testing::add_body;
using testing::model_with_stations;

const clip_rectangle square{0.0f, 10.0f, 0.0f, 10.0f};

TEST(clip_segment, keeps_a_segment_inside_and_cuts_one_that_crosses) {
    float x1 = 1, y1 = 1, x2 = 2, y2 = 9;
    EXPECT_EQ(clip_segment(x1, y1, x2, y2, square), 0);
    EXPECT_EQ(x1, 1.0f);
    EXPECT_EQ(y2, 9.0f);

    x1 = -5, y1 = 5, x2 = 15, y2 = 5;
    EXPECT_EQ(clip_segment(x1, y1, x2, y2, square), 0);
    EXPECT_EQ(x1, 0.0f);
    EXPECT_EQ(x2, 10.0f);
    EXPECT_EQ(y1, 5.0f);

    // Through two corners: each end is moved twice.
    x1 = -5, y1 = -5, x2 = 15, y2 = 15;
    EXPECT_EQ(clip_segment(x1, y1, x2, y2, square), 0);
    EXPECT_FLOAT_EQ(x1, 0.0f);
    EXPECT_FLOAT_EQ(y1, 0.0f);
    EXPECT_FLOAT_EQ(x2, 10.0f);
    EXPECT_FLOAT_EQ(y2, 10.0f);

    // Vertical and horizontal lines never divide by their zero extent.
    x1 = 5, y1 = -100, x2 = 5, y2 = 100;
    EXPECT_EQ(clip_segment(x1, y1, x2, y2, square), 0);
    EXPECT_EQ(y1, 0.0f);
    EXPECT_EQ(y2, 10.0f);
    EXPECT_EQ(x1, 5.0f);
}

TEST(clip_segment, reports_a_segment_wholly_outside) {
    float x1 = -5, y1 = 1, x2 = -1, y2 = 9;  // both left
    EXPECT_LT(clip_segment(x1, y1, x2, y2, square), 0);

    // One end left, one above, and the line passes outside the corner: found only after a cut.
    x1 = -5, y1 = 8, x2 = 2, y2 = 15;
    EXPECT_LT(clip_segment(x1, y1, x2, y2, square), 0);

    // Touching the edge counts as inside.
    x1 = 10, y1 = 2, x2 = 10, y2 = 20;
    EXPECT_EQ(clip_segment(x1, y1, x2, y2, square), 0);
    EXPECT_EQ(y2, 10.0f);
}

class plan_outline : public ::testing::Test {
protected:
    model_record model = model_with_stations({{0.0, 0.0}, {1000.0, 0.0}});
    clip_rectangle clip{0.0f, 1000.0f, -500.0f, 500.0f};
    std::array<float, 5> x{}, y{};

    body_record& sheet(int type, float strike = 0.0f) {
        body_record& b = add_body(model, type, "s", 500.0, 0.0, strike, 90.0f);
        b.width.value = 20.0f;
        return b;
    }
    void expect_outline(std::array<float, 5> ex, std::array<float, 5> ey) {
        for (std::size_t k = 0; k < 5; ++k) {
            EXPECT_NEAR(x[k], ex[k], 1e-3) << "point " << k + 1;
            EXPECT_NEAR(y[k], ey[k], 1e-3) << "point " << k + 1;
        }
    }
};

TEST_F(plan_outline, unbounded_sheet_is_clipped_to_the_view_and_lies_to_one_side) {
    sheet(1);  // strike north: the width extends east
    ASSERT_EQ(body_plan_outline(model, clip, 1, x, y), 5);
    expect_outline({500, 500, 520, 520, 500}, {-500, 500, 500, -500, -500});

    // With the model's unbounded length the line is that long.
    model.infinite_body_length = 400.0f;
    ASSERT_EQ(body_plan_outline(model, clip, 1, x, y), 5);
    expect_outline({500, 500, 520, 520, 500}, {-200, 200, 200, -200, -200});
}

TEST_F(plan_outline, width_extends_to_the_right_of_strike) {
    sheet(3, 90.0f);  // strike east: the width extends south
    model.infinite_body_length = 100.0f;
    ASSERT_EQ(body_plan_outline(model, clip, 1, x, y), 5);
    expect_outline({450, 550, 550, 450, 450}, {0, 0, -20, -20, 0});
}

TEST_F(plan_outline, only_a_thick_sheet_reads_its_strike_length) {
    model.infinite_body_length = 400.0f;
    body_record& thin = sheet(1);
    thin.length.value = 100.0f;
    ASSERT_EQ(body_plan_outline(model, clip, 1, x, y), 5);
    EXPECT_FLOAT_EQ(y[0], -200.0f);  // drawn as unbounded

    body_record& thick = sheet(2);
    thick.length.value = 100.0f;
    thick.offset.value = 10.0f;
    ASSERT_EQ(body_plan_outline(model, clip, 2, x, y), 5);
    expect_outline({500, 500, 520, 520, 500}, {-40, 60, 60, -40, -40});

    // The model's left and right clips hold the ends in the view, not in the DXF.
    model.finite_body_left_clip = 20.0f;
    model.finite_body_right_clip = 30.0f;
    ASSERT_EQ(body_plan_outline(model, clip, 2, x, y), 5);
    expect_outline({500, 500, 520, 520, 500}, {-20, 30, 30, -20, -20});
    ASSERT_EQ(body_plan_outline(model, clip, 2, x, y, outline_rules::dxf_export), 5);
    expect_outline({500, 500, 520, 520, 500}, {-40, 60, 60, -40, -40});
}

TEST_F(plan_outline, dxf_rules_draw_an_unbounded_body_250_long) {
    model.infinite_body_length = 400.0f;
    sheet(2);  // no length: unbounded
    ASSERT_EQ(body_plan_outline(model, clip, 1, x, y, outline_rules::dxf_export), 5);
    expect_outline({500, 500, 520, 520, 500}, {-125, 125, 125, -125, -125});
}

TEST_F(plan_outline, cylinder_is_centred_on_its_axis_and_twice_as_broad_as_its_width) {
    body_record& pipe = sheet(16);
    pipe.length.value = 100.0f;
    ASSERT_EQ(body_plan_outline(model, clip, 1, x, y), 5);
    expect_outline({480, 480, 520, 520, 480}, {-50, 50, 50, -50, -50});
}

TEST_F(plan_outline, a_line_missing_the_view_and_bodies_without_a_footprint_give_none) {
    add_body(model, 1, "far", 500.0, 2000.0, 90.0f, 90.0f);
    EXPECT_EQ(body_plan_outline(model, clip, 1, x, y), -1);
    sheet(5);
    sheet(6);
    EXPECT_EQ(body_plan_outline(model, clip, 2, x, y), -1);
    EXPECT_EQ(body_plan_outline(model, clip, 3, x, y), -1);
}

class trapezoid : public ::testing::Test {
protected:
    body_record body;
    trapezoid_corners c;

    // A sheet striking north, 10 wide, 200 long about its reference point, 50 deep.
    void SetUp() override {
        body.cos_strike = 1.0f;
        body.sin_strike = 0.0f;
        body.cos_dip = 0.0f;
        body.sin_dip = 1.0f;
        body.width.value = 10.0f;
        body.length.value = 200.0f;
        body.depth_extent.value = 50.0f;
    }
    void expect_corner(int end, int corner, float e, float n, float up) {
        EXPECT_NEAR(c(end, corner, 1), e, 1e-3) << end << "," << corner;
        EXPECT_NEAR(c(end, corner, 2), n, 1e-3) << end << "," << corner;
        EXPECT_NEAR(c(end, corner, 3), up, 1e-3) << end << "," << corner;
    }
};

TEST_F(trapezoid, vertical_sheet_has_its_bottom_under_its_top) {
    convert_profile_model_to_trapezoid(body, c);
    expect_corner(1, 1, 0, 100, 0);
    expect_corner(1, 2, 0, -100, 0);
    expect_corner(1, 3, 10, -100, 0);
    expect_corner(1, 4, 10, 100, 0);
    for (int k = 1; k <= 4; ++k) {
        expect_corner(2, k, c(1, k, 1), c(1, k, 2), -50);
    }
}

TEST_F(trapezoid, sheet_without_a_strike_length_collapses_to_its_reference_line) {
    // Corners come from length and offset alone: an unbounded sheet (length 0) is written as a
    // ribbon of no length, unlike the plan, which draws it 250 long.
    body.length.value = 0.0f;
    convert_profile_model_to_trapezoid(body, c);
    expect_corner(1, 1, 0, 0, 0);
    expect_corner(1, 2, 0, 0, 0);
    expect_corner(1, 3, 10, 0, 0);
}

TEST_F(trapezoid, zero_depth_extent_makes_the_sheet_1000_deep_thrown_down_dip) {
    body.depth_extent.value = 0.0f;
    body.cos_dip = body.sin_dip = static_cast<float>(std::sqrt(0.5));
    convert_profile_model_to_trapezoid(body, c);
    expect_corner(2, 1, 1000, 100, -1000);
    expect_corner(2, 3, 1010, -100, -1000);
}

TEST_F(trapezoid, flat_sheet_gets_no_dip_throw) {
    body.cos_dip = 1.0f;
    body.sin_dip = 0.0f;
    convert_profile_model_to_trapezoid(body, c);
    expect_corner(2, 4, 10, 100, -50);
}

TEST_F(trapezoid, offset_moves_the_ends_and_plunge_tilts_them) {
    body.offset.value = 50.0f;
    body.plunge.value = 30.0f;
    convert_profile_model_to_trapezoid(body, c);
    expect_corner(1, 1, 0, 150, -75);
    expect_corner(1, 2, 0, -50, 25);
    expect_corner(1, 4, 10, 150, -75);
}

TEST_F(trapezoid, sloping_top_of_a_vertical_sheet_rises_over_the_full_width) {
    body.slope.value = 45.0f;
    convert_profile_model_to_trapezoid(body, c);
    expect_corner(1, 3, 10, -100, 10);
    expect_corner(1, 4, 10, 100, 10);
    expect_corner(2, 3, 10, -100, -40);
    expect_corner(1, 2, 0, -100, 0);  // the near edge stays
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
