// A synthetic survey line on the real forward response: n stations 10 m apart running east on
// flat ground at 0, sensor 10 m above it, one or more bodies striking north across it, the
// observed data computed from the bodies, with seeded Gaussian noise and spikes on request.
// Shared by the recovery tests of both solvers and the solver benchmark.
//
//   synthetic_line line(101, 2, synthetic_line::magnetics);
//   line.observe();                       // the present bodies are the truth
//   line.add_noise(7, 0.5f, 0.0f);        // 0.5 nT, seed 7
//   ... perturb the start model, free the parameters ...
//   const float misfit = line.invert(inversion_mode_magnetics, initial);
#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

#include "core/model_record.h"
#include "inversion/inversion_context.h"
#include "inversion/inversion_session.h"
#include "inversion/inversion_view.h"
#include "response/response_driver.h"
#include "support/scripted_platform.h"
#include "support/straight_line.h"

namespace trensil::testing {

// Standard normal numbers from a seeded generator, the same on every standard library.
class gaussian_noise {
public:
    explicit gaussian_noise(std::uint32_t seed) : engine_(seed) {}
    double next() {
        // Box-Muller on two uniform numbers in (0, 1].
        const double u1 = (static_cast<double>(engine_()) + 1.0) / 4294967296.0;
        const double u2 = static_cast<double>(engine_()) / 4294967296.0;
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
    }

private:
    std::mt19937 engine_;
};

template <class View>
struct synthetic_line_with {
    enum data_types { magnetics = 1, gravity = 2, both = 3 };

    model_record model;
    response_state response;
    inversion_state state;
    scripted_platform ui;
    View view;
    inversion_context ctx{model, response, state, ui, view};

    // n stations and one body of `type` at 500 m, 50 m below the sensor, 60 m wide, vertical,
    // 200 m deep, susceptibility 50000, density 0.5; `length` 0 is an infinite strike.
    synthetic_line_with(int n, int type, int data, float length = 0.0f) {
        ctx.write_model = [](model_record&, const std::string&) { return true; };
        reset_model(model);
        model.magpos = (data & magnetics) != 0 ? 5 : 0;
        model.gravpos = (data & gravity) != 0 ? 6 : 0;
        model.basemag = 0.0f;
        model.basegrav = 0.0f;
        profile_block& p = model.profile;
        testing_support::lay_out_straight_line(p, n, 0.0, 0.0, 10.0, 0.0, 0.0, 0.0);
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

    // A second body, a copy of body 1 (the 32 slots of a new model are enough for the tests).
    body_record& add_copy_of_first_body() {
        model.num_bodies += 1;
        model.body(model.num_bodies) = model.body(1);
        clear_body_results(model);
        return model.body(model.num_bodies);
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
        observed_changed();
    }

    // Gaussian noise of mag_sigma nT and grav_sigma mGal on the observed data.
    void add_noise(std::uint32_t seed, float mag_sigma, float grav_sigma) {
        gaussian_noise noise(seed);
        profile_block& p = model.profile;
        for (int i = 1; i <= p.num_stations; ++i) {
            p.mag_channels(observed_raw, i) += static_cast<float>(mag_sigma * noise.next());
            p.grav_channels(observed_raw, i) += static_cast<float>(grav_sigma * noise.next());
        }
        observed_changed();
    }

    // A spike of `size` nT on the magnetic data at each of `stations`.
    void add_spikes(std::initializer_list<int> stations, float size) {
        for (int i : stations) model.profile.mag_channels(observed_raw, i) += size;
        observed_changed();
    }

    // The observed rows were edited: derive them anew, and start from a clean computation.
    void observed_changed() {
        model.channel_valid[1] = model.channel_valid[4] = 0;
        clear_body_results(model);
        calculate_display_channels(model, response);
    }

    // One run over the whole model with the chosen solver: the final misfit; `initial` is the
    // misfit it began at, `status` what run_inversion returned.
    float invert(int mode, float& initial, int max_iterations = 50) {
        clear_body_results(model);  // the start model was edited in place
        float misfit = 0.0f;
        status = 0;
        run_inversion(ctx, true, mode, max_iterations, 1, misfit, status);
        const std::string shown = view.text(inversion_control::Text_MAGINV_misfit, 0);
        initial = shown.empty() ? 0.0f : std::stof(shown);
        return misfit;
    }
    int status = 0;
};

}  // namespace trensil::testing
