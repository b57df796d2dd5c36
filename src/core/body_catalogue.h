// The body types by code, and the property rows by which the table and the inversion know a
// body's properties.
#pragma once

#include <string>

namespace trensil {

enum body_type_code : int {
    thin_sheet = 1,
    thick_sheet = 2,
    edge_body = 3,
    sloping_step = 4,
    polygon_body = 5,
    sphere_body = 6,
    cylinder_pipe = 16,
};

// "Thin Sheet", "Thick Sheet", "Edge", "Sloping step", "Polygon", "Sphere", "Cylinder/pipe";
// an empty text for a code not in the catalogue.
const std::string& body_type_name(int code);

// Property rows of the body table and the inversion.
enum property_row : int {
    row_distance = 4,
    row_strike = 5,
    row_dip = 6,
    row_top = 7,
    row_depth_extent = 8,
    row_width = 9,
    row_length = 10,
    row_susc = 11,
    row_density = 12,
    row_plunge = 13,
    row_slope = 14,
    row_offset = 15,
    row_rem_q = 16,
    row_rem_i = 17,
    row_rem_d = 18,
};

}  // namespace trensil
