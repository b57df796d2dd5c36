// One profile model: its files, where its observed data come from, the Earth's field, the
// display state of the modelling workspace, the profile and the bodies.
//
//   model_record model;
//   reset_model(model);
//   model.num_bodies = 1;
//   new_body_defaults(model, 1, &settings);
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/body_record.h"
#include "core/data_transform.h"
#include "core/profile_block.h"
#include "support/bounded_array.h"

namespace trensil {

class settings_store;

// Where the observed data of a model come from and how its columns are read.
struct data_definition {
    std::string data_file;
    double data_file_time = 0.0;
    std::int32_t nhead = 2;       // first data line, from 1
    std::int32_t nstep = 1;       // every nstep-th valid data line is a station
    std::int32_t names_line = 0;  // line of column names, 0 none
    std::int32_t xpos = 2;
    std::int32_t ypos = 3;
    std::int32_t zpos = 0;
    std::int32_t dtm = 0;
    std::int32_t magpos = 5;
    std::int32_t gravpos = 0;
};

struct model_record : data_definition {
    std::string model_file;
    double model_file_time = 0.0;

    float station_spacing = 0.0f;
    float mag_intensity = 56000.0f;
    float mag_inclination = -65.0f;
    float mag_declination = -4.0f;
    // The responses compute the physics of each body (the exact field geometry) instead of the
    // format's own formulas. Kept as an optional fourth value on the model file's field line.
    bool exact_field_geometry = false;
    float basemag = undefined_value;
    float basegrav = 0.0f;
    float topo = 0.0f;
    float sensor_offset = 10.0f;
    float profile_grid_spacing = 0.0f;
    float depth_grid_spacing = 0.0f;
    float infinite_body_length = 0.0f;
    float finite_body_left_clip = 0.0f;
    float finite_body_right_clip = 0.0f;

    std::int16_t display_settings_present = 0;
    std::int32_t display_width = 0;
    std::int32_t tab_width = 0;
    std::int32_t display_axes = 0;
    std::int32_t show_body_label = 0;
    std::int32_t maintain_aspect_ratio = 0;
    std::array<float, 4> splitter{0.0f, 0.0f, 0.0f, 0.0f};  // splitter_1 .. splitter_4

    profile_block profile;

    std::int32_t residual = 0;
    std::int32_t vg_component_1 = 0;
    std::int32_t vg_component_2 = 0;
    std::int32_t VG_filter_width = 11;
    std::int32_t VG_filter_step = 1;
    std::array<std::int32_t, 2> float_base{0, 0};  // magnetics, gravity

    data_transform transform;

    std::int16_t profile_ready = 0;
    std::int16_t observed_ready = 0;
    // 1 mag observed done, 2 mag computed done, 3 mag range marker,
    // 4 grav observed done, 5 grav computed done, 6 grav range marker; index 0 unused.
    std::array<std::int16_t, 7> channel_valid{0, 0, 0, 0, 0, 0, 0};

    std::int32_t num_bodies = 0;
    std::int32_t body_capacity = 32;
    array1<body_record> bodies{0, 32};  // 0..body_capacity; element 0 is a scratch slot

    body_record& body(int index) { return bodies(index); }
    const body_record& body(int index) const { return bodies(index); }
};

// Gives every field with a default its default (see the record), clears data_file, resets the
// transform, makes bodies 0..32; leaves num_bodies, basegrav, profile_ready, observed_ready, the
// display settings and the three profile lengths alone.
void reset_model(model_record& model);

// Clears channel_valid entries 2, 3, 5, 6 and marks every body (0..body_capacity) stale.
void clear_body_results(model_record& model);

// Fills body `index` with the defaults, the settings "Type", "Dip", "Thick", "Depth",
// "StrikeLength", "Density", "Susc", "Colour" (application "Ostrand", section "Trensil") taking
// precedence where present and numeric. `settings` may be null.
void new_body_defaults(model_record& model, int index, const settings_store* settings);

// Makes room for `capacity` bodies (bounds 0..capacity), keeping the bodies there are.
void grow_bodies(model_record& model, int capacity);

// Sets up for n = num_stations: profile_ready false, clear_body_results, a body_response of
// rows 1..5 by 1..n for every body, and the inversion window checked (0 or out of range: 1..n).
void prepare_channels(model_record& model);

// Fills a project line's digest from the model's stations and channels.
void fill_line_profile(const model_record& model, line_profile& record);

// Name of a new body: the file name of data_file without extension, " Body ", the number.
std::string default_body_name(const model_record& model, int index);

}  // namespace trensil
