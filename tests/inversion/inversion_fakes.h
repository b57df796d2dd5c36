// Test doubles for the inversion: a recording inversion panel, and a small forward model with the
// response engine's caching contract (only stale bodies are recomputed, rows 6 rebuilt by
// addition, residuals over the inversion range) so that the solver can be driven without the
// physics.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/model_record.h"
#include "inversion/inversion_context.h"
#include "inversion/inversion_session.h"
#include "inversion/inversion_view.h"
#include "response/response_state.h"
#include "support/scripted_platform.h"

namespace trensil::testing {

template <class Map, class Key, class Value>
Value lookup(const Map& map, const Key& key, Value otherwise) {
    const auto it = map.find(key);
    return it == map.end() ? otherwise : it->second;
}

class recording_view : public inversion_view {
public:
    std::map<std::pair<inversion_control, int>, std::string> texts;
    std::map<inversion_control, std::string> captions;
    std::map<inversion_control, bool> enabled, visible;
    int combo_index = 0, gradient_check = 0, redraws = 0, body_table_shown = 0, model_changed = 0;
    std::vector<int> display_model_calls;

    void set_text(inversion_control c, int item, const std::string& t) override {
        texts[{c, item}] = t;
    }
    std::string text(inversion_control c, int item) const override {
        return lookup(texts, std::pair{c, item}, std::string());
    }
    void set_caption(inversion_control c, const std::string& t) override { captions[c] = t; }
    void set_enabled(inversion_control c, bool e) override { enabled[c] = e; }
    void set_visible(inversion_control c, bool v) override { visible[c] = v; }
    bool is_visible(inversion_control c) const override { return lookup(visible, c, false); }
    int list_index(inversion_control) const override { return combo_index; }
    void set_list_index(inversion_control, int index) override { combo_index = index; }
    int check_value(inversion_control) const override { return gradient_check; }
    void redraw_inversion_progress() override { ++redraws; }
    void display_body_parameters() override { ++body_table_shown; }
    void display_model(int mode) override { display_model_calls.push_back(mode); }
    void set_model_changed() override { ++model_changed; }

    bool is_enabled(inversion_control c) const { return lookup(enabled, c, false); }
    std::string misfit_box(int item) const {
        return text(inversion_control::Text_MAGINV_misfit, item);
    }
};

// A platform whose event pump can deliver a Stop click at a chosen call.
class pumping_platform : public scripted_platform {
public:
    std::function<void(int call)> on_pump;
    void process_events() override {
        scripted_platform::process_events();
        if (on_pump) on_pump(process_events_calls);
    }
};

// The toy forward model. Station x is profile_distance; for a body at distance d, depth
// h = 50 - top and width w:
//   magnetic  susc x w x 1e-4 x h / ((x - d)^2 + h^2)     (row 1)
//   gravity   density x w x 10 x h / ((x - d)^2 + h^2)    (row 2)
// Strike, plunge and the remanence have no influence.
struct toy_engine {
    int mag_computations = 0;           // magnetic body responses computed
    std::vector<float> distances_seen;  // distance of body 1 at every call

    void operator()(model_record& model, response_state& rs, array2<float>& mag,
                    array2<float>& grav, array1<float>& residuals) {
        const profile_block& p = model.profile;
        if (model.num_bodies >= 1) distances_seen.push_back(model.body(1).distance.value);
        if (model.magpos > 0) rebuild(model, mag, true);
        if (model.gravpos > 0) rebuild(model, grav, false);
        const array2<float>& chosen = rs.inversion_uses_gravity == 1 ? grav : mag;
        const int first = p.inversion_first_station;
        for (int i = first; i <= p.inversion_last_station; ++i)
            residuals(i - first + 1) = static_cast<float>(static_cast<double>(chosen(6, i)) -
                                                          static_cast<double>(chosen(2, i)));
    }

