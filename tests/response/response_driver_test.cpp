#include "response/response_driver.h"

#include <gtest/gtest.h>

#include <cmath>

#include "response_test_model.h"

namespace trensil {
namespace {

using testing_support::line_model;

// Ten thin sheets striking north across a line running east, spread along it.
model_record ten_bodies() {
    model_record model = line_model(40, 0.0, 0.0, 25.0, 0.0, 0.0, 10);
    for (int b = 1; b <= 10; ++b) {
        model.body(b).distance.value = 80.0f * b;
        model.body(b).top.value = -40.0f;
        model.body(b).length.value = 0.0f;
    }
    return model;
}

// Ten bodies and a state reporting to a scripted platform.
class response_cache : public ::testing::Test {
protected:
    void run() {
        calculate_body_responses(model, state, model.profile.mag_channels,
                                 model.profile.grav_channels);
    }
    scripted_platform ui;
    response_state state = testing_support::state_for(ui);
    model_record model = ten_bodies();
};
using misfit = response_cache;

TEST_F(response_cache, one_stale_body_of_ten_recomputes_one) {
    run();
    EXPECT_EQ(state.mag_responses_computed, 10);
    EXPECT_EQ(state.grav_responses_computed, 10);
    EXPECT_FALSE(ui.progress_visible);

    const array2<float> nine_rows = model.body(2).body_response;
    model.body(5).top.value = -60.0f;
    model.body(5).mag_valid = 0;
    model.body(5).grav_valid = 0;
    run();
    EXPECT_EQ(state.mag_responses_computed, 11);
    EXPECT_EQ(state.grav_responses_computed, 11);
    EXPECT_EQ(model.body(2).body_response, nine_rows);

    // Row 6 is the sum of the stored rows, each addition rounded to single precision.
    for (int i = 1; i <= 40; ++i) {
        float sum = 0.0f;
        for (int b = 1; b <= 10; ++b) sum += model.body(b).body_response(total_field_row, i);
        EXPECT_EQ(model.profile.mag_channels(computed_raw, i), sum);
    }

    // Nothing stale: nothing recomputed and rows 6 to 10 untouched.
    model.profile.mag_channels(computed_level, 3) = 77.0f;
    run();
    EXPECT_EQ(state.mag_responses_computed, 11);
    EXPECT_EQ(model.profile.mag_channels(computed_level, 3), 77.0f);
}

TEST_F(response_cache, density_only_edit_leaves_magnetics_untouched) {
    run();
    model.profile.mag_channels(computed_vertical_gradient, 4) = 55.0f;  // a derived row
    const float mag_before = model.profile.mag_channels(computed_raw, 10);
    const float grav_before = model.profile.grav_channels(computed_raw, 10);
    model.body(3).density.value = 3.5f;
    model.body(3).grav_valid = 0;
    run();
    EXPECT_EQ(state.mag_responses_computed, 10);
    EXPECT_EQ(state.grav_responses_computed, 11);
    EXPECT_EQ(model.profile.mag_channels(computed_raw, 10), mag_before);
    EXPECT_EQ(model.profile.mag_channels(computed_vertical_gradient, 4), 55.0f);
    EXPECT_NE(model.profile.grav_channels(computed_raw, 10), grav_before);
    EXPECT_EQ(model.channel_valid[5], 0);
}

TEST_F(response_cache, only_disabled_exactly_one_turns_a_body_off) {
    model.num_bodies = 1;
    model.body(1).disabled = 2;  // counts as enabled
    run();
    EXPECT_EQ(state.mag_responses_computed, 1);
    EXPECT_NE(model.body(1).body_response(total_field_row, 4), 0.0f);

    // Disabled while stale: zero rows, marked current, nothing computed.
    model.body(1).disabled = 1;
    model.body(1).mag_valid = 0;
    model.body(1).grav_valid = 0;
    run();
    EXPECT_EQ(state.mag_responses_computed, 1);
    EXPECT_EQ(model.body(1).mag_valid, -1);
    EXPECT_EQ(model.body(1).grav_valid, -1);
    for (int i = 1; i <= 40; ++i) {
        EXPECT_EQ(model.body(1).body_response(total_field_row, i), 0.0f);
        EXPECT_EQ(model.body(1).body_response(gravity_row, i), 0.0f);
        EXPECT_EQ(model.profile.mag_channels(computed_raw, i), 0.0f);
    }
}

TEST_F(response_cache, magpos_zero_skips_magnetics_and_leaves_bodies_stale) {
    model.magpos = 0;
    run();
    EXPECT_EQ(state.mag_responses_computed, 0);
    EXPECT_EQ(state.grav_responses_computed, 10);
    EXPECT_EQ(model.body(4).mag_valid, 0);
    EXPECT_EQ(model.body(4).grav_valid, -1);
}

TEST_F(response_cache, no_bodies_and_no_stations) {
    model.num_bodies = 0;
    model.profile.mag_channels(computed_total_gradient, 2) = 9.0f;
    run();
    for (int row = computed_raw; row <= computed_total_gradient; ++row)
        EXPECT_EQ(model.profile.mag_channels(row, 2), 0.0f);
    EXPECT_FALSE(is_display_value(state.mag_display(2, 2)));
    EXPECT_FALSE(is_display_value(state.grav_gradient_display(2, 2)));

    model_record none = line_model(0, 0.0, 0.0, 25.0, 0.0, 0.0, 2);
    array1<float> residuals;
    recalculate_response(none, state, none.profile.mag_channels, none.profile.grav_channels,
                         residuals);
    calculate_display_channels(none, state);
    EXPECT_EQ(state.mag_responses_computed, 0);
}

TEST_F(response_cache, a_failing_body_is_reported_and_marked_current) {
    model.body(7).width.value = std::numeric_limits<float>::infinity();
    run();
    ASSERT_EQ(ui.messages.size(), 2u);
    EXPECT_EQ(ui.messages[0], "An error occurred while calculating the mag response: Overflow");
    EXPECT_EQ(ui.messages[1], "An error occurred while calculating the gravity response: Overflow");
    EXPECT_EQ(model.body(7).mag_valid, -1);
    EXPECT_EQ(model.body(7).grav_valid, -1);
    for (int i = 1; i <= 40; ++i)
        EXPECT_TRUE(std::isfinite(model.profile.mag_channels(computed_raw, i)));
}

// The misfit: computed less observed by one of three rules, over the inversion window only.
TEST_F(misfit, residuals_for_each_mode_over_the_window) {
    model.profile.inversion_first_station = 5;
    model.profile.inversion_last_station = 12;
    for (int i = 1; i <= 40; ++i) model.profile.mag_channels(observed_level, i) = 3.0f;
    calculate_display_channels(model, state);  // levels the observed rows by basemag first
    for (int i = 1; i <= 40; ++i) {
        model.profile.mag_channels(observed_level, i) = 3.0f;
        model.profile.mag_channels(observed_vertical_gradient, i) = 1.0f;
        model.profile.mag_channels(observed_total_gradient, i) = 2.0f;
    }
    array1<float> residuals;
    auto& ch = model.profile.mag_channels;

    state.mag_base_offset = 0.0f;
    recalculate_response(model, state, ch, model.profile.grav_channels, residuals);
    ASSERT_EQ(residuals.lo(), 1);
    ASSERT_GE(residuals.hi(), 8);
    EXPECT_FLOAT_EQ(residuals(1), ch(computed_raw, 5) - 3.0f);
    EXPECT_FLOAT_EQ(residuals(8), ch(computed_raw, 12) - 3.0f);

    // Floating base: the offset enters the raw difference.
    model.float_base[0] = 1;
    model.channel_valid[2] = 0;
    recalculate_response(model, state, ch, model.profile.grav_channels, residuals);
    EXPECT_NE(state.mag_base_offset, 0.0f);
    EXPECT_FLOAT_EQ(residuals(2),
                    static_cast<float>(double(ch(computed_raw, 6)) - 3.0 - state.mag_base_offset));

    // Background removal: level rows, no offset.
    model.residual = 3;
    model.channel_valid[2] = 0;
    recalculate_response(model, state, ch, model.profile.grav_channels, residuals);
    EXPECT_FLOAT_EQ(residuals(3), ch(computed_level, 7) - 3.0f);

    // Gradients: rows 8 and 3, or 10 and 5 for the total gradient.
    state.inversion_fits_gradient = 1;
    recalculate_response(model, state, ch, model.profile.grav_channels, residuals);
    EXPECT_FLOAT_EQ(residuals(4), ch(computed_vertical_gradient, 8) - 1.0f);
    state.vg_mode = {1, 2};
    model.channel_valid[2] = 0;
    recalculate_response(model, state, ch, model.profile.grav_channels, residuals);
    EXPECT_FLOAT_EQ(residuals(4), ch(computed_total_gradient, 8) - 2.0f);
}

TEST(station_heights, fill_the_absent_columns) {
    model_record model = line_model(3, 0.0, 0.0, 25.0, 0.0, 7.0, 0);
    model.profile_ready = 0;
    model.zpos = 0;
    model.dtm = 0;
    model.topo = 100.0f;
    model.channel_valid[1] = -1;
    prepare_station_heights(model);
    EXPECT_EQ(model.profile.location(ground_row, 2), 100.0);
    EXPECT_EQ(model.profile.location(sensor_row, 2), 110.0);
    EXPECT_EQ(model.profile.zmin, 100.0f);
    EXPECT_EQ(model.profile_ready, -1);
    EXPECT_EQ(model.channel_valid[1], 0);

    model.profile_ready = 0;
    model.dtm = 7;
    model.profile.location(ground_row, 3) = 50.0;
    prepare_station_heights(model);
    EXPECT_EQ(model.profile.location(sensor_row, 3), 60.0);
    EXPECT_EQ(model.profile.zmin, 50.0f);
    EXPECT_EQ(model.profile.zmax, 100.0f);

    model.profile_ready = 0;
    model.dtm = 0;
    model.zpos = 4;
    model.profile.location(sensor_row, 1) = 30.0;
    prepare_station_heights(model);
    EXPECT_EQ(model.profile.location(ground_row, 1), 20.0);

    // Ready: nothing moves.
    model.profile.location(sensor_row, 1) = 99.0;
    prepare_station_heights(model);
    EXPECT_EQ(model.profile.location(ground_row, 1), 20.0);
}

}  // namespace
}  // namespace trensil
