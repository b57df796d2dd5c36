#include "response/gravity_response.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/body_catalogue.h"
#include "response_test_model.h"

namespace trensil {
namespace {

using testing_support::line_model;
using testing_support::state_for;

// Attraction (downward) of a uniform rectangular prism per unit G rho, the station at the origin,
// x and y horizontal, z positive down (Nagy 1966):
// -sum over corners of s [x ln(y + r) + y ln(x + r) - z atan(x y / (z r))].
double prism_attraction(const double (&x)[2], const double (&y)[2], const double (&z)[2]) {
    double sum = 0.0;
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j)
            for (int k = 0; k < 2; ++k) {
                const double s = (i ? 1 : -1) * (j ? 1 : -1) * (k ? 1 : -1);
                const double r = std::sqrt(x[i] * x[i] + y[j] * y[j] + z[k] * z[k]);
                sum += s * (x[i] * std::log(y[j] + r) + y[j] * std::log(x[i] + r) -
                            z[k] * std::atan(x[i] * y[j] / (z[k] * r)));
            }
    return -sum;
}

// Attraction of an infinitely long 2-D rectangle per unit G rho: 2 [F] over the corners with
// F(x, z) = x ln(x^2 + z^2) / 2 + z atan(x / z), z positive down.
double rectangle_attraction(double x1, double x2, double z1, double z2) {
    auto F = [](double x, double z) {
        return x * std::log(x * x + z * z) / 2 + z * std::atan(x / z);
    };
    return 2.0 * (F(x2, z2) - F(x1, z2) - F(x2, z1) + F(x1, z1));
}

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

TEST(polygon_edge_gravity, stays_finite_on_level_and_vertical_edges_and_at_a_corner) {
    double x1 = 10, x2 = 10, z1 = -5, z2 = -40;  // vertical edge
    EXPECT_TRUE(std::isfinite(polygon_edge_gravity(x1, x2, z1, z2)));
    EXPECT_DOUBLE_EQ(x2, 10.001);           // stretched by the 0.001 floor
    x1 = -30, x2 = 30, z1 = -20, z2 = -20;  // level edge
    EXPECT_TRUE(std::isfinite(polygon_edge_gravity(x1, x2, z1, z2)));
    EXPECT_DOUBLE_EQ(z2, -19.999);
    x1 = 0, x2 = 50, z1 = -10, z2 = -60;  // station straight above the corner
    EXPECT_TRUE(std::isfinite(polygon_edge_gravity(x1, x2, z1, z2)));
    EXPECT_EQ(x1, 1e-9);
}

TEST(polygon_edge_gravity, reversing_the_winding_negates_the_sum) {
    // A rectangle below the station, corners in both orders.
    const double xs[] = {-20, 60, 60, -20, -20};
    const double zs[] = {-30, -30, -90, -90, -30};
    double forward = 0, backward = 0;
    for (int k = 0; k < 4; ++k) {
        double a = xs[k], b = xs[k + 1], c = zs[k], d = zs[k + 1];
        forward += polygon_edge_gravity(a, b, c, d);
        a = xs[4 - k], b = xs[3 - k], c = zs[4 - k], d = zs[3 - k];
        backward += polygon_edge_gravity(a, b, c, d);
    }
    // The 0.001 floor on the level edges is not mirrored: 1e-4 relative.
    EXPECT_NEAR(forward, -backward, 1e-4 * std::fabs(forward));
    EXPECT_NE(forward, 0.0);
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
        EXPECT_NEAR(model.body(1).body_response(gravity_row, i), textbook / 2,
                    1e-4 * std::fabs(textbook))
            << "station " << i;
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
        const double x[2] = {837.0 - 1000.0, 1237.0 - 1000.0};
        const double y[2] = {300.0 - e, 500.0 - e};
        const double z[2] = {50.0, 200.0};
        const double expected = 0.00667 * 0.5 * prism_attraction(x, y, z);
        const double got = model.body(1).body_response(gravity_row, i);
        worst = std::max(worst, std::fabs(got - expected) / std::fabs(expected));
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
    for (int i = 1; i <= infinite.profile.num_stations; ++i) {
        const double two_d = infinite.body(1).body_response(gravity_row, i);
        const double three_d = long_prism.body(1).body_response(gravity_row, i);
        EXPECT_NEAR(three_d, 2.0 * two_d, 5e-3 * std::fabs(three_d)) << "station " << i;
    }
}

TEST(gravity_response, edge_cases_of_the_section) {
    scripted_platform ui;
    response_state state = state_for(ui);

    // Depth extent 0 reaches 1000 widths down: the same as an explicit 200 km.
    model_record deep = east_line_with_sheet(0.0);
    deep.body(1).depth_extent.value = 0.0f;
    model_record explicit_depth = east_line_with_sheet(0.0);
    explicit_depth.body(1).depth_extent.value = 200000.0f;
    calculate_grav_response(deep, state, 1);
    calculate_grav_response(explicit_depth, state, 1);
    EXPECT_FLOAT_EQ(deep.body(1).body_response(gravity_row, 5),
                    explicit_depth.body(1).body_response(gravity_row, 5));

    // Density 0: nothing.
    model_record empty = east_line_with_sheet(0.0);
    empty.body(1).density.value = 0.0f;
    calculate_grav_response(empty, state, 1);
    for (int i = 1; i <= 20; ++i) EXPECT_EQ(empty.body(1).body_response(gravity_row, i), 0.0f);

    // A horizontal sheet (dip 0): no shift of the bottom, and still finite.
    model_record flat = east_line_with_sheet(0.0);
    flat.body(1).dip.value = 0.0f;
    calculate_grav_response(flat, state, 1);
    EXPECT_GT(flat.body(1).body_response(gravity_row, 8), 0.0f);

    // A station exactly above a corner of the section (east 300 is station 7).
    model_record corner = east_line_with_sheet(0.0);
    calculate_grav_response(corner, state, 1);
    EXPECT_TRUE(std::isfinite(corner.body(1).body_response(gravity_row, 7)));

    // Types without a gravity response keep row 2 at 0.
    model_record edge = east_line_with_sheet(0.0);
    edge.body(1).type = edge_body;
    calculate_grav_response(edge, state, 1);
    EXPECT_EQ(edge.body(1).body_response(gravity_row, 8), 0.0f);
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
    EXPECT_EQ(model.body(1).body_response(gravity_row, 5), 0.0f);
}

}  // namespace
}  // namespace trensil