    void rebuild(model_record& model, array2<float>& ch, bool magnetic) {
        const int n = model.profile.num_stations;
        bool stale = false;
        for (int b = 1; b <= model.num_bodies; ++b)
            stale |= (magnetic ? model.body(b).mag_valid : model.body(b).grav_valid) == 0;
        if (!stale) return;
        for (int i = 1; i <= n; ++i) ch(6, i) = 0.0f;
        for (int b = 1; b <= model.num_bodies; ++b) {
            body_record& body = model.body(b);
            auto& flag = magnetic ? body.mag_valid : body.grav_valid;
            const int row = magnetic ? 1 : 2;
            if (flag == 0) {
                mag_computations += magnetic ? 1 : 0;
                const float h = 50.0f - body.top.value;
                const float scale = body.disabled == 1 ? 0.0f
                                    : magnetic         ? body.susc.value * body.width.value * 1e-4f
                                               : body.density.value * body.width.value * 10.0f;
                for (int i = 1; i <= n; ++i) {
                    const float dx = model.profile.profile_distance(i) - body.distance.value;
                    body.body_response(row, i) = scale * (h / (dx * dx + h * h));
                }
                flag = -1;
            }
            for (int i = 1; i <= n; ++i) ch(6, i) += body.body_response(row, i);
        }
        for (int i = 1; i <= n; ++i) ch(7, i) = ch(6, i);
    }
};

// Only the given property rows of every body are free.
inline void free_only(model_record& model, std::initializer_list<parameter body_record::*> free) {
    for (int b = 1; b <= model.num_bodies; ++b) {
        body_record& body = model.body(b);
        for (int j = 0; j < body_property_count; ++j) body.property(j).vary = 0.0f;
        for (auto member : free) (body.*member).vary = 1.0f;
    }
}

// A context on the toy engine that records written models instead of writing files.
struct toy_setup {
    model_record model;
    response_state response;
    inversion_state state;
    pumping_platform ui;
    recording_view view;
    toy_engine engine;
    std::vector<std::pair<std::string, float>> written;  // path, distance of body 1 then
    inversion_context ctx{model, response, state, ui, view};

    toy_setup() {
        ctx.recalculate = [this](model_record& m, response_state& r, array2<float>& a,
                                 array2<float>& b, array1<float>& res) { engine(m, r, a, b, res); };
        ctx.write_model = [this](model_record& m, const std::string& path) {
            written.emplace_back(path, m.body(1).distance.value);
            return true;
        };
    }

    // n stations 10 m apart on flat ground at 0, magnetic and gravity columns present, and
    // `bodies` default bodies of type 2.
    void flat_line(int n, int bodies) {
        reset_model(model);
        model.magpos = 5;
        model.gravpos = 6;
        profile_block& p = model.profile;
        p.allocate_stations(n);
        for (int i = 1; i <= n; ++i) {
            p.profile_distance(i) = 10.0f * static_cast<float>(i - 1);
            p.location(easting_row, i) = 10.0 * (i - 1);
            p.location(ground_row, i) = 0.0;
            p.location(sensor_row, i) = 10.0;
        }
        model.num_bodies = bodies;
        for (int b = 1; b <= bodies; ++b) {
            new_body_defaults(model, b, nullptr);
            model.body(b).type = 2;
        }
        prepare_channels(model);
    }

    // Observed rows 1 and 2 of both channels := the toy response of the model with `truth`
    // applied to body 1; body 1 is then put back as it was.
    void observe_with(const std::function<void(body_record&)>& truth) {
        const body_record saved = model.body(1);
        truth(model.body(1));
        toy_engine once;
        clear_body_results(model);
        array1<float> residuals(1, model.profile.num_stations);
        profile_block& p = model.profile;
        once(model, response, p.mag_channels, p.grav_channels, residuals);
        for (int i = 1; i <= p.num_stations; ++i) {
            p.mag_channels(1, i) = p.mag_channels(2, i) = p.mag_channels(6, i);
            p.grav_channels(1, i) = p.grav_channels(2, i) = p.grav_channels(6, i);
        }
        model.body(1) = saved;
        clear_body_results(model);
    }

    // 41 stations, body 1 at 200 m while the data put it at `truth` m; only distance is free.
    void shifted_body(float truth = 260.0f) {
        flat_line(41, 1);
        model.body(1).distance.value = 200.0f;
        observe_with([truth](body_record& b) { b.distance.value = truth; });
        free_only(model, {&body_record::distance});
    }

    float run(int max_iterations, int& status, int mode = inversion_mode_magnetics) {
        float misfit = 0.0f;
        status = 0;
        run_inversion(ctx, true, mode, max_iterations, 1, misfit, status);
        return misfit;
    }

    void click_invert(const std::string& max_text) {
        view.set_text(inversion_control::Text_max_iterations, 0, max_text);
        view.combo_index = inversion_mode_magnetics;
        ui.process_events_calls = 0;
        on_invert_click(ctx, 1, 1);
    }
};

}  // namespace trensil::testing
