// A modelling workspace wired to a fake window, recording graphs and scripted services, for the
// logic tests of the window's handlers.
#pragma once

#include <array>
#include <string>

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
        for (int i = 0; i < graph_count; ++i)
            ws.graphs[static_cast<std::size_t>(i)] = &controls[static_cast<std::size_t>(i)];
        ws.plan = &plan;
    }
    std::string setting(const char* key) const {
        return settings.get_setting("Ostrand", "Trensil", key);
    }
    void type(const std::string& control, const std::string& text) {
        view.texts[control] = text;
        model_field_changed(ws, control);
    }
};

}  // namespace trensil
