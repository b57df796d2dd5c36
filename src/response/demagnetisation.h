// Self-demagnetisation of a closed triangulated body: its demagnetising tensor, and the
// magnetisation that balances the Earth's field, the remanence and the body's own field.
//
//   std::array<double, 9> n = demagnetising_tensor(mesh);
//   vec3 m = demagnetised_magnetisation(n, chi, induced + remanent);
#pragma once

#include <array>
#include <vector>

#include "response/facet_engine.h"

namespace trensil {

// A closed body of triangles in the facet frame (x north, y east, z down), faces outward:
// corner k of triangle t is vertex triangles[3 t + k], 0-based.
struct facet_mesh {
    std::vector<vec3> vertices;
    std::vector<int> triangles;
    int num_triangles() const { return static_cast<int>(triangles.size() / 3); }
};

// Points per side of the grid over the body's bounding box whose inside points are sampled.
inline constexpr int demag_grid_points = 8;

// True when `point` lies inside the closed mesh: the solid angle the surface subtends there is
// 4 pi (0 outside).
bool point_inside_mesh(const facet_mesh& mesh, const vec3& point);

// The body's magnetometric demagnetising tensor N (row-major 3 x 3, facet frame): the internal
// field of a unit magnetisation along each axis, H = -N M, averaged over interior points of a
// demag_grid_points^3 grid. The trace is 1 for any closed body; a sphere or cube gives 1/3 each
// way. All zero when no grid point falls inside.
std::array<double, 9> demagnetising_tensor(const facet_mesh& mesh);

// Solves (I + chi N) M = source for M, where source = chi H0 + M_r is the magnetisation the body
// would carry without its own field. Returns source unchanged when the system is singular.
vec3 demagnetised_magnetisation(const std::array<double, 9>& n, double chi, const vec3& source);

}  // namespace trensil
