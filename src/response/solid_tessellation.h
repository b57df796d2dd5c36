// The cylinder/pipe body as a closed solid of triangles: open or capped, solid or hollow, a
// cylinder or (unequal ends) a cone. The mesh lives on the body and is rebuilt only when its
// shape changes; the placed copy only when the body moves.
//
//   int failed = 0;
//   build_body_solid(failed, model, state, body_index);
//   if (failed == 0) use(body.solid.placed_vertices, body.solid.triangles);
#pragma once

#include <array>
#include <cstdint>

#include "core/model_record.h"
#include "response/response_state.h"
#include "support/bounded_array.h"
#include "support/platform.h"

namespace trensil {

// The circle of unit diameter that rings are cut from: entries 0..N.
struct unit_circle {
    array1<double> circle_sin;
    array1<double> circle_cos;
};

// Remakes the circle for `sectors` points, the first at the bottom (-0.5, 0).
void make_unit_circle(unit_circle& circle, int sectors);

// Builds or reuses body `body_index`'s mesh and its placed copy. failed: 0, or -1 after a
// message "An error occurred while setting up the cylinder body: ...".
void build_body_solid(int& failed, model_record& model, response_state& state, int body_index);

// Plunge, strike, dip in degrees and the position to add, for place_solid.
struct solid_pose {
    std::array<double, 3> rotation{0.0, 0.0, 0.0};  // plunge, strike, dip
    std::array<double, 3> position{0.0, 0.0, 0.0};
};

// Builds a cylinder or cone of `length` along the axis (second coordinate when axis_on_y,
// else third), radii at its two ends, an optional wall `shell` and end plates `end_thickness`.
// Triangles face out of the material. A refused shape builds nothing and leaves the counts as
// they were. Returns 0, or -1 after "An error occurred while creating the graphic object: ...".
int tessellate_cylinder(platform* ui, bool axis_on_y, bool apply_pose, int& num_vertices,
                        int& num_triangles, const solid_pose& pose, double length,
                        double start_radius, double end_radius, double shell, double end_thickness,
                        double aspect, int sectors, int segments, array2<std::int32_t>& triangles,
                        array2<double>& vertices);

// Appends `sectors` vertices of a ring of true radius `radius` at `axial` (columns
// vertex_count + 1 ...), counting them in vertex_count.
void add_ring(const unit_circle& circle, bool axis_on_y, int sectors, double aspect, double axial,
              double radius, int first_index, int& vertex_count, array2<double>& vertices);

// Scales, rotates (plunge, dip, strike, in that order) and moves the first `count` vertices in
// place. Angles in degrees.
void place_solid(int count, bool shear, const std::array<double, 3>& scale,
                 const std::array<double, 3>& rotation, const std::array<double, 3>& position,
                 array2<double>& vertices);

}  // namespace trensil
