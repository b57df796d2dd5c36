#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "inversion/parameter_vector.h"
#include "inversion_fakes.h"

namespace trensil {
namespace {

using testing::free_only;
using testing::make_flat_model;

// Property rows of the table in order, after a counting and a filling pass.
std::vector<int> collected_rows(model_record& model, inversion_state& state, int mode) {
    int count = 0;
    collect_all_parameters(model, state, false, mode, count);
    dimension_parameter_table(state, count);
    int filled = 0;
    collect_all_parameters(model, state, true, mode, filled);
    EXPECT_EQ(filled, count);
    std::vector<int> rows;
    for (int k = 1; k <= count; ++k) rows.push_back(state.parameter_map(k, map_property_row));
    return rows;
}

TEST(parameter_collection, default_body_gives_geometry_then_the_property_of_the_data_type) {
    model_record model;
    make_flat_model(model, 20, 2);
    model.body(1).type = 1;
    inversion_state state;
    // Default vary: distance, top, dip, width, susc, density; depth_extent is not marked.
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics),
              (std::vector<int>{4, 7, 6, 9, 11, 4, 7, 6, 9, 11}));
    EXPECT_EQ(state.parameter_map(6, map_body), 2);
    EXPECT_EQ(collected_rows(model, state, inversion_mode_gravity),
              (std::vector<int>{4, 7, 6, 9, 12, 4, 7, 6, 9, 12}));
}

TEST(parameter_collection, rows_take_steps_and_default_limits) {
    model_record model;
    make_flat_model(model, 20, 1);
    model.profile.location(ground_row, 7) = 123.5;  // highest ground of the profile
    body_record& b = model.body(1);
    free_only(model, {&body_record::top, &body_record::depth_extent, &body_record::susc});
    b.depth_extent.value = 100.0f;
    inversion_state state;
    ASSERT_EQ(collected_rows(model, state, inversion_mode_magnetics), (std::vector<int>{7, 8, 11}));
    const auto& t = state.inversion_parameters;
    EXPECT_FLOAT_EQ(t(1, column_min), -1e32f);
    EXPECT_FLOAT_EQ(t(1, column_max), 122.5f);  // 1.0 below the highest surface
    EXPECT_FLOAT_EQ(t(1, column_step), 5.0f);
    EXPECT_FLOAT_EQ(t(2, column_step), 1.0f);  // depth extent at most 100
    EXPECT_FLOAT_EQ(t(2, column_min), 0.1f);
    EXPECT_FLOAT_EQ(t(3, column_min), 100.0f);
    EXPECT_FLOAT_EQ(t(3, column_max), 1e7f);
    EXPECT_FLOAT_EQ(t(3, column_step), 250.0f);

    b.depth_extent.value = 100.5f;
    collected_rows(model, state, inversion_mode_magnetics);
    EXPECT_FLOAT_EQ(state.inversion_parameters(2, column_step), 5.0f);
}

TEST(parameter_collection, stored_limits_stand_as_they_are) {
    model_record model;
    make_flat_model(model, 20, 1);
    free_only(model, {&body_record::dip});
    model.body(1).dip.min = -200.0f;    // wider than the default -175: kept
    model.body(1).dip.max = -99999.5f;  // at or below the marker: no stored limit
    inversion_state state;
    collected_rows(model, state, inversion_mode_magnetics);
    EXPECT_FLOAT_EQ(state.inversion_parameters(1, column_min), -200.0f);
    EXPECT_FLOAT_EQ(state.inversion_parameters(1, column_max), 175.0f);
}

