// Polyhedron responses: units of gravity and magnetics against prism closed forms, a long
// cylinder against the two-dimensional formula, demagnetising factors of known shapes, and the
// effect of self-demagnetisation.
#include "response/polyhedron_response.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "response/demagnetisation.h"
#include "response/facet_closed_forms.h"
#include "response/solid_tessellation.h"

namespace trensil {
namespace {

using testing_shapes::make_box;
using testing_shapes::make_stations;
using testing_shapes::prism_box;

constexpr double pi = 3.14159265358979;

const std::array<std::array<double, 3>, 4> stations{{{1000.0, 2000.0, 100.0},
                                                     {1037.0, 1988.0, 103.0},
                                                     {944.5, 2080.25, 98.0},
                                                     {1140.0, 2007.0, 125.0}}};
// The box east 960..1045, north 1970..2060, elevation 5..80.
prism_box box_seen_from(const std::array<double, 3>& s) {
    return {1970.0 - s[1], 2060.0 - s[1], 960.0 - s[0], 1045.0 - s[0], s[2] - 80.0, s[2] - 5.0};
}

TEST(polyhedron_response, box_gravity_in_mgal_matches_closed_form) {
    const profile_block p = make_stations(stations);
    array2<double> v;
    array2<std::int32_t> t;
    make_box(960.0, 1045.0, 1970.0, 2060.0, 5.0, 80.0, v, t);
    solid_properties props;
    props.density = 2.5f;
    std::vector<float> out(stations.size());
    ASSERT_EQ(polyhedron_response(polyhedron_mode::gravity, 0, earth_field{}, props, 8, v, 12, t, p,
                                  out.data()),
              0);
    // G = 6.67e-11 m3/(kg s2); g/cc to kg/m3 x 1000; m/s2 to mGal x 100000.
    const double to_mgal = 6.67e-11 * 2.5 * 1000.0 * 1e5;
    for (std::size_t k = 0; k < stations.size(); ++k) {
        const double expected =
            testing_shapes::prism_attraction(box_seen_from(stations[k])) * to_mgal;
        EXPECT_NEAR(out[k], expected, 1e-5 * std::fabs(expected)) << k;
    }
}

TEST(polyhedron_response, box_total_field_matches_closed_form) {
    const profile_block p = make_stations(stations);
    array2<double> v;
    array2<std::int32_t> t;
    make_box(960.0, 1045.0, 1970.0, 2060.0, 5.0, 80.0, v, t);
    const earth_field field{56000.0f, -65.0f, 12.0f};
    solid_properties props;
    props.susc_si = 0.05f;
    std::vector<float> out(stations.size());
    ASSERT_EQ(
        polyhedron_response(polyhedron_mode::magnetic, 0, field, props, 8, v, 12, t, p, out.data()),
        0);
    const double inc = -65.0 * 0.017453292, dec = 12.0 * 0.017453292;
    const double f[3] = {std::cos(dec) * std::cos(inc), std::sin(dec) * std::cos(inc),
                         std::sin(inc)};
    const double j = 0.05 * 56000.0 / (4.0 * pi);  // induced, field units over 4 pi
    for (std::size_t k = 0; k < stations.size(); ++k) {
        const auto h = testing_shapes::prism_hessian(box_seen_from(stations[k]));
        double total = 0.0;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
                total += f[r] * h[static_cast<std::size_t>(3 * r + c)] * j * f[c];
        EXPECT_NEAR(out[k], total, 1e-5 * std::fabs(total) + 1e-4) << k;
    }
}

TEST(polyhedron_response, long_cylinder_gravity_matches_two_dimensional_form) {
    // A level pipe 4 km long running north, radius 10 m, its axis 60 m below the stations,
    // which cross it east-west at its middle: g = 2 G rho A z / (x^2 + z^2).
    model_record model;
    model.num_bodies = 1;
    body_record& b = model.body(1);
    b.type = 16;
    b.east = 0.0;
    b.north = 0.0;
    b.width.value = 20.0f;
    b.length.value = 4000.0f;
    b.top.value = -60.0f;  // the axis: the mesh is centred on the body's top point
    b.num_sectors = 24;
    response_state state;
    int failed = 1;
    build_body_solid(failed, model, state, 1);
    ASSERT_EQ(failed, 0);
    const std::array<std::array<double, 3>, 4> line{
        {{-100.0, 0.0, 0.0}, {-30.0, 0.0, 0.0}, {5.0, 0.0, 0.0}, {70.0, 0.0, 0.0}}};
    const profile_block p = make_stations(line);
    solid_properties props;
    props.density = 0.5f;
    std::vector<float> out(line.size());
    const solid_cache& s = b.solid;
    ASSERT_EQ(polyhedron_response(polyhedron_mode::gravity, 0, earth_field{}, props,
                                  s.num_placed_vertices, s.placed_vertices, s.num_triangles,
                                  s.triangles, p, out.data()),
              0);
    const double area = 0.5 * 24 * 100.0 * std::sin(2.0 * pi / 24);  // the faceted section
    for (std::size_t k = 0; k < line.size(); ++k) {
        const double x = line[k][0], z = 60.0;
        const double expected = 2.0 * 6.67e-11 * 500.0 * area * z / (x * x + z * z) * 1e5;
        EXPECT_NEAR(out[k], expected, 0.005 * expected) << k;
    }
}

facet_mesh box_mesh(double dx, double dy, double dz) {
    array2<double> v;
    array2<std::int32_t> t;
    // (east, north, up) box; the facet frame is (north, east, down).
    make_box(0.0, dy, 0.0, dx, -dz, 0.0, v, t);
    facet_mesh m;
    for (int k = 1; k <= 8; ++k) m.vertices.push_back({v(2, k), v(1, k), -v(3, k)});
    for (int k = 1; k <= 12; ++k)
        for (int c = 1; c <= 3; ++c) m.triangles.push_back(t(c, k) - 1);
    return m;
}

double trace(const std::array<double, 9>& n) {
    return n[0] + n[4] + n[8];
}

TEST(polyhedron_demagnetisation, factors_of_known_shapes) {
    // Cube: a third each way by symmetry. Sampling error of the interior grid: 0.02.
    const auto cube = demagnetising_tensor(box_mesh(10.0, 10.0, 10.0));
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(cube[static_cast<std::size_t>(4 * i)], 1.0 / 3.0, 0.02);
    EXPECT_NEAR(cube[1], 0.0, 1e-6);
    EXPECT_NEAR(trace(cube), 1.0, 0.02);

    // Thin plate (100 x 100 x 1): nearly 1 across, little in its plane.
    const auto plate = demagnetising_tensor(box_mesh(100.0, 100.0, 1.0));
    EXPECT_GT(plate[8], 0.9);
    EXPECT_LT(plate[0], 0.05);

    // Long cylinder along its second coordinate (length 40 diameters): a half across, ~0 along.
    {
        int nv = 0, nt = 0;
        array2<std::int32_t> t;
        array2<double> v;
        ASSERT_EQ(tessellate_cylinder(nullptr, true, false, nv, nt, solid_pose{}, 400.0, 5.0, 5.0,
                                      0.0, 0.0, 1.0, 24, 1, t, v),
                  0);
        facet_mesh m;
        for (int k = 1; k <= nv; ++k) m.vertices.push_back({v(2, k), v(1, k), -v(3, k)});
        for (int k = 1; k <= nt; ++k)
            for (int c = 1; c <= 3; ++c) m.triangles.push_back(t(c, k) - 1);
        const auto n = demagnetising_tensor(m);
        EXPECT_LT(n[0], 0.05);         // along the axis (facet x is the body's second coordinate)
        EXPECT_NEAR(n[4], 0.5, 0.04);  // across
        EXPECT_NEAR(n[8], 0.5, 0.04);  // across
        EXPECT_NEAR(trace(n), 1.0, 0.03);
    }
}

TEST(polyhedron_demagnetisation, balanced_magnetisation_solves_the_system) {
    // Sphere-like tensor: M = source / (1 + chi / 3).
    const std::array<double, 9> third{1.0 / 3, 0, 0, 0, 1.0 / 3, 0, 0, 0, 1.0 / 3};
    const vec3 m = demagnetised_magnetisation(third, 3.0, {2.0, -4.0, 6.0});
    EXPECT_NEAR(m[0], 1.0, 1e-12);
    EXPECT_NEAR(m[1], -2.0, 1e-12);
    EXPECT_NEAR(m[2], 3.0, 1e-12);
    // Thin plate: only the component across is reduced.
    const std::array<double, 9> plate{0, 0, 0, 0, 0, 0, 0, 0, 1.0};
    const vec3 p = demagnetised_magnetisation(plate, 1.0, {1.0, 1.0, 1.0});
    EXPECT_NEAR(p[0], 1.0, 1e-12);
    EXPECT_NEAR(p[2], 0.5, 1e-12);
}

TEST(polyhedron_demagnetisation, cube_field_falls_by_one_plus_chi_over_three) {
    const profile_block p = make_stations(stations);
    array2<double> v;
    array2<std::int32_t> t;
    make_box(960.0, 1045.0, 1970.0, 2060.0, 5.0, 90.0, v, t);  // near-cube, 85 x 90 x 85
    const earth_field field{50000.0f, 60.0f, 0.0f};
    solid_properties props;
    props.susc_si = 1.0f;
    std::vector<float> plain(stations.size()), demag(stations.size());
    ASSERT_EQ(polyhedron_response(polyhedron_mode::magnetic, 0, field, props, 8, v, 12, t, p,
                                  plain.data()),
              0);
    ASSERT_EQ(polyhedron_response(polyhedron_mode::magnetic, demag_control_on, field, props, 8, v,
                                  12, t, p, demag.data()),
              0);
    for (std::size_t k = 0; k < stations.size(); ++k)
        EXPECT_NEAR(demag[k] / plain[k], 0.75, 0.02) << k;
}

TEST(polyhedron_response, refuses_a_body_it_cannot_use) {
    const profile_block p = make_stations(stations);
    array2<double> v;
    array2<std::int32_t> t;
    make_box(960.0, 1045.0, 1970.0, 2060.0, 5.0, 80.0, v, t);
    solid_properties props;
    props.density = 1.0f;
    std::vector<float> out(stations.size(), 7.0f);
    EXPECT_NE(polyhedron_response(polyhedron_mode::gravity, 0, earth_field{}, props, 8, v, 0, t, p,
                                  out.data()),
              0);
    EXPECT_EQ(out[0], 0.0f);
    t(2, 5) = 9;  // a corner beyond the vertices
    EXPECT_NE(polyhedron_response(polyhedron_mode::gravity, 0, earth_field{}, props, 8, v, 12, t, p,
                                  out.data()),
              0);
}

}  // namespace
}  // namespace trensil
