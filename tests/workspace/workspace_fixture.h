// A modelling workspace wired to a fake window, recording graphs, a scripted platform and an
// in-memory settings store, for the tests of the window's logic.
#pragma once

#include <array>
#include <string>
#include <utility>

#include "fake_modelling_view.h"
#include "support/memory_settings_store.h"
#include "support/scripted_platform.h"
#include "workspace/modelling_workspace.h"
#include "workspace/recording_graph_control.h"

namespace trensil {

struct workspace_fixture {
    scripted_platform ui;
    memory_settings_store settings;
    fake_modelling_view view;
    std::array<recording_graph_control, graph_count> controls;
    recording_graph_control plan;
    modelling_workspace ws{ui, settings};

    workspace_fixture() {
        ws.view = &view;
        for (int i = 0; i < graph_count; ++i) ws.graphs[i] = &controls[i];
        ws.plan = &plan;
    }
    std::string setting(const char* key) const {
        return settings.get_setting("Ostrand", "Trensil", key);
    }
    void type(const std::string& control, const std::string& text) {
        view.texts[control] = text;
        model_field_changed(ws, control);
    }
    // Shows `model` as a loaded line: stations prepared, body 1 current, everything computed and
    // drawn with new axes; the window starts unchanged.
    void show(model_record model) {
        ws.model = std::move(model);
        prepare_channels(ws.model);
        ws.section.current_body = ws.model.num_bodies >= 1 ? 1 : 0;
        display_model(ws, 0);
        ws.model_changed = false;
        view.enabled["Command_save_qvx_model"] = false;
    }
    const body_record& body(int i) const { return ws.model.body(i); }
    int current() const { return ws.section.current_body; }
};

}  // namespace trensil
