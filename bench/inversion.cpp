// An inversion of a whole model of 10 bodies over 1,000 stations, 25 iterations at most: the
// time of a run, and the body responses it computed against those a full recompute of every
// body at every misfit evaluation would need. The ratio approaches the number of bodies because
// a probe or trial invalidates only the body that owns the parameter.
#include <benchmark/benchmark.h>

#include <string>

#include "core/model_record.h"
#include "inversion/inversion_session.h"
#include "response/response_driver.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

constexpr int stations = 1000;
constexpr int body_count = 10;

// The panel without a window.
class silent_view : public inversion_view {
public:
    void set_text(inversion_control, int, const std::string&) override {}
    std::string text(inversion_control, int) const override { return ""; }
    void set_caption(inversion_control, const std::string&) override {}
    void set_enabled(inversion_control, bool) override {}
    void set_visible(inversion_control, bool) override {}
    bool is_visible(inversion_control) const override { return false; }
    int list_index(inversion_control) const override { return 0; }
    void set_list_index(inversion_control, int) override {}
    int check_value(inversion_control) const override { return 0; }
    void redraw_inversion_progress() override {}
    void display_body_parameters() override {}
    void display_model(int) override {}
    void set_model_changed() override {}
};

// A line running east, 5 m between stations, ten sheets spread along it (every third one
// strike-limited), the observed data computed from them; then every body is moved off by a few
// steps so the run has work to do.
void build_model(model_record& model, response_state& response, bool gravity) {
    reset_model(model);
    model.magpos = gravity ? 0 : 5;
    model.gravpos = gravity ? 6 : 0;
    model.basemag = 0.0f;
    model.basegrav = 0.0f;
    profile_block& p = model.profile;
    p.allocate_stations(stations);
    for (int i = 1; i <= stations; ++i) {
        p.profile_distance(i) = 5.0f * static_cast<float>(i - 1);
        p.location(easting_row, i) = 5.0 * (i - 1);
    }
    p.profile_azimuth = -1.5707963f;
    model.num_bodies = body_count;
    for (int b = 1; b <= body_count; ++b) {
        new_body_defaults(model, b, nullptr);
        body_record& body = model.body(b);
        body.type = 2;
        body.distance.value = 250.0f + 450.0f * static_cast<float>(b - 1);
        body.top.value = -30.0f - 5.0f * static_cast<float>(b % 4);
        body.width.value = 40.0f + 10.0f * static_cast<float>(b % 3);
        body.depth_extent.value = 200.0f;
        body.length.value = b % 3 == 0 ? 400.0f : 0.0f;
        body.susc.value = 20000.0f + 5000.0f * static_cast<float>(b % 5);
        body.density.value = 0.2f + 0.05f * static_cast<float>(b % 4);
    }
    prepare_channels(model);
    calculate_display_channels(model, response);
    for (int i = 1; i <= stations; ++i) {
        p.mag_channels(observed_raw, i) = p.mag_channels(computed_raw, i);
        p.grav_channels(observed_raw, i) = p.grav_channels(computed_raw, i);
    }
    model.channel_valid[1] = model.channel_valid[4] = 0;
    for (int b = 1; b <= body_count; ++b) {
        body_record& body = model.body(b);
        body.distance.value += b % 2 == 0 ? 97.0f : -101.0f;
        body.width.value += 12.0f;
        body.susc.value *= 0.6f;
        body.density.value *= 0.6f;
    }
    clear_body_results(model);
    calculate_display_channels(model, response);
}

void run_whole_model(benchmark::State& bench, bool gravity) {
    long computed = 0, evaluations = 0, iterations = 0, runs = 0;
    for (auto _ : bench) {
        bench.PauseTiming();
        model_record model;
        response_state response;
        inversion_state state;
        scripted_platform ui;
        silent_view view;
        response.ui = &ui;
        build_model(model, response, gravity);
        inversion_context ctx{model, response, state, ui, view};
        response.mag_responses_computed = response.grav_responses_computed = 0;
        bench.ResumeTiming();

        float misfit = 0.0f;
        int status = 0;
        run_inversion(ctx, true, gravity ? 1 : 0, 25, 1, misfit, status);

        computed += response.mag_responses_computed + response.grav_responses_computed;
        evaluations += state.misfit_evaluations;
        iterations += state.iterations_done;
        ++runs;
        benchmark::DoNotOptimize(misfit);
    }
    const double per_run = static_cast<double>(runs);
    bench.counters["iterations"] = static_cast<double>(iterations) / per_run;
    bench.counters["evaluations"] = static_cast<double>(evaluations) / per_run;
    bench.counters["bodies_computed"] = static_cast<double>(computed) / per_run;
    bench.counters["full_recompute"] = static_cast<double>(evaluations * body_count) / per_run;
    bench.counters["saving"] =
        computed > 0 ? static_cast<double>(evaluations * body_count) / static_cast<double>(computed)
                     : 0.0;
}

void BM_invert_whole_model_magnetics(benchmark::State& bench) {
    run_whole_model(bench, false);
}
void BM_invert_whole_model_gravity(benchmark::State& bench) {
    run_whole_model(bench, true);
}

BENCHMARK(BM_invert_whole_model_magnetics)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_invert_whole_model_gravity)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace trensil

BENCHMARK_MAIN();
