// The facet engine's block kernels against the one-station-at-a-time reference: the arc tangent
// and logarithm of the lanes against the C library, every block width giving the same bits, the
// summed responses of bodies of thousands of triangles within one float ulp of the reference,
// and stations on edge lines and in face planes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "response/facet_engine.h"
#include "response/facet_engine_block.h"

namespace trensil {
namespace {

// Lanes of the test's own: two doubles, square roots one at a time.
typedef double test_vd __attribute__((vector_size(16)));
typedef std::int64_t test_vi __attribute__((vector_size(16)));
struct test_lanes : facet_lanes_base<test_vd, test_vi> {
    static vd sqrt(vd x) {
        vd r;
        for (int i = 0; i < width; ++i) r[i] = std::sqrt(x[i]);
        return r;
    }
};

// Distance in units in the last place between two values of the same sign (I the integer of
// the same width).
template <class I, class F>
I ulp_distance(F a, F b) {
    I ia, ib;
    std::memcpy(&ia, &a, sizeof a);
    std::memcpy(&ib, &b, sizeof b);
    if (ia < 0) ia = std::numeric_limits<I>::min() - ia;
    if (ib < 0) ib = std::numeric_limits<I>::min() - ib;
    return ia > ib ? ia - ib : ib - ia;
}
std::int64_t ulps(double a, double b) {
    return ulp_distance<std::int64_t>(a, b);
}
std::int32_t float_ulps(float a, float b) {
    return ulp_distance<std::int32_t>(a, b);
}

template <class F>
std::vector<double> apply_lanes(const std::vector<double>& xs, F f) {
    std::vector<double> out(xs.size());
    for (std::size_t k = 0; k + 2 <= xs.size(); k += 2)
        test_lanes::store(&out[k], f(test_lanes::load(&xs[k])));
    return out;
}

TEST(facet_lanes, arc_tangent_and_logarithm_within_two_ulps_of_the_library) {
    std::mt19937_64 rng(17);
    std::vector<double> at, lg;
    // Arc tangent: every scale, both signs, and the edges of its reduction intervals.
    for (int i = 0; i < 40000; ++i) {
        const double mag = std::pow(10.0, std::uniform_real_distribution<double>(-12.0, 12.0)(rng));
        at.push_back(i % 2 == 0 ? mag : -mag);
    }
    for (double edge : {0.66, 2.41421356237309504880, 1.0})
        for (int i = -200; i < 200; ++i) at.push_back(edge + i * 1e-14);
    // Logarithm: every scale, and both sides of 1 where the result is small.
    for (int i = 0; i < 40000; ++i)
        lg.push_back(std::pow(10.0, std::uniform_real_distribution<double>(-300.0, 300.0)(rng)));
    for (int i = -2000; i < 2000; ++i) lg.push_back(1.0 + i * 1e-6);
    for (int i = -200; i < 200; ++i) lg.push_back(0.70710678118654752440 + i * 1e-15);

    const auto fast_at = apply_lanes(at, [](test_vd x) { return facet_lanes_atan<test_lanes>(x); });
    const auto fast_lg = apply_lanes(lg, [](test_vd x) { return facet_lanes_log<test_lanes>(x); });
    std::int64_t worst_at = 0, worst_lg = 0;
    for (std::size_t k = 0; k < at.size(); ++k)
        worst_at = std::max(worst_at, ulps(fast_at[k], std::atan(at[k])));
    for (std::size_t k = 0; k < lg.size(); ++k)
        if (lg[k] != 1.0) worst_lg = std::max(worst_lg, ulps(fast_lg[k], std::log(lg[k])));
    EXPECT_LE(worst_at, 2);
    EXPECT_LE(worst_lg, 2);

    // Values the kernel meets at its edges, bit for bit the library's (NaN in, NaN out).
    const double inf = std::numeric_limits<double>::infinity();
    const double subnormal = std::numeric_limits<double>::denorm_min() * 12345.0;
    const std::vector<double> at_edges{inf, -inf, std::nan(""), -0.0};
    const std::vector<double> log_edges{0.0, -1.0, inf, subnormal, 1.0, 1.0};
    const auto a = apply_lanes(at_edges, [](test_vd x) { return facet_lanes_atan<test_lanes>(x); });
    const auto l = apply_lanes(log_edges, [](test_vd x) { return facet_lanes_log<test_lanes>(x); });
    auto same = [](double x, double y) {
        return (std::isnan(x) && std::isnan(y)) || (x == y && std::signbit(x) == std::signbit(y));
    };
    for (std::size_t k = 0; k < a.size(); ++k)
        EXPECT_TRUE(same(a[k], std::atan(at_edges[k]))) << at_edges[k];
    for (std::size_t k = 0; k < l.size(); ++k)
        EXPECT_TRUE(same(l[k], std::log(log_edges[k]))) << log_edges[k];
}

TEST(facet_lanes, arc_cosine_follows_the_engines_definition) {
    // Against arc_cos: the same piecewise values outside (-1, 1) (NaN reads as pi), and inside
    // within a few units of pi/2's last place, where both lose digits to the sum with pi/2.
    std::vector<double> xs{1.0, 1.5, -1.0, -7.0, std::numeric_limits<double>::quiet_NaN(), 0.0};
    std::mt19937_64 rng(5);
    for (int i = 0; i < 20000; ++i)
        xs.push_back(std::uniform_real_distribution<double>(-1, 1)(rng));
    for (int i = 1; i < 300; ++i) {
        xs.push_back(1.0 - i * 1e-17 * i * i);  // up against 1, down to the last bits
        xs.push_back(-1.0 + i * 1e-17 * i * i);
    }
    const auto fast = apply_lanes(xs, [](test_vd x) { return facet_lanes_arc_cos<test_lanes>(x); });
    for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(fast[k], arc_cos(xs[k])) << xs[k];
    double worst = 0.0;
    for (std::size_t k = 6; k < xs.size(); ++k)
        worst = std::max(worst, std::fabs(fast[k] - arc_cos(xs[k])));
    EXPECT_LE(worst, 4.0 * 2.220446049250313e-16);
}

// A closed box in the facet frame (x north, y east, z down), each side cut into k by k squares
// of two triangles, every vertex on a 2.5 m grid so that its planes and level edges are exact.
// `shear` tilts it: z grows by shear times x.
struct fine_body {
    std::vector<double> vx, vy, vz, ex, ey, ez;  // 4 and 3 entries a triangle
    std::vector<facet_face> faces;
    int triangles = 0;
};

fine_body make_fine_box(int k, double x0, double y0, double z0, double step, double shear,
                        bool want_magnetic, float mx, float my, float mz) {
    fine_body b;
    // Side (axis, high) of the box: a fixed axis and value, two running axes; corners in an
    // order that faces outward.
    for (int axis = 0; axis < 3; ++axis)
        for (int high = 0; high < 2; ++high)
            for (int i = 0; i < k; ++i)
                for (int j = 0; j < k; ++j) {
                    std::array<double, 3> c[4];
                    const int u = (axis + 1) % 3, v = (axis + 2) % 3;
                    const int di[4] = {0, 1, 1, 0}, dj[4] = {0, 0, 1, 1};
                    for (int q = 0; q < 4; ++q) {
                        double w[3];
                        w[axis] = high * k * step;
                        w[u] = (i + di[q]) * step;
                        w[v] = (j + dj[q]) * step;
                        c[q] = {x0 + w[0], y0 + w[1], z0 + w[2] + shear * w[0]};
                    }
                    const int order_out[4] = {0, 3, 2, 1}, order_in[4] = {0, 1, 2, 3};
                    const int* o = high ? order_in : order_out;
                    for (const auto& t : {std::array<int, 3>{o[0], o[1], o[2]},
                                          std::array<int, 3>{o[0], o[2], o[3]}}) {
                        for (int r = 0; r < 4; ++r) {  // the fourth entry closes the triangle
                            const auto& p = c[t[static_cast<std::size_t>(r % 3)]];
                            b.vx.push_back(p[0]);
                            b.vy.push_back(p[1]);
                            b.vz.push_back(p[2]);
                        }
                        ++b.triangles;
                    }
                }
    b.ex.resize(3 * static_cast<std::size_t>(b.triangles));
    b.ey.resize(b.ex.size());
    b.ez.resize(b.ex.size());
    for (std::size_t t = 0; t < static_cast<std::size_t>(b.triangles); ++t) {
        facet_face face;
        if (prepare_facet(3, &b.vx[4 * t], &b.vy[4 * t], &b.vz[4 * t], &b.ex[3 * t], &b.ey[3 * t],
                          &b.ez[3 * t], want_magnetic, mx, my, mz, face))
            b.faces.push_back(face);
    }
    return b;
}

// 2,000 stations on a line across the box, then stations in the plane of its top (z = 10) off
// the grid lines, and stations on the lines of top edges (y on the grid, south of the box).
struct station_set {
    std::vector<double> x, y, z;
    std::size_t line = 0;
    facet_stations view() const { return {x.size(), x.data(), y.data(), z.data()}; }
};

station_set make_stations_for_box() {
    station_set s;
    for (int k = 0; k < 2000; ++k) {
        s.x.push_back(3.7 + 0.01 * k);
        s.y.push_back(-500.0 + 0.5 * k);
        s.z.push_back(-0.3 * std::sin(0.01 * k));
    }
    s.line = s.x.size();
    for (int k = 0; k < 37; ++k) {  // in the top plane, south of the box, between grid lines
        s.x.push_back(-3.1 - 0.37 * k);
        s.y.push_back(1.25 + 2.5 * (k % 3));
        s.z.push_back(10.0);
    }
    for (int k = 0; k < 23; ++k) {  // on the line of a level top edge running north
        s.x.push_back(-30.0 - 7.0 * k);
        s.y.push_back(2.5 * (k % 4));
        s.z.push_back(10.0);
    }
    return s;
}

struct sums4 {
    std::vector<double> hx, hy, hz, g;
    explicit sums4(std::size_t n) : hx(n, 0.0), hy(n, 0.0), hz(n, 0.0), g(n, 0.0) {}
    facet_sums<double> view() { return {hx.data(), hy.data(), hz.data(), g.data()}; }
};

// The largest distance in ulps between two sums over all four channels at station k.
std::int64_t ulps_at(const sums4& a, const sums4& b, std::size_t k) {
    return std::max({ulps(a.hx[k], b.hx[k]), ulps(a.hy[k], b.hy[k]), ulps(a.hz[k], b.hz[k]),
                     ulps(a.g[k], b.g[k])});
}

// Sums every face at every station; `isa` portable, avx2 or avx512 take the block kernel, and
// automatic with `reference` set takes the reference kernel.
sums4 sum_body(const fine_body& b, const station_set& s, bool reference, facet_block_isa isa) {
    sums4 out(s.x.size());
    const facet_stations st = s.view();
    for (const facet_face& f : b.faces) {
        if (reference)
            facet_kernel_reference(f, st, 0, st.count, true, true, out.view());
        else
            facet_kernel(f, st, 0, st.count, true, true, out.view(), isa);
    }
    return out;
}

TEST(facet_fast_path, every_block_width_gives_the_same_bits) {
    const fine_body b = make_fine_box(6, 0.0, 0.0, 10.0, 2.5, 0.35, true, 1.5f, -0.5f, 2.0f);
    const station_set s = make_stations_for_box();
    const sums4 portable = sum_body(b, s, false, facet_block_isa::portable);
    for (const facet_block_isa isa : {facet_block_isa::avx2, facet_block_isa::avx512}) {
        if (!facet_block_isa_available(isa)) continue;
        const sums4 wide = sum_body(b, s, false, isa);
        for (std::size_t k = 0; k < s.x.size(); ++k) ASSERT_EQ(ulps_at(wide, portable, k), 0) << k;
    }
}

TEST(facet_fast_path, large_body_within_one_float_ulp_of_the_reference) {
    // 16 by 16 squares a side: 3,072 triangles, sloping, at 2,060 stations.
    for (const double shear : {0.0, 0.35}) {
        const fine_body b = make_fine_box(16, 0.0, 0.0, 10.0, 2.5, shear, true, 1.5f, -0.5f, 2.0f);
        ASSERT_EQ(b.triangles, 3072);
        const station_set s = make_stations_for_box();
        const sums4 ref = sum_body(b, s, true, facet_block_isa::automatic);
        const sums4 fast = sum_body(b, s, false, facet_block_isa::automatic);
        int worst = 0, differing = 0;
        for (std::size_t k = 0; k < s.x.size(); ++k) {
            const double pairs[4][2] = {{fast.hx[k], ref.hx[k]},
                                        {fast.hy[k], ref.hy[k]},
                                        {fast.hz[k], ref.hz[k]},
                                        {fast.g[k], ref.g[k]}};
            for (const auto& p : pairs) {
                ASSERT_TRUE(std::isfinite(p[1])) << k;
                const int d = float_ulps(static_cast<float>(p[0]), static_cast<float>(p[1]));
                worst = std::max(worst, d);
                differing += d != 0 ? 1 : 0;
            }
        }
        EXPECT_LE(worst, 1) << "shear " << shear;
        // Ties of float rounding are rare: nearly every value is the very same float.
        EXPECT_LT(differing, static_cast<int>(s.x.size()) / 20) << "shear " << shear;
    }
}

TEST(facet_fast_path, stations_on_edge_lines_and_in_face_planes_follow_the_reference) {
    // One face at a time. A station on the line of one of the face's edges is redone by the
    // reference path from where it stands, so its bits are the reference's; a station in the
    // face's plane and clear of its edge lines has no solid angle and no attraction.
    const fine_body b = make_fine_box(3, 0.0, 0.0, 10.0, 2.5, 0.0, true, 0.5f, 1.0f, 2.0f);
    const station_set s = make_stations_for_box();
    const facet_stations st = s.view();
    int on_line = 0, in_plane = 0;
    for (const facet_face& f : b.faces) {
        sums4 ref(st.count), fast(st.count);
        facet_kernel_reference(f, st, 0, st.count, true, true, ref.view());
        facet_kernel(f, st, 0, st.count, true, true, fast.view());
        const bool top = f.vz[0] == 10.0 && f.vz[1] == 10.0 && f.vz[2] == 10.0;
        for (std::size_t k = s.line; k < st.count; ++k) {
            bool edge_on_line = false;  // an edge of this face running north along y = s.y[k]
            for (int e = 0; e < 3; ++e)
                edge_on_line = edge_on_line || (top && f.vy[e] == s.y[k] && f.vy[e + 1] == s.y[k]);
            if (edge_on_line) {
                ++on_line;
                EXPECT_EQ(ulps_at(fast, ref, k), 0) << k;
            }
            EXPECT_EQ(fast.g[k] == 0.0, ref.g[k] == 0.0) << k;
            if (top && k < s.line + 37 && ref.g[k] == 0.0) {
                ++in_plane;
                EXPECT_EQ(fast.hz[k], 0.0) << k;  // n omega with omega 0, and l = m = 0
            }
            // Elsewhere the arc tangents and logarithms differ in their last bits, and a face's
            // terms (solid angles up to 2 pi, metres) cancel: an absolute tolerance.
            EXPECT_NEAR(fast.hx[k], ref.hx[k], 1e-13) << k;
            EXPECT_NEAR(fast.g[k], ref.g[k], 1e-13) << k;
        }
    }
    EXPECT_GT(on_line, 20);
    EXPECT_GT(in_plane, 20);
}

TEST(facet_fast_path, split_ranges_and_float_sums_match_one_pass) {
    // Ranges that start mid-block and end in a short tail give the same bits as one pass, and
    // the float rows of the per-face path round each addition just as the reference does.
    const fine_body b = make_fine_box(4, -5.0, 3.0, 8.0, 2.5, 0.2, true, 1.0f, 2.0f, -1.0f);
    const station_set s = make_stations_for_box();
    const facet_stations st = s.view();
    sums4 whole(st.count), pieces(st.count);
    const std::size_t cuts[] = {0, 3, 261, 262, 1001, 1999, 2030, st.count};
    for (const facet_face& f : b.faces) {
        facet_kernel(f, st, 0, st.count, true, true, whole.view());
        for (std::size_t c = 0; c + 1 < std::size(cuts); ++c)
            facet_kernel(f, st, cuts[c], cuts[c + 1], true, true, pieces.view());
    }
    for (std::size_t k = 0; k < st.count; ++k) ASSERT_EQ(ulps_at(whole, pieces, k), 0) << k;

    std::vector<float> fg(st.count, 0.0f), rg(st.count, 0.0f), fh(st.count, 0.0f),
        rh(st.count, 0.0f);
    for (const facet_face& f : b.faces) {
        facet_kernel(f, st, 0, st.count, true, true,
                     facet_sums<float>{nullptr, nullptr, fh.data(), fg.data()});
        facet_kernel_reference(f, st, 0, st.count, true, true,
                               facet_sums<float>{nullptr, nullptr, rh.data(), rg.data()});
    }
    int worst = 0;
    for (std::size_t k = 0; k < st.count; ++k)
        worst = std::max({worst, float_ulps(fg[k], rg[k]), float_ulps(fh[k], rh[k])});
    EXPECT_LE(worst, 1);
}

}  // namespace
}  // namespace trensil
