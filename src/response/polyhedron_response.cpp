// Magnetics and gravity of a closed triangulated body: the facet engine summed over its
// triangles at every station, with the body's own demagnetising field when asked for.
#include "response/polyhedron_response.h"

#include <cmath>
#include <vector>

#include "response/demagnetisation.h"
#include "response/facet_engine.h"

namespace trensil {

namespace {

constexpr double to_radians = 0.017453292;
constexpr double pi = 3.14159265358979;
// Density in g/cc times this gives mGal from the facet engine's attraction in metres:
// G (6.67e-11) x 1000 (g/cc to kg/m3) x 100000 (m/s2 to mGal).
constexpr double gravity_constant = 0.00667;

// The triangles with their three corners closed and edged once, ready for every station.
struct prepared_faces {
    std::vector<double> vx, vy, vz;  // 4 per triangle: corners 1, 2, 3 and 1 again
    std::vector<double> ex, ey, ez;  // 3 per triangle
    std::vector<facet_face> faces;
};

prepared_faces prepare_faces(const facet_mesh& mesh, bool want_magnetic, float mx, float my,
                             float mz) {
    prepared_faces out;
    const auto count = static_cast<std::size_t>(mesh.num_triangles());
    out.vx.resize(4 * count);
    out.vy.resize(4 * count);
    out.vz.resize(4 * count);
    out.ex.resize(3 * count);
    out.ey.resize(3 * count);
    out.ez.resize(3 * count);
    out.faces.reserve(count);
    for (std::size_t t = 0; t < count; ++t) {
        for (std::size_t c = 0; c < 3; ++c) {
            const vec3& v = mesh.vertices[static_cast<std::size_t>(mesh.triangles[3 * t + c])];
            out.vx[4 * t + c] = v[0];
            out.vy[4 * t + c] = v[1];
            out.vz[4 * t + c] = v[2];
        }
        facet_face face;
        if (prepare_facet(3, &out.vx[4 * t], &out.vy[4 * t], &out.vz[4 * t], &out.ex[3 * t],
                          &out.ey[3 * t], &out.ez[3 * t], want_magnetic, mx, my, mz, face))
            out.faces.push_back(face);
    }
    return out;
}

// Sums every face at every station: stations split over two threads, each running all faces
// over its own stations, so each station's sum keeps the face order.
void sum_faces(const prepared_faces& prepared, const facet_stations& stations, bool want_magnetic,
               bool want_gravity, const facet_sums<double>& sums) {
    facet_split_stations(stations.count, [&](std::size_t first, std::size_t last) {
        for (const facet_face& face : prepared.faces)
            facet_kernel(face, stations, first, last, want_magnetic, want_gravity, sums);
    });
}

}  // namespace

int polyhedron_response(polyhedron_mode mode, int demag_control, const earth_field& field,
                        const solid_properties& properties, int num_vertices,
                        const array2<double>& vertices, int num_triangles,
                        const array2<std::int32_t>& triangles, const profile_block& stations,
                        float* result) {
    const int count = stations.num_stations;
    for (int k = 0; k < count; ++k) result[k] = 0.0f;
    if (num_triangles <= 0 || num_vertices <= 0) return 1;
    if (count <= 0) return 0;

    // Everything in the facet frame: x north, y east, z down, from station 1.
    const double east1 = stations.location(easting_row, 1);
    const double north1 = stations.location(northing_row, 1);
    const double elev1 = stations.location(sensor_row, 1);
    facet_mesh mesh;
    mesh.vertices.resize(static_cast<std::size_t>(num_vertices));
    for (int v = 1; v <= num_vertices; ++v)
        mesh.vertices[static_cast<std::size_t>(v - 1)] =
            vec3{vertices(2, v) - north1, vertices(1, v) - east1, -(vertices(3, v) - elev1)};
    mesh.triangles.resize(3 * static_cast<std::size_t>(num_triangles));
    for (int t = 1; t <= num_triangles; ++t)
        for (int c = 1; c <= 3; ++c) {
            const int corner = triangles(c, t);
            if (corner < 1 || corner > num_vertices) return 2;
            mesh.triangles[3 * static_cast<std::size_t>(t - 1) + static_cast<std::size_t>(c - 1)] =
                corner - 1;
        }

    const auto n = static_cast<std::size_t>(count);
    std::vector<double> xs(n), ys(n), zs(n);
    for (int k = 1; k <= count; ++k) {
        xs[static_cast<std::size_t>(k - 1)] = stations.location(northing_row, k) - north1;
        ys[static_cast<std::size_t>(k - 1)] = stations.location(easting_row, k) - east1;
        zs[static_cast<std::size_t>(k - 1)] = -(stations.location(sensor_row, k) - elev1);
    }
    const facet_stations points{n, xs.data(), ys.data(), zs.data()};

    if (mode == polyhedron_mode::gravity) {
        std::vector<double> g(n, 0.0);
        const prepared_faces prepared = prepare_faces(mesh, false, 0.0f, 0.0f, 0.0f);
        sum_faces(prepared, points, false, true,
                  facet_sums<double>{nullptr, nullptr, nullptr, g.data()});
        const double scale = static_cast<double>(properties.density) * gravity_constant;
        for (std::size_t k = 0; k < n; ++k) result[k] = static_cast<float>(g[k] * scale);
        return 0;
    }

    // Magnetisation in field units over 4 pi, the Earth's field direction, the remanence
    // along its own direction (Koenigsberger ratio times the induced magnitude).
    const double F = field.intensity;
    const double inc = field.inclination * to_radians, dec = field.declination * to_radians;
    const vec3 f{std::cos(dec) * std::cos(inc), std::sin(dec) * std::cos(inc), std::sin(inc)};
    const double chi = properties.susc_si;
    const double jr = F * properties.rem_q * chi / (4.0 * pi);
    const double ri = properties.rem_i * to_radians, rd = properties.rem_d * to_radians;
    const vec3 induced{chi * F * f[0] / (4.0 * pi), chi * F * f[1] / (4.0 * pi),
                       chi * F * f[2] / (4.0 * pi)};
    const vec3 remanent{jr * std::cos(ri) * std::cos(rd), jr * std::cos(ri) * std::sin(rd),
                        jr * std::sin(ri)};
    vec3 m{induced[0] + remanent[0], induced[1] + remanent[1], induced[2] + remanent[2]};
    if (demag_control == demag_control_on)
        m = demagnetised_magnetisation(demagnetising_tensor(mesh), chi, m);

    std::vector<double> hx(n, 0.0), hy(n, 0.0), hz(n, 0.0);
    const prepared_faces prepared = prepare_faces(
        mesh, true, static_cast<float>(m[0]), static_cast<float>(m[1]), static_cast<float>(m[2]));
    sum_faces(prepared, points, true, false,
              facet_sums<double>{hx.data(), hy.data(), hz.data(), nullptr});
    for (std::size_t k = 0; k < n; ++k)
        result[k] = static_cast<float>(hx[k] * f[0] + hy[k] * f[1] + hz[k] * f[2]);
    return 0;
}

}  // namespace trensil
