// Closed forms of a rectangular prism and a 2-D rectangle written independently of the facet
// engine, and small builders of stations and box meshes, for the response tests.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "core/profile_block.h"
#include "support/bounded_array.h"

namespace trensil::testing_shapes {

// Attraction of an infinitely long 2-D rectangle per unit G rho: 2 [F] over the corners with
// F(x, z) = x ln(x^2 + z^2) / 2 + z atan(x / z), x and z of the corner from the station, z down.
inline double rectangle_attraction(double x1, double x2, double z1, double z2) {
    auto F = [](double x, double z) {
        return x * std::log(x * x + z * z) / 2 + z * std::atan(x / z);
    };
    return 2.0 * (F(x2, z2) - F(x1, z2) - F(x2, z1) + F(x1, z1));
}

// Second derivatives of F, whose third mixed derivative is 1/r (Nagy 2000), at a corner (x, y, z)
// relative to the station. The Newtonian potential's Hessian of the prism, U_ab, is the sum of
// these over the eight corners with sign (-1)^(i+j+k), index 2 the upper bound.
struct prism_box {
    double x1, x2, y1, y2, z1, z2;  // x north, y east, z down, metres, relative to the station
};

// (-1)^(i+j+k) for bounds numbered 1 (lower) and 2 (upper), taking indices 0 and 1.
inline double corner_sign(int i, int j, int k) {
    return ((i + j + k) % 2 == 0) ? -1.0 : 1.0;
}

// Vertical attraction of unit density without the gravitational constant (metres): U_z, by
// Plouff's form g = sum mu [z atan(xy / (z r)) - x ln(r + y) - y ln(r + x)].
inline double prism_attraction(const prism_box& b) {
    const double xs[2] = {b.x1, b.x2}, ys[2] = {b.y1, b.y2}, zs[2] = {b.z1, b.z2};
    double sum = 0.0;
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j)
            for (int k = 0; k < 2; ++k) {
                const double x = xs[i], y = ys[j], z = zs[k];
                const double r = std::sqrt(x * x + y * y + z * z);
                const double mu = corner_sign(i, j, k);
                sum += mu *
                       (z * std::atan(x * y / (z * r)) - x * std::log(r + y) - y * std::log(r + x));
            }
    return sum;
}

// Hessian of the prism's Newtonian potential at the station (row-major, x y z): the field of a
// uniform magnetisation m is H = U'' m.
inline std::array<double, 9> prism_hessian(const prism_box& b) {
    const double xs[2] = {b.x1, b.x2}, ys[2] = {b.y1, b.y2}, zs[2] = {b.z1, b.z2};
    std::array<double, 9> h{};
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j)
            for (int k = 0; k < 2; ++k) {
                const double x = xs[i], y = ys[j], z = zs[k];
                const double r = std::sqrt(x * x + y * y + z * z);
                const double mu = corner_sign(i, j, k);
                const double xx = -std::atan(y * z / (x * r));
                const double yy = -std::atan(z * x / (y * r));
                const double zz = -std::atan(x * y / (z * r));
                const double xy = std::log(z + r), xz = std::log(y + r), yz = std::log(x + r);
                const double d[9] = {xx, xy, xz, xy, yy, yz, xz, yz, zz};
                for (int c = 0; c < 9; ++c) h[static_cast<std::size_t>(c)] += mu * d[c];
            }
    return h;
}

// A profile of stations given as (easting, northing, elevation) triples.
template <std::size_t N>
profile_block make_stations(const std::array<std::array<double, 3>, N>& points) {
    profile_block p;
    p.allocate_stations(static_cast<int>(N));
    for (std::size_t k = 0; k < N; ++k) {
        const int s = static_cast<int>(k) + 1;
        p.location(easting_row, s) = points[k][0];
        p.location(northing_row, s) = points[k][1];
        p.location(sensor_row, s) = points[k][2];
    }
    return p;
}

// A box from east e1..e2, north n1..n2, elevation u1..u2 as 8 vertices and 12 outward triangles
// (rows 1..3 easting, northing, elevation).
inline void make_box(double e1, double e2, double n1, double n2, double u1, double u2,
                     array2<double>& vertices, array2<std::int32_t>& triangles) {
    vertices.resize(1, 3, 1, 8);
    const double es[2] = {e1, e2}, ns[2] = {n1, n2}, us[2] = {u1, u2};
    // Vertex 1 + i + 2 j + 4 k is (es[i], ns[j], us[k]).
    for (int k = 0; k < 2; ++k)
        for (int j = 0; j < 2; ++j)
            for (int i = 0; i < 2; ++i) {
                const int v = 1 + i + 2 * j + 4 * k;
                vertices(1, v) = es[i];
                vertices(2, v) = ns[j];
                vertices(3, v) = us[k];
            }
    // Outward in (east, north, up): each quad anticlockwise seen from outside.
    const int quads[6][4] = {{1, 3, 4, 2}, {5, 6, 8, 7}, {1, 2, 6, 5},
                             {3, 7, 8, 4}, {1, 5, 7, 3}, {2, 4, 8, 6}};
    triangles.resize(1, 3, 1, 12);
    int t = 0;
    for (const auto& q : quads) {
        const int tris[2][3] = {{q[0], q[1], q[2]}, {q[0], q[2], q[3]}};
        for (const auto& tri : tris) {
            ++t;
            for (int c = 0; c < 3; ++c) triangles(c + 1, t) = tri[c];
        }
    }
}

}  // namespace trensil::testing_shapes
