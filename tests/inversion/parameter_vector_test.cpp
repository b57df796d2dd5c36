#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "inversion/parameter_vector.h"
#include "inversion_fakes.h"

namespace trensil {
namespace {

using rows = std::vector<int>;
using testing::free_only;

// A flat line of n stations with `bodies` default bodies, and the parameter table built on it.
struct table_setup : ::testing::Test {
    testing::toy_setup t;
    model_record& model = t.model;
    inversion_state& state = t.state;

    // Property rows of the table in order, after a counting and a filling pass.
    rows collected(int mode = inversion_mode_magnetics) {
        int count = 0;
        collect_all_parameters(model, state, false, mode, count);
        dimension_parameter_table(state, count);
        int filled = 0;
        collect_all_parameters(model, state, true, mode, filled);
        EXPECT_EQ(filled, count);
        rows result;
        for (int k = 1; k <= count; ++k) result.push_back(state.parameter_map(k, map_property_row));
        return result;
    }
    float cell(int k, int column) { return state.inversion_parameters(k, column); }
};

TEST_F(table_setup, default_bodies_give_geometry_then_the_property_of_the_data_type) {
    t.flat_line(20, 2);
    model.body(1).type = 1;
    // Default vary: distance, top, dip, width, susc, density; depth_extent is not marked.
    EXPECT_EQ(collected(), (rows{4, 7, 6, 9, 11, 4, 7, 6, 9, 11}));
    EXPECT_EQ(state.parameter_map(6, map_body), 2);
    EXPECT_EQ(collected(inversion_mode_gravity), (rows{4, 7, 6, 9, 12, 4, 7, 6, 9, 12}));
}

TEST_F(table_setup, steps_default_limits_and_stored_limits) {
    t.flat_line(20, 1);
    model.profile.location(ground_row, 7) = 123.5;  // highest ground of the profile
    body_record& b = model.body(1);
    free_only(model, {&body_record::dip, &body_record::top, &body_record::depth_extent,
                      &body_record::susc});
    b.depth_extent.value = 100.0f;
    b.dip.min = -200.0f;    // wider than the default -175: kept
    b.dip.max = -99999.5f;  // at or below the marker: no stored limit
    ASSERT_EQ(collected(), (rows{7, 6, 8, 11}));
    EXPECT_FLOAT_EQ(cell(1, column_min), -1e32f);
    EXPECT_FLOAT_EQ(cell(1, column_max), 122.5f);  // 1.0 below the highest surface
    EXPECT_FLOAT_EQ(cell(1, column_step), 5.0f);
    EXPECT_FLOAT_EQ(cell(2, column_min), -200.0f);
    EXPECT_FLOAT_EQ(cell(2, column_max), 175.0f);
    EXPECT_FLOAT_EQ(cell(3, column_step), 1.0f);  // depth extent at most 100
    EXPECT_FLOAT_EQ(cell(3, column_min), 0.1f);
    EXPECT_FLOAT_EQ(cell(4, column_min), 100.0f);
    EXPECT_FLOAT_EQ(cell(4, column_max), 1e7f);
    EXPECT_FLOAT_EQ(cell(4, column_step), 250.0f);
    b.depth_extent.value = 100.5f;
    collected();
    EXPECT_FLOAT_EQ(cell(3, column_step), 5.0f);
}

TEST_F(table_setup, exclusions_by_value_body_type_and_data_type) {
    t.flat_line(20, 1);
    body_record& b = model.body(1);
    for (int j = 0; j < body_property_count; ++j) b.property(j).vary = 1.0f;
    b.depth_extent.value = b.length.value = b.rem_q.value = 0.0f;  // no such dimension/remanence
    b.offset.value = -5.0f;
    EXPECT_EQ(collected(), (rows{4, 7, 5, 6, 13, 14, 9, 11}));

    // Both susc and rem_q marked: susc alone; with susc fixed, rem_q and its direction move.
    b.depth_extent.value = 50.0f;
    b.length.value = 300.0f;
    b.offset.value = 20.0f;
    b.rem_q.value = 0.5f;
    EXPECT_EQ(collected(), (rows{4, 7, 5, 6, 13, 14, 9, 8, 10, 15, 11, 17, 18}));
    b.susc.vary = 0.0f;
    EXPECT_EQ(collected(), (rows{4, 7, 5, 6, 13, 14, 9, 8, 10, 15, 16, 17, 18}));
    const struct {
        int type;
        float distance_vary;
        rows gravity;
    } table[] = {
        {2, 1.0f, {4, 7, 5, 6, 13, 14, 9, 8, 10, 15, 12}},  // geometry and density only
        {1, 1.0f, {4, 7, 5, 6, 13, 14, 9, 8, 12}},          // no length or offset
        {16, 1.0f, {4, 7, 5, 6, 9, 12}},                    // no plunge, slope or depth extent
        {16, 0.999f, {7, 5, 6, 9, 12}},                     // only a vary of exactly 1 is free
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.type);
        b.type = row.type;
        b.distance.vary = row.distance_vary;
        EXPECT_EQ(collected(inversion_mode_gravity), row.gravity);
    }
}

TEST_F(table_setup, fixed_turned_off_and_out_of_range_bodies_take_no_part) {
    t.flat_line(41, 4);  // profile 0..400 m
    free_only(model, {&body_record::distance});
    model.body(1).fix = 0;       // "Fix This Body" checked
    model.body(2).disabled = 1;  // turned off
    model.body(3).distance.value = 89.0f;
    model.body(4).distance.value = 410.0f;
    EXPECT_EQ(collected(), (rows{4, 4}));

    // Range 101..300 m (stations 11..31): a body before 100 - 10 is out; the upper test uses the
    // whole profile, so a body at 410 beyond the range's end still takes part.
    model.profile.inversion_first_station = 11;
    model.profile.inversion_last_station = 31;
    EXPECT_EQ(collected(), (rows{4}));
    EXPECT_EQ(state.parameter_map(1, map_body), 4);
    model.body(4).distance.value = 410.5f;
    EXPECT_TRUE(collected().empty());
    model.body(3).distance.value = 90.0f;
    EXPECT_EQ(collected(), (rows{4}));

    // Narrowed from the right only (range 0..40 m): a body far beyond the range's end but within
    // 10 of the profile's end still takes part.
    model.profile.inversion_first_station = 1;
    model.profile.inversion_last_station = 5;
    model.body(3).distance.value = -10.0f;
    model.body(4).distance.value = 405.0f;
    EXPECT_EQ(collected(), (rows{4, 4}));
}

// An unchanged value keeps the response valid; a changed one invalidates what the property
// feeds: size and position both responses, orientation also the field coefficients, magnetic
// properties the magnetic side only, density the gravity side only.
TEST_F(table_setup, apply_parameter_invalidates_by_property) {
    const struct {
        int row;
        bool mag, grav, coefficients;
    } table[] = {
        {row_distance, true, true, false}, {row_top, true, true, false},
        {row_width, true, true, false},    {row_depth_extent, true, true, false},
        {row_length, true, true, false},   {row_offset, true, true, false},
        {row_strike, true, true, true},    {row_dip, true, true, true},
        {row_plunge, true, true, true},    {row_slope, true, true, true},
        {row_susc, true, false, true},     {row_rem_q, true, false, true},
        {row_rem_i, true, false, true},    {row_rem_d, true, false, true},
        {row_density, false, true, false},
    };
    t.flat_line(10, 1);
    dimension_parameter_table(state, 1);
    state.parameter_map(1, map_body) = 1;
    body_record& b = model.body(1);
    for (const auto& e : table) {
        SCOPED_TRACE(e.row);
        state.parameter_map(1, map_property_row) = e.row;
        state.inversion_parameters(1, column_min) = undefined_value;
        state.inversion_parameters(1, column_max) = undefined_value;
        state.inversion_parameters(1, column_step) = 1.0f;
        for (const float change : {0.0f, 1.0f}) {
            b.mag_valid = b.grav_valid = -1;
            b.magnetisation = 7.0f;
            state.inversion_parameters(1, column_value) = property_by_row(b, e.row)->value + change;
            float proximity = 0.0f;
            apply_parameter(model, state, 1, proximity);
            const bool moved = change != 0.0f;
            EXPECT_EQ(b.mag_valid, moved && e.mag ? 0 : -1);
            EXPECT_EQ(b.grav_valid, moved && e.grav ? 0 : -1);
            EXPECT_FLOAT_EQ(b.magnetisation, moved && e.coefficients ? -1.0f : 7.0f);
            EXPECT_FLOAT_EQ(property_by_row(b, e.row)->value, cell(1, column_value));
        }
    }
}

TEST(parameter_proximity, rises_from_zero_a_step_away_to_ten_thousand_at_the_limit) {
    const float none = undefined_value;
    const struct {
        float value, min, max, running;
        double expected, tolerance;
    } table[] = {
        {10.0f, 0.0f, none, 0.0f, 0.0, 0.0},  // lower limit 0, step 10
        {50.0f, 0.0f, none, 0.0f, 0.0, 0.0},
        {5.0f, 0.0f, none, 0.0f, -2500.0 * std::log10(0.5), 0.01},
        {0.001f, 0.0f, none, 0.0f, 10000.0, 0.0},
        {-3.0f, 0.0f, none, 0.0f, 10000.0, 0.0},
        {9.999f, 0.0f, none, 0.0f, 0.0, 0.5},  // the logarithmic part meets both ends
        {0.0011f, 0.0f, none, 0.0f, 10000.0, 110.0},
        {97.5f, none, 100.0f, 0.0f, -2500.0 * std::log10(0.25), 0.01},  // upper limit 100
        {100.0f, none, 100.0f, 0.0f, 10000.0, 0.0},
        {50.0f, 0.0f, 100.0f, 3000.0f, 3000.0, 0.0},  // a larger running maximum stays
        {95.0f, 0.0f, 100.0f, 0.0f, 752.575, 0.01},   // the nearer limit decides
        {1.0f, none, none, 0.0f, 0.0, 0.0},           // without limits nothing rises
    };
    for (const auto& r : table) {
        SCOPED_TRACE(r.value);
        EXPECT_NEAR(parameter_proximity(r.value, r.min, r.max, 10.0f, r.running), r.expected,
                    r.tolerance == 0.0 ? 1e-6 * (1.0 + r.expected) : r.tolerance);
    }
}

TEST_F(table_setup, apply_all_starts_proximity_at_zero_and_skips_vanished_bodies) {
    t.flat_line(10, 2);
    free_only(model, {&body_record::width});
    model.body(1).width.min = 50.0f;
    collected();
    state.inversion_parameters(1, column_value) = 50.0f;  // at its lower limit
    state.inversion_parameters(2, column_value) = 80.0f;
    model.num_bodies = 1;  // body 2 was deleted since the table was built
    float proximity = -1.0f;
    apply_all_parameters(model, state, proximity);
    EXPECT_FLOAT_EQ(proximity, 10000.0f);
    EXPECT_FLOAT_EQ(model.body(1).width.value, 50.0f);
    EXPECT_FLOAT_EQ(model.body(2).width.value, 100.0f);
}

}  // namespace
}  // namespace trensil
