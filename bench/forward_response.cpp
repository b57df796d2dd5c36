// The forward response of each body type at 1,000 and 8,193 stations, in the format's and in the
// exact field geometry (goal: exact within 1.5 times the format's, magnetics and gravity alike),
// and a slider step: twenty bodies on 2,000 stations, one stale body recomputed, the channel
// summed and its computed rows derived (goal: under 2 ms).
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "core/body_catalogue.h"
#include "core/model_record.h"
#include "response/derived_channels.h"
#include "response/gravity_response.h"
#include "response/magnetic_response.h"
#include "response/response_driver.h"
#include "response/strike_frame.h"

namespace trensil {
namespace {

// Stations every 5 m along a line running north; bodies striking east across it.
model_record bench_model(int stations, int bodies) {
    model_record model;
    reset_model(model);
    model.zpos = 4;
    model.dtm = 7;
    model.magpos = 5;
    model.gravpos = 6;
    model.profile.allocate_stations(stations);
    for (int i = 1; i <= stations; ++i) {
        model.profile.location(easting_row, i) = 1000.0;
        model.profile.location(northing_row, i) = 5.0 * (i - 1);
        model.profile.profile_distance(i) = 5.0f * (i - 1);
    }
    double y = -1.0;
    model.profile.profile_azimuth = static_cast<float>(bearing_of(0.0, y));
    model.num_bodies = bodies;
    grow_bodies(model, bodies + 16);
    for (int b = 1; b <= bodies; ++b) {
        new_body_defaults(model, b, nullptr);
        body_record& body = model.body(b);
        body.strike.value = 90.0f;
        body.distance.value = 5.0f * stations * b / (bodies + 1);
        body.top.value = -40.0f;
        body.length.value = 0.0f;
    }
    prepare_channels(model);
    model.profile_ready = -1;
    return model;
}

enum bench_shape { infinite, strike_limited, with_demag };

// Arguments: body type, shape, stations, geometry (0 the format's, 1 exact), channel (0
// magnetics, 1 gravity).
void BM_body_response(benchmark::State& st) {
    const int type = static_cast<int>(st.range(0));
    const auto shape = static_cast<bench_shape>(st.range(1));
    model_record model = bench_model(static_cast<int>(st.range(2)), 1);
    model.exact_field_geometry = st.range(3) != 0;
    const bool gravity = st.range(4) != 0;
    body_record& body = model.body(1);
    body.type = type;
    if (type == cylinder_pipe) body.dip.value = 0.0f;
    if (shape != infinite) body.length.value = 300.0f;
    if (shape == with_demag) body.demag = 1;
    response_state state;
    for (auto _ : st) {
        body.magnetisation = -1.0f;
        if (gravity) {
            calculate_grav_response(model, state, 1);
        } else {
            calculate_mag_response(model, state, 1);
        }
        benchmark::DoNotOptimize(body.body_response.row(total_field_row));
    }
    st.SetLabel(std::string(gravity ? "gravity " : "magnetics ") +
                (model.exact_field_geometry ? "exact " : "format ") + body_type_name(type) +
                (shape == infinite         ? ""
                 : shape == strike_limited ? " strike-limited"
                                           : " demag"));
}

void body_cases(benchmark::internal::Benchmark* b) {
    for (int gravity : {0, 1}) {
        for (int n : {1000, 8193}) {
            for (int exact : {0, 1}) {
                std::vector<std::array<int, 2>> cases{{thick_sheet, strike_limited},
                                                      {cylinder_pipe, strike_limited}};
                if (gravity == 0) {
                    for (int type : {thin_sheet, thick_sheet, edge_body, sloping_step, sphere_body})
                        cases.push_back({type, infinite});
                    cases.push_back({thick_sheet, with_demag});
                } else {
                    // Types 3 and 4 have no gravity in either geometry; the sphere has none in
                    // the format's.
                    for (int type : {thin_sheet, thick_sheet, sphere_body})
                        cases.push_back({type, infinite});
                }
                for (const auto& [type, shape] : cases) b->Args({type, shape, n, exact, gravity});
            }
        }
    }
}
BENCHMARK(BM_body_response)->Apply(body_cases)->Unit(benchmark::kMicrosecond);

void BM_slider_step(benchmark::State& st) {
    model_record model = bench_model(2000, 20);
    response_state state;
    state.vg_mode = {1, 2};
    auto& p = model.profile;
    calculate_body_responses(model, state, p.mag_channels, p.grav_channels);
    float top = -40.0f;
    for (auto _ : st) {
        top = top == -40.0f ? -45.0f : -40.0f;
        body_record& moved = model.body(7);
        moved.top.value = top;
        moved.mag_valid = 0;
        moved.grav_valid = 0;
        calculate_body_responses(model, state, p.mag_channels, p.grav_channels);
        calculate_derived_channels(model, state, model.channel_valid[2], model.channel_valid[5],
                                   p.mag_channels, p.grav_channels, computed_raw, computed_level,
                                   computed_vertical_gradient, state.vg_mode[0], 2);
        benchmark::DoNotOptimize(p.mag_channels.row(computed_level));
    }
}
BENCHMARK(BM_slider_step)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace trensil

BENCHMARK_MAIN();
