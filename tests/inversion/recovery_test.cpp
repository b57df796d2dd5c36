// Inversions on the real forward response: synthetic data from known bodies, a start model with
// perturbed free parameters, and how close one run comes back. Offsets that are no multiple of
// the step sizes end within a fraction of a step: once the run's four halvings are spent only
// whole steps are tried, and the one-per-cent rule ends the run.
#include <gtest/gtest.h>

#include <string>

#include "inversion/inversion_session.h"
#include "inversion/parameter_vector.h"
#include "inversion_fakes.h"
#include "response/response_driver.h"

namespace trensil {
namespace {

using testing::free_only;

// A line of n stations 10 m apart running east on flat ground at 0, sensor 10 m above it, and
// one body striking north across it.
struct synthetic_line {
    model_record model;
    response_state response;
    inversion_state state;
    scripted_platform ui;
    testing::recording_view view;
    inversion_context ctx{model, response, state, ui, view};

    synthetic_line(int n, int type, bool gravity, float length = 0.0f) {
        ctx.write_model = [](model_record&, const std::string&) { return true; };
        reset_model(model);
        model.magpos = gravity ? 0 : 5;
        model.gravpos = gravity ? 6 : 0;
        model.basemag = 0.0f;
        model.basegrav = 0.0f;
        profile_block& p = model.profile;
        p.allocate_stations(n);
        for (int i = 1; i <= n; ++i) {
            p.profile_distance(i) = 10.0f * static_cast<float>(i - 1);
            p.location(easting_row, i) = 10.0 * (i - 1);
            p.location(northing_row, i) = 0.0;
        }
        p.profile_azimuth = -1.5707963f;  // a line running east
        model.num_bodies = 1;
        new_body_defaults(model, 1, nullptr);
        body_record& b = model.body(1);
        b.type = type;
        b.distance.value = 500.0f;
        b.top.value = -40.0f;  // 50 m below the sensor
        b.dip.value = 90.0f;
        b.width.value = 60.0f;
        b.depth_extent.value = 200.0f;
        b.length.value = length;
        b.susc.value = 50000.0f;
        b.density.value = 0.5f;
        prepare_channels(model);
    }

    // Makes the model's present response the observed data.
    void observe() {
        profile_block& p = model.profile;
        clear_body_results(model);
        calculate_display_channels(model, response);
        for (int i = 1; i <= p.num_stations; ++i) {
            p.mag_channels(observed_raw, i) = p.mag_channels(computed_raw, i);
            p.grav_channels(observed_raw, i) = p.grav_channels(computed_raw, i);
        }
        model.channel_valid[1] = model.channel_valid[4] = 0;
        clear_body_results(model);
        calculate_display_channels(model, response);
    }

    float invert(int mode, float& initial) {
        clear_body_results(model);  // the start model was edited in place
        float misfit = 0.0f;
        int status = 0;
        run_inversion(ctx, true, mode, 50, 1, misfit, status);
        EXPECT_EQ(status, 1);
        initial = std::stof(view.misfit_box(0));
        return misfit;
    }
};

TEST(recovery, one_run_from_a_perturbed_start_comes_back_to_the_true_body) {
    using member = parameter body_record::*;
    const struct {
        const char* name;
        int type;
        bool gravity;
        float length;
        member a, b;
        float a_start, b_start, a_tolerance, b_tolerance, misfit_ratio;
    } table[] = {
        {"magnetic thin sheet, infinite strike", 1, false, 0.0f, &body_record::distance,
         &body_record::susc, 473.3f, 42130.0f, 2.0f, 250.0f, 0.1f},  // susc 32 steps away
        {"gravity thick sheet, infinite strike", 2, true, 0.0f, &body_record::distance,
         &body_record::density, 538.6f, 0.337f, 2.0f, 0.005f, 0.05f},
        {"magnetic thick sheet, strike-limited", 2, false, 300.0f, &body_record::distance,
         &body_record::top, 526.1f, -53.7f, 2.5f, 1.5f, 0.15f},
        {"gravity thick sheet, strike-limited", 2, true, 300.0f, &body_record::distance,
         &body_record::density, 461.7f, 0.683f, 2.0f, 0.005f, 0.05f},
    };
    for (const auto& r : table) {
        SCOPED_TRACE(r.name);
        synthetic_line line(101, r.type, r.gravity, r.length);
        body_record& b = line.model.body(1);
        line.observe();
        const float a_true = (b.*r.a).value, b_true = (b.*r.b).value;
        free_only(line.model, {r.a, r.b});
        (b.*r.a).value = r.a_start;
        (b.*r.b).value = r.b_start;
        float initial = 0.0f;
        const float misfit =
            line.invert(r.gravity ? inversion_mode_gravity : inversion_mode_magnetics, initial);
        EXPECT_LT(misfit, r.misfit_ratio * initial);
        EXPECT_NEAR((b.*r.a).value, a_true, r.a_tolerance);
        EXPECT_NEAR((b.*r.b).value, b_true, r.b_tolerance);
    }
}

// Depth and susceptibility trade against each other: coordinate descent zig-zags along the
// valley, the halving budget runs out, and the one-per-cent rule ends the run before the true
// pair is reached. The misfit still falls, and two runs give the same numbers to the bit.
TEST(recovery, correlated_depth_and_susceptibility_fall_in_misfit_deterministically) {
    float results[2][4];
    for (auto& r : results) {
        synthetic_line line(101, 1, false);
        line.observe();
        body_record& b = line.model.body(1);
        free_only(line.model, {&body_record::distance, &body_record::top, &body_record::susc});
        b.distance.value = 470.0f;
        b.top.value = -60.0f;
        b.susc.value = 35000.0f;
        float initial = 0.0f;
        r[3] = line.invert(inversion_mode_magnetics, initial);
        EXPECT_LT(r[3], 0.25f * initial);
        EXPECT_NEAR(b.distance.value, 500.0f, 1.0f);
        r[0] = b.distance.value;
        r[1] = b.top.value;
        r[2] = b.susc.value;
    }
    for (int j = 0; j < 4; ++j) EXPECT_EQ(results[0][j], results[1][j]);
}

}  // namespace
}  // namespace trensil
