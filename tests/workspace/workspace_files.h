// A model file and its data file written to a fresh temporary folder, for the tests that open
// models the way the window does.
#pragma once

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/body_catalogue.h"
#include "io/model_file_writer.h"
#include "support/scripted_platform.h"

namespace trensil::testing_files {

// A 2 km east-running line of 201 stations with a magnetic bump over 1000 m, and a model of a
// thick sheet and a cylinder under it. Returns the model file's path.
inline std::string write_example_model(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    const auto data = folder / "line_a.csv";
    {
        std::ofstream out(data);
        out << "East,North,Mag\n";
        for (int i = 0; i <= 200; ++i) {
            const double x = 10.0 * i;
            out << 500000.0 + x << ",7000000," << 50.0 * std::exp(-std::pow((x - 1000) / 150, 2))
                << "\n";
        }
    }
    model_record model;
    reset_model(model);
    model.data_file = data.string();
    model.nhead = 2;
    model.xpos = 1;
    model.ypos = 2;
    model.magpos = 3;
    model.num_bodies = 2;
    new_body_defaults(model, 1, nullptr);
    new_body_defaults(model, 2, nullptr);
    model.body(1).type = thick_sheet;
    model.body(1).distance.value = 1000.0f;
    model.body(1).top.value = -40.0f;
    model.body(1).width.value = 50.0f;
    model.body(1).length.value = 0.0f;
    model.body(2).type = cylinder_pipe;
    model.body(2).distance.value = 1500.0f;
    model.body(2).top.value = -80.0f;
    model.body(2).width.value = 60.0f;
    model.body(2).dip.value = 0.0f;
    model.body(2).length.value = 400.0f;
    const auto path = (folder / "line_a.qvx").string();
    scripted_platform ui;
    write_model_core(false, path, model, ui);
    return path;
}

}  // namespace trensil::testing_files
