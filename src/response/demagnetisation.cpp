// Demagnetising tensor of a triangulated body from the facet engine's interior field, and the
// balanced magnetisation.
#include "response/demagnetisation.h"

#include <algorithm>
#include <cmath>

namespace trensil {

namespace {

// Solid angle of triangle (a, b, c) seen from the origin, signed positive when the triangle's
// corners run anticlockwise seen from the origin.
// In: corner positions relative to the point (m). Out: steradians in -2 pi .. 2 pi.
//   tan(omega / 2) = a.(b x c) / (|a||b||c| + (a.b)|c| + (a.c)|b| + (b.c)|a|)
// Van Oosterom and Strackee (1983). A point on the triangle's plane gives 0.
double triangle_solid_angle(const vec3& a, const vec3& b, const vec3& c) {
    auto dot = [](const vec3& u, const vec3& v) { return u[0] * v[0] + u[1] * v[1] + u[2] * v[2]; };
    const double la = std::sqrt(dot(a, a)), lb = std::sqrt(dot(b, b)), lc = std::sqrt(dot(c, c));
    const vec3 bxc{b[1] * c[2] - b[2] * c[1], b[2] * c[0] - b[0] * c[2], b[0] * c[1] - b[1] * c[0]};
    const double numerator = dot(a, bxc);
    const double denominator = la * lb * lc + dot(a, b) * lc + dot(a, c) * lb + dot(b, c) * la;
    return 2.0 * std::atan2(numerator, denominator);
}

}  // namespace

bool point_inside_mesh(const facet_mesh& mesh, const vec3& point) {
    double total = 0.0;
    for (int t = 0; t < mesh.num_triangles(); ++t) {
        vec3 corner[3];
        for (int k = 0; k < 3; ++k) {
            const vec3& v = mesh.vertices[static_cast<std::size_t>(mesh.triangles[3 * t + k])];
            corner[k] = vec3{v[0] - point[0], v[1] - point[1], v[2] - point[2]};
        }
        total += triangle_solid_angle(corner[0], corner[1], corner[2]);
    }
    return std::fabs(total) > facet_two_pi;
}

std::array<double, 9> demagnetising_tensor(const facet_mesh& mesh) {
    std::array<double, 9> tensor{};
    if (mesh.vertices.empty() || mesh.num_triangles() == 0) return tensor;
    vec3 lo = mesh.vertices.front(), hi = mesh.vertices.front();
    for (const vec3& v : mesh.vertices)
        for (std::size_t c = 0; c < 3; ++c) {
            lo[c] = std::min(lo[c], v[c]);
            hi[c] = std::max(hi[c], v[c]);
        }
    // Cell centres of a regular grid over the box; only those inside the body count.
    std::vector<double> xs, ys, zs;
    constexpr int k = demag_grid_points;
    for (int i = 0; i < k; ++i)
        for (int j = 0; j < k; ++j)
            for (int l = 0; l < k; ++l) {
                const vec3 p{lo[0] + (hi[0] - lo[0]) * (i + 0.5) / k,
                             lo[1] + (hi[1] - lo[1]) * (j + 0.5) / k,
                             lo[2] + (hi[2] - lo[2]) * (l + 0.5) / k};
                if (!point_inside_mesh(mesh, p)) continue;
                xs.push_back(p[0]);
                ys.push_back(p[1]);
                zs.push_back(p[2]);
            }
    if (xs.empty()) return tensor;
    const facet_stations points{xs.size(), xs.data(), ys.data(), zs.data()};

    // Field of a unit magnetisation along each axis in turn. The facet engine gives the field
    // of magnetisation m as H = -4 pi N m inside the body, so N = -H / (4 pi).
    std::vector<double> hx(xs.size()), hy(xs.size()), hz(xs.size());
    std::array<double, 4> vx{}, vy{}, vz{};
    std::array<double, 3> ex{}, ey{}, ez{};
    for (int axis = 0; axis < 3; ++axis) {
        std::fill(hx.begin(), hx.end(), 0.0);
        std::fill(hy.begin(), hy.end(), 0.0);
        std::fill(hz.begin(), hz.end(), 0.0);
        const float m[3] = {axis == 0 ? 1.0f : 0.0f, axis == 1 ? 1.0f : 0.0f,
                            axis == 2 ? 1.0f : 0.0f};
        const facet_sums<double> sums{hx.data(), hy.data(), hz.data(), nullptr};
        for (int t = 0; t < mesh.num_triangles(); ++t) {
            for (int c = 0; c < 3; ++c) {
                const vec3& v = mesh.vertices[static_cast<std::size_t>(mesh.triangles[3 * t + c])];
                vx[static_cast<std::size_t>(c)] = v[0];
                vy[static_cast<std::size_t>(c)] = v[1];
                vz[static_cast<std::size_t>(c)] = v[2];
            }
            facet_face face;
            if (!prepare_facet(3, vx.data(), vy.data(), vz.data(), ex.data(), ey.data(), ez.data(),
                               true, m[0], m[1], m[2], face))
                continue;
            facet_split_stations(points.count, [&](std::size_t first, std::size_t last) {
                facet_kernel(face, points, first, last, true, false, sums);
            });
        }
        double sum[3] = {0.0, 0.0, 0.0};
        for (std::size_t p = 0; p < xs.size(); ++p) {
            sum[0] += hx[p];
            sum[1] += hy[p];
            sum[2] += hz[p];
        }
        const double scale = -1.0 / (4.0 * facet_pi * static_cast<double>(xs.size()));
        for (int row = 0; row < 3; ++row)
            tensor[static_cast<std::size_t>(3 * row + axis)] = sum[row] * scale;
    }
    return tensor;
}

vec3 demagnetised_magnetisation(const std::array<double, 9>& n, double chi, const vec3& source) {
    // A = I + chi N, solved by Cramer's rule (3 x 3).
    double a[9];
    for (int i = 0; i < 9; ++i) a[i] = chi * n[static_cast<std::size_t>(i)];
    a[0] += 1.0;
    a[4] += 1.0;
    a[8] += 1.0;
    auto det3 = [](const double* m) {
        return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
               m[2] * (m[3] * m[7] - m[4] * m[6]);
    };
    const double det = det3(a);
    if (det == 0.0 || !std::isfinite(det)) return source;
    vec3 result{};
    for (int col = 0; col < 3; ++col) {
        double b[9];
        std::copy(a, a + 9, b);
        for (int row = 0; row < 3; ++row) b[3 * row + col] = source[static_cast<std::size_t>(row)];
        result[static_cast<std::size_t>(col)] = det3(b) / det;
    }
    return result;
}

}  // namespace trensil
