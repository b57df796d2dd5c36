// One geological body of a model: its definition (type, position, the fifteen adjustable
// properties, the cylinder mesh settings), and the cached state of the response engine (field
// coefficients, mesh, placed mesh, the body's own response at every station).
//
//   body_definition before = model.body(2);   // the user's part only
//   model.body(2).dip.value = 45.0f;
//   bool changed = !(before == model.body(2));
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/parameter.h"
#include "support/bounded_array.h"

namespace trensil {

// The shape and pose the cylinder mesh was last built and placed for.
struct solid_cache {
    float length = 0.0f;
    float width_start = 0.0f;
    float width_end = 0.0f;
    float shell_thickness = 0.0f;
    float end_thickness = 0.0f;
    std::int32_t num_sectors = 0;
    std::int32_t num_segments = 0;
    float max_triangle_size = 0.0f;

    std::int32_t num_triangles = 0;
    array2<std::int32_t> triangles;  // rows 1..3 (corners), columns 1..num_triangles, 1-based
    std::int32_t num_vertices = 0;
    array2<double> vertices;  // rows 1..3, columns 1..num_vertices, body frame

    float pose_dip = 0.0f;
    float pose_strike = 0.0f;
    float pose_plunge = 0.0f;
    std::array<double, 3> pose_position{0.0, 0.0, 0.0};
    std::int32_t num_placed_vertices = 0;
    array2<double> placed_vertices;  // rows 1..3: easting, northing, elevation
};

// What the user edits and the model file stores of one body: type, position, colour and texts,
// the flags, the fifteen properties and the cylinder mesh settings. Two definitions compare equal
// field for field; an edit is a change of definitions, and undo puts definitions back.
struct body_definition {
    std::int32_t type = 1;
    double east = 0.0;
    double north = 0.0;
    std::int32_t colour = 0xff0000;
    std::string name;
    std::string rock_type;
    std::string description;
    std::int32_t demag = 0;
    std::int32_t fix = 1;  // 1: takes part in inversion
    std::int32_t disabled = 0;

    // The fifteen properties, in the order the inversion walks them.
    parameter distance;
    parameter top;
    parameter strike;
    parameter dip;
    parameter plunge;
    parameter slope;
    parameter width;
    parameter depth_extent;
    parameter length;
    parameter offset;
    parameter susc;
    parameter rem_q;
    parameter rem_d;
    parameter rem_i;
    parameter density;

    float diameter_start = 0.0f;
    float diameter_end = 0.0f;
    float shell_thickness = 0.0f;
    float end_thickness = 0.0f;
    std::int32_t num_sectors = 12;
    std::int32_t num_segments = 1;
    float max_triangle_size = 0.0f;

    // The fifteen properties by position 0..14 in record order.
    parameter& property(int index);
    const parameter& property(int index) const;

    bool operator==(const body_definition&) const = default;
};

// One body as the program holds it: its definition, and what the response engine and the
// section derive from it (mesh, field coefficients, the body's response at every station, where
// it was drawn).
struct body_record : body_definition {
    float z_reference = 0.0f;
    solid_cache solid;

    float cos_dip = 0.0f;
    float sin_dip = 0.0f;
    float cos_strike = 0.0f;
    float sin_strike = 0.0f;
    float magnetisation = -1.0f;                           // -1: field coefficients are stale
    std::array<float, 3> field_cosines{0.0f, 0.0f, 0.0f};  // north, east, down
    std::array<float, 3> magnetisation_cosines{0.0f, 0.0f, 0.0f};  // north, east, down
    float coef_a = 0.0f;
    float coef_b = 0.0f;
    float coef_c = 0.0f;
    float mag_x = 0.0f;
    float mag_y = 0.0f;
    float mag_z = 0.0f;

    std::int16_t mag_valid = 0;   // -1: rows 1, 3, 4, 5 of body_response are current
    std::int16_t grav_valid = 0;  // -1: row 2 is current
    array2<float> body_response;  // rows 1..5 by stations 1..n
    std::int32_t display_index = 0;
};

inline constexpr int body_property_count = 15;

// Rows of body_response.
enum response_row : int {
    total_field_row = 1,
    gravity_row = 2,
    north_row = 3,
    east_row = 4,
    down_row = 5,
};

}  // namespace trensil
