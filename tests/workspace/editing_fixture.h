// A workspace showing a computed model for the editing tests: 120 stations 10 m apart with
// magnetic and gravity data, a thick sheet, a thin sheet, a cylinder and a strike-limited thick
// sheet under them, body 1 current, everything computed once.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "model_fixture.h"
#include "response/strike_frame.h"
#include "workspace/model_edit.h"
#include "workspace_fixture.h"

namespace trensil {

struct editing_fixture : workspace_fixture {
    editing_fixture() {
        model_record m = testing_models::line_model(120, 10.0f);
        m.gravpos = 6;
        for (int i = 1; i <= m.profile.num_stations; ++i) {
            m.profile.grav_channels(observed_raw, i) = 0.5f;
            m.profile.grav_channels(observed_level, i) = 0.5f;
        }
        testing_models::add_body(m, thick_sheet, 300.0f, -20.0f).width.value = 40.0f;
        testing_models::add_body(m, thin_sheet, 500.0f, -30.0f);
        body_record& pipe = testing_models::add_body(m, cylinder_pipe, 700.0f, -50.0f);
        pipe.dip.value = 0.0f;
        pipe.width.value = 30.0f;
        pipe.length.value = 300.0f;
        body_record& finite = testing_models::add_body(m, thick_sheet, 900.0f, -25.0f);
        finite.length.value = 200.0f;
        finite.plunge.value = 10.0f;
        for (int i = 1; i <= m.num_bodies; ++i) {
            body_record& b = m.body(i);
            locate_body_on_profile(m.profile, b.distance.value, b.east, b.north);
            b.name = "Body " + std::to_string(i);
        }
        show(std::move(m));
        ws.response.mag_responses_computed = 0;
        ws.response.grav_responses_computed = 0;
    }

    // The computed rows 6 to 10 of both channel arrays, station by station.
    std::vector<float> computed_channels() const {
        std::vector<float> rows;
        const profile_block& p = ws.model.profile;
        for (const array2<float>* channels : {&p.mag_channels, &p.grav_channels})
            for (int r = computed_raw; r <= computed_total_gradient; ++r)
                for (int i = 1; i <= p.num_stations; ++i) rows.push_back((*channels)(r, i));
        return rows;
    }

    long responses_computed() const {
        return ws.response.mag_responses_computed + ws.response.grav_responses_computed;
    }
};

}  // namespace trensil
