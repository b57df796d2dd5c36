#include "response/exact_solid_bodies.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/body_catalogue.h"
#include "response/demagnetisation.h"
#include "response/exact_polyhedron.h"
#include "response/field_geometry_choice.h"
#include "response/prism_corners.h"
#include "response/response_inputs.h"
#include "response/solid_tessellation.h"
#include "response/strike_frame.h"

namespace trensil {

namespace {

constexpr double susc_scale = 1000000.0;
constexpr double pi = 3.14159265358979;

// The prism's corners as the format places them (the top along +strike from the reference
// point by offset, lowered by the plunge; the bottom shifted down-dip), with the sloping top's
// far side kept on the down-dip line from the width's end, for magnetics and gravity alike.
// A depth extent of 0 reaches 5000 m down in magnetics and 1000 widths in gravity.
prism_corners exact_prism(const body_record& body, bool gravity) {
    const double W = body.width.value;
    const double sd = std::sin(body.dip.value * degrees_to_radians);
    const double cot =
        std::fabs(sd) > 0.001 ? std::cos(body.dip.value * degrees_to_radians) / sd : 0.0;
    double depth = body.depth_extent.value;
    if (depth == 0.0) depth = gravity ? 1000.0 * std::fabs(W) : 5000.0;
    prism_corners c;
    place_prism_top(body, W, c);
    place_prism_bottom(body, depth * cot, depth, c);
    const double slope = body.slope.value;
    if (std::fabs(slope) > 0.1) {
        const double ts = std::tan(slope * degrees_to_radians);
        const double W2 = W / (1.0 + cot * ts);
        slope_prism_top(body, W2, W2 * ts, c);
    }
    return c;
}

void add_prism(const prism_corners& c, const space_vector& origin, polyhedron_body& out) {
    for (int k = 1; k <= 8; ++k)
        out.corners.push_back({c.east[k] - origin[0], c.north[k] - origin[1], c.z[k] - origin[2]});
    for (const auto& face : prism_faces)
        out.faces.push_back({face[0] - 1, face[1] - 1, face[2] - 1, face[3] - 1});
}

void add_pipe(const body_record& body, const space_vector& origin, polyhedron_body& out) {
    for (const space_vector& c : exact_pipe_vertices(body))
        out.corners.push_back({c[0] - origin[0], c[1] - origin[1], c[2] - origin[2]});
    const solid_cache& s = body.solid;
    for (int t = 1; t <= s.num_triangles; ++t)
        out.faces.push_back({s.triangles(1, t) - 1, s.triangles(2, t) - 1, s.triangles(3, t) - 1});
}

// The magnetisation balanced against the body's own field, (I + chi N) M = chi H0 + M_r, with N
// from the body's shape (in the facet frame of north, east, down).
space_vector demagnetised(const polyhedron_body& body, const space_vector& m, double chi) {
    facet_mesh mesh;
    for (const space_vector& c : body.corners) mesh.vertices.push_back({c[1], c[0], -c[2]});
    for (const std::vector<int>& face : body.faces)
        for (std::size_t k = 1; k + 1 < face.size(); ++k)
            for (int corner : {face[0], face[k], face[k + 1]}) mesh.triangles.push_back(corner);
    // The tensor wants faces wound out in the facet frame; swapping north and east and turning
    // up into down keeps the winding's sense, so an inward body is turned round here.
    if (polyhedron_volume(body) < 0.0)
        for (std::size_t t = 0; t + 2 < mesh.triangles.size(); t += 3)
            std::swap(mesh.triangles[t + 1], mesh.triangles[t + 2]);
    const vec3 solved =
        demagnetised_magnetisation(demagnetising_tensor(mesh), chi, vec3{m[1], m[0], -m[2]});
    return {solved[1], solved[0], -solved[2]};
}

}  // namespace

std::vector<space_vector> exact_pipe_vertices(const body_record& body) {
    const solid_cache& s = body.solid;
    const double tilt = (body.dip.value + body.plunge.value) * degrees_to_radians;
    const double st = std::sin(tilt), ct = std::cos(tilt);
    const double ss = body.sin_strike, cs = body.cos_strike;
    const double along = body.offset.value - body.length.value / 2.0;
    const space_vector start{body.east + along * ss, body.north + along * cs, body.top.value};
    std::vector<space_vector> corners;
    corners.reserve(static_cast<std::size_t>(std::max(s.num_vertices, 0)));
    for (int k = 1; k <= s.num_vertices; ++k) {
        const double c1 = s.vertices(1, k);
        const double c2 = ct * s.vertices(2, k) + st * s.vertices(3, k);
        const double c3 = -st * s.vertices(2, k) + ct * s.vertices(3, k);
        corners.push_back(
            {cs * c1 + ss * c2 + start[0], -ss * c1 + cs * c2 + start[1], c3 + start[2]});
    }
    return corners;
}

std::string exact_solid_response(model_record& model, response_state& state, int body_index,
                                 const solid_request& request) {
    body_record& body = model.body(body_index);
    profile_block& p = model.profile;
    const int n = p.num_stations;
    const space_vector origin{p.location(easting_row, 1), p.location(northing_row, 1),
                              p.location(sensor_row, 1)};
    polyhedron_body solid;
    if (body.type == cylinder_pipe) {
        int failed = 0;
        build_body_solid(failed, model, state, body_index);
        if (failed != 0) return "";
        add_pipe(body, origin, solid);
    } else {
        add_prism(exact_prism(body, request.gravity), origin, solid);
    }

    std::vector<double> east(static_cast<std::size_t>(n)), north(east.size()), up(east.size());
    for (int i = 1; i <= n; ++i) {
        east[static_cast<std::size_t>(i - 1)] = p.location(easting_row, i) - origin[0];
        north[static_cast<std::size_t>(i - 1)] = p.location(northing_row, i) - origin[1];
        up[static_cast<std::size_t>(i - 1)] = p.location(sensor_row, i) - origin[2];
    }
    const polyhedron_stations stations{east.size(), east.data(), north.data(), up.data()};

    if (request.gravity) {
        const polyhedron_fields g = polyhedron_fields_at(solid, {}, false, true, stations);
        const double scale = body.density.value * exact_gravity_constant;
        float* row = body.body_response.row(gravity_row);
        for (int i = 1; i <= n; ++i)
            if (auto d =
                    add_to_response_row(row, i, g.gravity[static_cast<std::size_t>(i - 1)] * scale);
                !d.empty())
                return d;
        return "";
    }

    space_vector m{request.magnetisation[0] / (4.0 * pi), request.magnetisation[1] / (4.0 * pi),
                   request.magnetisation[2] / (4.0 * pi)};
    if (body.demag != 0) m = demagnetised(solid, m, body.susc.value / susc_scale);
    const polyhedron_fields h = polyhedron_fields_at(solid, m, true, false, stations);
    const space_vector& f = request.field;  // (east, north, up)
    for (int i = 1; i <= n; ++i) {
        const auto k = static_cast<std::size_t>(i - 1);
        const double total = h.north[k] * f[1] + h.east[k] * f[0] - h.down[k] * f[2];
        for (const auto& [row, value] :
             {std::pair{north_row, h.north[k]}, std::pair{east_row, h.east[k]},
              std::pair{down_row, h.down[k]}, std::pair{total_field_row, total}}) {
            if (auto d = add_to_response_row(body.body_response.row(row), i, value); !d.empty())
                return d;
        }
    }
    return "";
}

}  // namespace trensil