TEST(parameter_collection, exclusions_by_value_type_and_data_type) {
    model_record model;
    make_flat_model(model, 20, 1);
    body_record& b = model.body(1);
    for (int j = 0; j < body_property_count; ++j) b.property(j).vary = 1.0f;
    b.depth_extent.value = 0.0f;  // no such dimension
    b.length.value = 0.0f;
    b.offset.value = -5.0f;
    b.rem_q.value = 0.0f;  // no remanence: direction fixed
    inversion_state state;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics),
              (std::vector<int>{4, 7, 5, 6, 13, 14, 9, 11}));

    // Both susc and rem_q marked: susc alone; with susc fixed, rem_q and its direction move.
    b.depth_extent.value = 50.0f;
    b.length.value = 300.0f;
    b.offset.value = 20.0f;
    b.rem_q.value = 0.5f;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics),
              (std::vector<int>{4, 7, 5, 6, 13, 14, 9, 8, 10, 15, 11, 17, 18}));
    b.susc.vary = 0.0f;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics),
              (std::vector<int>{4, 7, 5, 6, 13, 14, 9, 8, 10, 15, 16, 17, 18}));
    // Gravity takes the geometry and density only.
    EXPECT_EQ(collected_rows(model, state, inversion_mode_gravity),
              (std::vector<int>{4, 7, 5, 6, 13, 14, 9, 8, 10, 15, 12}));

    // Not a thick sheet: no length or offset. A cylinder: no plunge, slope or depth extent.
    b.type = 1;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_gravity),
              (std::vector<int>{4, 7, 5, 6, 13, 14, 9, 8, 12}));
    b.type = 16;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_gravity),
              (std::vector<int>{4, 7, 5, 6, 9, 12}));

    // A vary of anything but exactly 1 is not free.
    b.distance.vary = 0.999f;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_gravity),
              (std::vector<int>{7, 5, 6, 9, 12}));
}

TEST(parameter_collection, fixed_turned_off_and_out_of_range_bodies_take_no_part) {
    model_record model;
    make_flat_model(model, 41, 4);  // profile 0..400 m
    free_only(model, {&body_record::distance});
    model.body(1).fix = 0;       // "Fix This Body" checked
    model.body(2).disabled = 1;  // turned off
    model.body(3).distance.value = 89.0f;
    model.body(4).distance.value = 410.0f;
    inversion_state state;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics), (std::vector<int>{4, 4}));

    // Range 101..300 m (stations 11..31): a body before 100 - 10 is out; the upper test uses the
    // whole profile, so a body at 410 beyond the range's end still takes part.
    model.profile.inversion_first_station = 11;
    model.profile.inversion_last_station = 31;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics), (std::vector<int>{4}));
    EXPECT_EQ(state.parameter_map(1, map_body), 4);
    model.body(4).distance.value = 410.5f;
    EXPECT_TRUE(collected_rows(model, state, inversion_mode_magnetics).empty());
    model.body(3).distance.value = 90.0f;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics), (std::vector<int>{4}));

    // Narrowed from the right only (range 0..40 m): a body far beyond the range's end but within
    // 10 of the profile's end still takes part.
    model.profile.inversion_first_station = 1;
    model.profile.inversion_last_station = 5;
    model.body(3).distance.value = -10.0f;
    model.body(4).distance.value = 405.0f;
    EXPECT_EQ(collected_rows(model, state, inversion_mode_magnetics), (std::vector<int>{4, 4}));
}

TEST(apply_parameter, unchanged_value_keeps_the_response_valid) {
    model_record model;
    make_flat_model(model, 10, 1);
    free_only(model, {&body_record::width});
    inversion_state state;
    collected_rows(model, state, inversion_mode_magnetics);
    body_record& b = model.body(1);
    b.mag_valid = b.grav_valid = -1;
    b.magnetisation = 3.0f;
    float proximity = 0.0f;
    apply_parameter(model, state, 1, proximity);
    EXPECT_EQ(b.mag_valid, -1);
    EXPECT_EQ(b.grav_valid, -1);

    state.inversion_parameters(1, column_value) = 120.0f;
    apply_parameter(model, state, 1, proximity);
    EXPECT_FLOAT_EQ(b.width.value, 120.0f);
    EXPECT_EQ(b.mag_valid, 0);
    EXPECT_EQ(b.grav_valid, 0);
    EXPECT_FLOAT_EQ(b.magnetisation, 3.0f);  // geometry of size keeps the field coefficients
}

