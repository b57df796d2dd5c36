#include "response/gravity_response.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/body_catalogue.h"
#include "response/facet_closed_forms.h"
#include "response_test_model.h"

namespace trensil {
namespace {

using testing_shapes::rectangle_attraction;
using testing_support::line_model;
using testing_support::state_for;

// A vertical sheet striking north under a line running east: stations from east 0 to 950 at
// elevation 0; the body's reference point at distance 300, width 200 east of it, top at -50.
model_record east_line_with_sheet(double length) {
    model_record model = line_model(20, 0.0, 1000.0, 50.0, 0.0, 0.0, 1);
    body_record& b = model.body(1);
    b.type = thick_sheet;
    b.distance.value = 300.0f;
    b.top.value = -50.0f;
    b.strike.value = 0.0f;
    b.dip.value = 90.0f;
    b.width.value = 200.0f;
    b.depth_extent.value = 150.0f;
    b.length.value = static_cast<float>(length);
    b.density.value = 0.5f;
    return model;
}

float grav(model_record& model, int i) {
    return model.body(1).body_response(gravity_row, i);
}

TEST(polygon_edge_gravity, floors_keep_level_vertical_and_corner_edges_finite) {
    struct edge_case {
        const char* name;
        double x1, x2, z1, z2;
        int which;        // the caller's variable the floor moves: 0 x1, 1 x2, 3 z2
        double expected;  // and its new value
    };
    const edge_case cases[] = {{"vertical", 10, 10, -5, -40, 1, 10.001},
                               {"level", -30, 30, -20, -20, 3, -19.999},
                               {"above a corner", 0, 50, -10, -60, 0, 1e-9}};
    for (const edge_case& c : cases) {
        SCOPED_TRACE(c.name);
        double v[4] = {c.x1, c.x2, c.z1, c.z2};
        EXPECT_TRUE(std::isfinite(polygon_edge_gravity(v[0], v[1], v[2], v[3])));
        EXPECT_DOUBLE_EQ(v[c.which], c.expected);
    }
}

// The infinite-strike sum takes density x 0.00667 with no factor 2: half the textbook 2 G rho
// attraction of the same section. Required behaviour.
TEST(infinite_strike_gravity, is_half_the_two_dimensional_rectangle) {
    scripted_platform ui;
    response_state state = state_for(ui);
    model_record model = east_line_with_sheet(0.0);
    calculate_grav_response(model, state, 1);
    ASSERT_TRUE(ui.messages.empty());
    for (int i = 1; i <= model.profile.num_stations; ++i) {
        const double e = model.profile.location(easting_row, i);
        const double textbook = 0.00667 * 0.5 * rectangle_attraction(300 - e, 500 - e, 50.0, 200.0);
        // Single-precision storage and the 0.001 floors on the level edges: 1e-4 relative.
        EXPECT_NEAR(grav(model, i), textbook / 2, 1e-4 * std::fabs(textbook)) << "station " << i;
    }
}

TEST(strike_limited_gravity, matches_the_rectangular_prism) {
    scripted_platform ui;
    response_state state = state_for(ui);
    model_record model = east_line_with_sheet(400.0);
    model.body(1).offset.value = 37.0f;  // the prism runs from north 837 to 1237
    calculate_grav_response(model, state, 1);
    ASSERT_TRUE(ui.messages.empty());
    double worst = 0;
    for (int i = 1; i <= model.profile.num_stations; ++i) {
        const double e = model.profile.location(easting_row, i);
        const double expected = 0.00667 * 0.5 *
                                testing_shapes::prism_attraction({837.0 - 1000.0, 1237.0 - 1000.0,
                                                                  300.0 - e, 500.0 - e, 50, 200});
        worst = std::max(worst, std::fabs(grav(model, i) - expected) / std::fabs(expected));
    }
    EXPECT_LT(worst, 1e-5);
}

// A strike length of 200 km against the infinite-strike section: the prism gives the full
// attraction, so it is twice the section within 0.5 % (the ends are 100 km away).
TEST(strike_limited_gravity, long_prism_is_twice_the_infinite_section) {
    scripted_platform ui;
    response_state state = state_for(ui);
    model_record infinite = east_line_with_sheet(0.0);
    model_record long_prism = east_line_with_sheet(200000.0);
    calculate_grav_response(infinite, state, 1);
    calculate_grav_response(long_prism, state, 1);
    for (int i = 1; i <= infinite.profile.num_stations; ++i)
        EXPECT_NEAR(grav(long_prism, i), 2.0 * grav(infinite, i),
                    5e-3 * std::fabs(grav(long_prism, i)))
            << "station " << i;
}

TEST(gravity_response, edge_cases_of_the_section) {
    scripted_platform ui;
    response_state state = state_for(ui);
    auto run = [&](auto edit) {
        model_record model = east_line_with_sheet(0.0);
        edit(model.body(1));
        calculate_grav_response(model, state, 1);
        return model;
    };
    // Depth extent 0 reaches 1000 widths down: the same as an explicit 200 km.
    model_record deep = run([](body_record& b) { b.depth_extent.value = 0.0f; });
    model_record explicit_depth = run([](body_record& b) { b.depth_extent.value = 200000.0f; });
    EXPECT_FLOAT_EQ(grav(deep, 5), grav(explicit_depth, 5));
    // A horizontal sheet (dip 0): no shift of the bottom, and still finite.
    model_record flat = run([](body_record& b) { b.dip.value = 0.0f; });
    EXPECT_GT(grav(flat, 8), 0.0f);
    // A station exactly above a corner of the section (east 300 is station 7).
    model_record corner = run([](body_record&) {});
    EXPECT_TRUE(std::isfinite(grav(corner, 7)));
    // Density 0 and types without a gravity response keep row 2 at 0.
    model_record empty = run([](body_record& b) { b.density.value = 0.0f; });
    model_record edge = run([](body_record& b) { b.type = edge_body; });
    for (int i = 1; i <= 20; ++i) {
        EXPECT_EQ(grav(empty, i), 0.0f);
        EXPECT_EQ(grav(edge, i), 0.0f);
    }
    EXPECT_TRUE(ui.messages.empty());
}

TEST(gravity_response, non_finite_input_is_reported_and_leaves_the_row_at_zero) {
    scripted_platform ui;
    response_state state = state_for(ui);
    model_record model = east_line_with_sheet(0.0);
    model.body(1).width.value = std::numeric_limits<float>::infinity();
    calculate_grav_response(model, state, 1);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0], "An error occurred while calculating the gravity response: Overflow");
    model.body(1).width.value = std::nanf("");
    calculate_grav_response(model, state, 1);
    EXPECT_EQ(ui.messages.back(),
              "An error occurred while calculating the gravity response: Invalid procedure call "
              "or argument");
    EXPECT_EQ(grav(model, 5), 0.0f);
}

}  // namespace
}  // namespace trensil