TEST(apply_parameter, invalidates_by_property) {
    struct expectation {
        int row;
        bool mag, grav, coefficients;
    };
    const expectation table[] = {
        {row_distance, true, true, false}, {row_top, true, true, false},
        {row_width, true, true, false},    {row_depth_extent, true, true, false},
        {row_length, true, true, false},   {row_offset, true, true, false},
        {row_strike, true, true, true},    {row_dip, true, true, true},
        {row_plunge, true, true, true},    {row_slope, true, true, true},
        {row_susc, true, false, true},     {row_rem_q, true, false, true},
        {row_rem_i, true, false, true},    {row_rem_d, true, false, true},
        {row_density, false, true, false},
    };
    model_record model;
    make_flat_model(model, 10, 1);
    inversion_state state;
    dimension_parameter_table(state, 1);
    state.parameter_map(1, map_body) = 1;
    for (const auto& e : table) {
        SCOPED_TRACE(e.row);
        body_record& b = model.body(1);
        b.mag_valid = b.grav_valid = -1;
        b.magnetisation = 7.0f;
        state.parameter_map(1, map_property_row) = e.row;
        state.inversion_parameters(1, column_value) = property_by_row(b, e.row)->value + 1.0f;
        state.inversion_parameters(1, column_min) = undefined_value;
        state.inversion_parameters(1, column_max) = undefined_value;
        state.inversion_parameters(1, column_step) = 1.0f;
        float proximity = 0.0f;
        apply_parameter(model, state, 1, proximity);
        EXPECT_EQ(b.mag_valid, e.mag ? 0 : -1);
        EXPECT_EQ(b.grav_valid, e.grav ? 0 : -1);
        EXPECT_FLOAT_EQ(b.magnetisation, e.coefficients ? -1.0f : 7.0f);
        EXPECT_FLOAT_EQ(property_by_row(b, e.row)->value,
                        state.inversion_parameters(1, column_value));
    }
}

TEST(parameter_proximity, rises_from_zero_a_step_away_to_ten_thousand_at_the_limit) {
    // Lower limit 0, step 10.
    EXPECT_FLOAT_EQ(parameter_proximity(10.0f, 0.0f, undefined_value, 10.0f, 0.0f), 0.0f);
    EXPECT_FLOAT_EQ(parameter_proximity(50.0f, 0.0f, undefined_value, 10.0f, 0.0f), 0.0f);
    EXPECT_NEAR(parameter_proximity(5.0f, 0.0f, undefined_value, 10.0f, 0.0f),
                -2500.0 * std::log10(0.5), 0.01);
    EXPECT_FLOAT_EQ(parameter_proximity(0.001f, 0.0f, undefined_value, 10.0f, 0.0f), 10000.0f);
    EXPECT_FLOAT_EQ(parameter_proximity(-3.0f, 0.0f, undefined_value, 10.0f, 0.0f), 10000.0f);
    // The two ends of the logarithmic part meet: just inside one step is near 0, just outside
    // a ten-thousandth of a step is near 10000.
    EXPECT_NEAR(parameter_proximity(9.999f, 0.0f, undefined_value, 10.0f, 0.0f), 0.0, 0.5);
    EXPECT_NEAR(parameter_proximity(0.0011f, 0.0f, undefined_value, 10.0f, 0.0f), 10000.0, 110.0);
    // Upper limit 100.
    EXPECT_NEAR(parameter_proximity(97.5f, undefined_value, 100.0f, 10.0f, 0.0f),
                -2500.0 * std::log10(0.25), 0.01);
    EXPECT_FLOAT_EQ(parameter_proximity(100.0f, undefined_value, 100.0f, 10.0f, 0.0f), 10000.0f);
    // A running maximum: a larger earlier value stays; the nearer limit decides.
    EXPECT_FLOAT_EQ(parameter_proximity(50.0f, 0.0f, 100.0f, 10.0f, 3000.0f), 3000.0f);
    EXPECT_NEAR(parameter_proximity(95.0f, 0.0f, 100.0f, 10.0f, 0.0f), 752.575, 0.01);
    // Without limits nothing rises.
    EXPECT_FLOAT_EQ(parameter_proximity(1.0f, undefined_value, undefined_value, 10.0f, 0.0f), 0.0f);
}

TEST(apply_all_parameters, starts_proximity_at_zero_and_skips_vanished_bodies) {
    model_record model;
    make_flat_model(model, 10, 2);
    free_only(model, {&body_record::width});
    model.body(1).width.min = 50.0f;
    inversion_state state;
    collected_rows(model, state, inversion_mode_magnetics);
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
