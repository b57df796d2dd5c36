// The facet engine over a block of stations at once: the same per-station terms as the scalar
// path (solid angle, edge sums P, Q, R, distance from the face's plane), computed lane by lane in
// vectors of doubles. Every sum, product, quotient and square root outside the arc cosine and
// the logarithm is the scalar path's operation in the scalar path's order, so those bits agree
// exactly, and so does every decision (side of the plane, edge-line test, sign changes); the arc
// cosine and logarithm are this file's own (facet_lanes_arc_cos, facet_lanes_log), within a few
// units in the last place of the scalar path's in double precision. A station that needs the move
// off an edge line is flagged and left to the scalar path, which redoes the whole face for it
// from each moved position; no lane here ever works from a moved station.
//
// This header is compiled into translation units built for different instruction sets, so it
// includes nothing but the language's builtins and keeps everything it defines internal.
#pragma once

#include <cstddef>
#include <cstdint>

namespace trensil {

// Faces of more vertices than this are left to the scalar path.
inline constexpr int facet_block_max_vertices = 8;

// One prepared face as the block kernel reads it (vertex arrays closed to n + 1, from vertex 1).
struct facet_block_face {
    int num_vertices = 0;
    const double* vx = nullptr;
    const double* vy = nullptr;
    const double* vz = nullptr;
    const double* ex = nullptr;
    const double* ey = nullptr;
    const double* ez = nullptr;
    double l = 0.0, m = 0.0, n = 0.0;
};

// Terms of one face at stations [0, count): x, y, z in, one entry per station out. retry[k] is 1
// where station k lies within the closeness limit of an edge line; its other outputs are then
// meaningless.
struct facet_block_terms {
    double* omega;
    double* P;
    double* Q;
    double* R;
    double* d;
    unsigned char* retry;
};

using facet_block_function = void (*)(const facet_block_face& face, const double* x,
                                      const double* y, const double* z, std::size_t count,
                                      const facet_block_terms& out);

// The portable block kernel (two lanes, any machine) and, on x86-64 with GCC, the AVX2 (four
// lanes) and AVX-512 (eight lanes) ones. All three give the same bits.
void facet_block_portable(const facet_block_face& face, const double* x, const double* y,
                          const double* z, std::size_t count, const facet_block_terms& out);
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define TRENSIL_FACET_X86_LANES 1
void facet_block_avx2(const facet_block_face& face, const double* x, const double* y,
                      const double* z, std::size_t count, const facet_block_terms& out);
void facet_block_avx512(const facet_block_face& face, const double* x, const double* y,
                        const double* z, std::size_t count, const facet_block_terms& out);
#endif

namespace {

// Vectors of doubles `VD` and the matching masks `VI` (all bits set where true) as GCC vector
// extensions: the operators act lane by lane and compile to the instruction set of the
// translation unit that declares the two types.
template <class VD, class VI>
struct facet_lanes_base {
    using vd = VD;
    using vi = VI;
    static constexpr int width = static_cast<int>(sizeof(VD) / sizeof(double));
    static_assert(sizeof(VD) == sizeof(VI));

    static vd splat(double c) { return vd{} + c; }
    static vd load(const double* p) {
        vd v = {};
        __builtin_memcpy(&v, p, sizeof v);
        return v;
    }
    static void store(double* p, vd v) { __builtin_memcpy(p, &v, sizeof v); }
    static vd select(vi mask, vd a, vd b) { return mask ? a : b; }
    static bool any(vi mask) {
        for (int i = 0; i < width; ++i)
            if (mask[i] != 0) return true;
        return false;
    }
    static vi bits(vd v) { return __builtin_bit_cast(vi, v); }
    static vd from_bits(vi v) { return __builtin_bit_cast(vd, v); }
};

// Arc tangent of a / b for a >= 0, b >= 0 in double precision for every lane, without forming
// a / b first: reduced to |r| <= 0.66 by r = a / b, (a - b) / (a + b) (pi/4 added back) or
// -b / a (pi/2 added back), then r + r^3 P(r^2)/Q(r^2) with the rational (4, 5) approximation
// of Moshier (1989), the low part of pi/2 added back. In: a, b not both 0 (b = 0 gives pi/2);
// out: radians in [0, pi/2]; NaN stays NaN.
template <class L>
[[gnu::always_inline]] inline typename L::vd facet_lanes_atan_ratio(typename L::vd a,
                                                                    typename L::vd b) {
    using vd = typename L::vd;
    constexpr double tan_3pi_8 = 2.41421356237309504880;
    constexpr double more_bits = 6.123233995736765886130e-17;
    constexpr double pi_2 = 1.57079632679489661923;
    constexpr double pi_4 = 0.78539816339744830962;
    const auto big = a > tan_3pi_8 * b;
    const auto mid = ~big & (a > 0.66 * b);
    const vd num = L::select(big, -b, L::select(mid, a - b, a));
    const vd den = L::select(big, a, L::select(mid, a + b, b));
    const vd r = num / den;
    const vd z = r * r;
    const vd p = (((-8.750608600031904122785e-01 * z - 1.615753718733365076637e+01) * z -
                   7.500855792314704667340e+01) *
                      z -
                  1.228866684490136173410e+02) *
                     z -
                 6.485021904942025371773e+01;
    const vd q = ((((z + 2.485846490142306297962e+01) * z + 1.650270098316988542046e+02) * z +
                   4.328810604912902668951e+02) *
                      z +
                  4.853903996359136964868e+02) *
                     z +
                 1.945506571482613964425e+02;
    vd t = r * (z * p / q) + r;
    t = t + L::select(big, L::splat(more_bits),
                      L::select(mid, L::splat(0.5 * more_bits), L::splat(0.0)));
    const vd base = L::select(big, L::splat(pi_2), L::select(mid, L::splat(pi_4), L::splat(0.0)));
    return base + t;
}

// Arc tangent of any double: atan(|x| / 1) with the sign of x. atan(+-inf) = +-pi/2.
template <class L>
[[gnu::always_inline]] inline typename L::vd facet_lanes_atan(typename L::vd x) {
    const auto sign = L::bits(x) & static_cast<std::int64_t>(0x8000000000000000);
    const typename L::vd y =
        facet_lanes_atan_ratio<L>(L::from_bits(L::bits(x) & ~sign), L::splat(1.0));
    return L::from_bits(L::bits(y) | sign);
}

// The facet engine's arc cosine: pi/2 + atan(-x / sqrt(1 - x^2)) for |x| < 1, the arc tangent
// taken as atan_ratio(|x|, sqrt(1 - x^2)) with the sign of -x; 0 for x >= 1; pi below -1 and
// for NaN. Out: radians in [0, pi].
template <class L>
[[gnu::always_inline]] inline typename L::vd facet_lanes_arc_cos(typename L::vd x) {
    constexpr double pi = 3.14159265358979;
    const auto sign = L::bits(x) & static_cast<std::int64_t>(0x8000000000000000);
    const typename L::vd ax = L::from_bits(L::bits(x) & ~sign);
    const typename L::vd t = facet_lanes_atan_ratio<L>(ax, L::sqrt(1.0 - x * x));
    const typename L::vd inside = pi / 2.0 + L::select(sign != 0, t, -t);
    return L::select(ax < 1.0, inside, L::select(x >= 1.0, L::splat(0.0), L::splat(pi)));
}

// Natural logarithm in double precision for every lane: x = 2^k f with f in [sqrt(2)/2,
// sqrt(2)), s = (f - 1)/(f + 1), ln f = 2s + s^3 R(s^2) with the polynomial of the freely
// distributable mathematics library (Sun, 1993), and k ln 2 in two parts. Lanes that are not
// positive normal finite numbers (0, negative, subnormal, infinite, NaN) are taken by the C
// library one at a time, so those values are the library's.
template <class L>
[[gnu::always_inline]] inline typename L::vd facet_lanes_log(typename L::vd x) {
    using vd = typename L::vd;
    using vi = typename L::vi;
    constexpr double ln2_hi = 6.93147180369123816490e-01;
    constexpr double ln2_lo = 1.90821492927058770002e-10;
    constexpr double smallest_normal = 2.2250738585072014e-308;
    constexpr double largest = 1.7976931348623157e308;
    const auto special = ~((x >= smallest_normal) & (x <= largest));
    const vi xb = L::bits(x);
    const vi biased = xb >> 52;  // positive lanes: the biased exponent
    vd f = L::from_bits((xb & 0x000FFFFFFFFFFFFF) | 0x3FE0000000000000);  // [0.5, 1)
    // k = biased - 1022, made exact in double by the 2^52 trick.
    vd k = L::from_bits(biased | 0x4330000000000000) - (4503599627370496.0 + 1022.0);
    const auto low = f < 0.70710678118654752440;
    f = L::select(low, f + f, f);
    k = L::select(low, k - 1.0, k);
    f = f - 1.0;
    const vd s = f / (2.0 + f);
    const vd s2 = s * s;
    const vd s4 = s2 * s2;
    const vd t1 = s2 * (6.666666666666735130e-01 +
                        s4 * (2.857142874366239149e-01 +
                              s4 * (1.818357216161805012e-01 + s4 * 1.479819860511658591e-01)));
    const vd t2 = s4 * (3.999999999940941908e-01 +
                        s4 * (2.222219843214978396e-01 + s4 * 1.531383769920937332e-01));
    const vd R = t1 + t2;
    const vd hfsq = 0.5 * f * f;
    vd y = k * ln2_hi - ((hfsq - (s * (hfsq + R) + k * ln2_lo)) - f);
    if (L::any(special)) {
        for (int i = 0; i < L::width; ++i)
            if (special[i] != 0) y[i] = __builtin_log(x[i]);
    }
    return y;
}

// Terms of one flat face at stations [0, count), `L::width` stations at a time, the last block
// padded by repeating the last station: face_terms of the scalar path, lane by lane.
// In: vertices and stations in metres (x north, y east, z down), unit normal (l, m, n). Out: omega
// in steradians, (P, Q, R) = sum over edges of I_i e_i and d in metres, where
//   I_i = (1/L) ln((|a + e| + L + a.e/L) / (r1 + a.e/L)) (Blakely 1995; Singh and Guptasarma 2001).
// A station in the face's plane has omega 0; one near an edge line is flagged for the scalar path.
// `Vertices` fixes the vertex count at compile time (triangles and quadrilaterals then run from
// registers); 0 reads it from the face.
template <class L, int Vertices>
void facet_block_range_of(const facet_block_face& f, const double* xs, const double* ys,
                          const double* zs, std::size_t count, const facet_block_terms& out) {
    using vd = typename L::vd;
    using vi = typename L::vi;
    constexpr int W = L::width;
    constexpr double pi = 3.14159265358979;
    constexpr double two_pi = 6.28318530717958;
    const int nv = Vertices > 0 ? Vertices : f.num_vertices;
    // Per edge: L^2, L and 1/L, as the scalar path forms them.
    double len2[facet_block_max_vertices + 1], len[facet_block_max_vertices + 1],
        inv_len[facet_block_max_vertices + 1];
    for (int i = 1; i <= nv; ++i) {
        const double ex = f.ex[i - 1], ey = f.ey[i - 1], ez = f.ez[i - 1];
        len2[i] = ex * ex + ey * ey + ez * ez;
        len[i] = __builtin_sqrt(len2[i]);
        inv_len[i] = 1.0 / len[i];
    }
    const double corners_pi = (nv - 2) * pi;

    for (std::size_t first = 0; first < count; first += W) {
        vd sx = {}, sy = {}, sz = {};
        if (first + W <= count) {
            sx = L::load(xs + first);
            sy = L::load(ys + first);
            sz = L::load(zs + first);
        } else {
            for (int i = 0; i < W; ++i) {
                const std::size_t k = first + static_cast<std::size_t>(i) < count
                                          ? first + static_cast<std::size_t>(i)
                                          : count - 1;
                sx[i] = xs[k];
                sy[i] = ys[k];
                sz[i] = zs[k];
            }
        }
        // Station to vertex vectors 1..n + 1 and their lengths.
        vd ax[facet_block_max_vertices + 2], ay[facet_block_max_vertices + 2],
            az[facet_block_max_vertices + 2], dist[facet_block_max_vertices + 2];
        for (int i = 1; i <= nv + 1; ++i) {
            ax[i] = f.vx[i - 1] - sx;
            ay[i] = f.vy[i - 1] - sy;
            az[i] = f.vz[i - 1] - sz;
            dist[i] = L::sqrt(ax[i] * ax[i] + ay[i] * ay[i] + az[i] * az[i]);
        }
        // Per edge k: rel(k) x rel(k + 1), its length and its unit vector.
        vd cl[facet_block_max_vertices + 1], ux[facet_block_max_vertices + 1],
            uy[facet_block_max_vertices + 1], uz[facet_block_max_vertices + 1];
        for (int k = 1; k <= nv; ++k) {
            const vd c1 = ay[k] * az[k + 1] - az[k] * ay[k + 1];
            const vd c2 = az[k] * ax[k + 1] - ax[k] * az[k + 1];
            const vd c3 = ax[k] * ay[k + 1] - ay[k] * ax[k + 1];
            cl[k] = L::sqrt(c1 * c1 + c2 * c2 + c3 * c3);
            ux[k] = c1 / cl[k];
            uy[k] = c2 / cl[k];
            uz[k] = c3 / cl[k];
        }
        // The vector to vertex 1 once more, as ax[1], ay[1], az[1] hold it.
        const vd d = (f.vx[0] - sx) * f.l + (f.vy[0] - sy) * f.m + (f.vz[0] - sz) * f.n;

        // Solid angle from the corner angles. At corner b between edges `before` (a x b) and
        // `after` (b x c), both of the scalar path's branches give cosine = -(before . after);
        // the side test is a . after when the station is on the normal's side, else
        // -(c . before).
        vd sum = L::splat(0.0);
        for (int i = 1; i <= nv; ++i) {
            // Corner i + 1 from vertices i and i + 2 and edges i and i + 1; the closing corner
            // (vertex 1) from vertices n and 2 and edges n and 1.
            const int va = i, c = i < nv ? i + 2 : 2, eb = i, after = i < nv ? i + 1 : 1;
            const vd perp = ax[va] * f.l + ay[va] * f.m + az[va] * f.n;
            const vd dot_ba = ux[eb] * ux[after] + uy[eb] * uy[after] + uz[eb] * uz[after];
            const vd cosine = -dot_ba;
            const vd test_front = ax[va] * ux[after] + ay[va] * uy[after] + az[va] * uz[after];
            const vd back_dot = ax[c] * ux[eb] + ay[c] * uy[eb] + az[c] * uz[eb];
            const vi front = perp > 0.0;
            const vi turned = L::select(front, test_front, -back_dot) < 0.0;
            const vd angle = facet_lanes_arc_cos<L>(cosine);
            const vd corner = L::select(turned, two_pi - angle, angle);
            sum = sum + L::select(perp == 0.0, L::splat(0.0), corner);
        }
        const vd side = L::select(d >= 0.0, L::splat(1.0), L::splat(-1.0));
        const vd omega = L::select(d != 0.0, -side * (sum - corners_pi), L::splat(0.0));

        // Line integrals of 1/r along the edges.
        vd P = L::splat(0.0), Q = L::splat(0.0), R = L::splat(0.0);
        vi retry = {};
        for (int i = 1; i <= nv; ++i) {
            const vd r1 = dist[i], r2 = dist[i + 1];
            // Closeness sqrt(|b x a|^2 / (r2 r1)) < 0.1. Clear of the limit when the square
            // beats 0.0102 times the product (which keeps the quotient above 0.0101 through
            // every rounding); otherwise decided exactly as the scalar path does.
            const vd cl2 = cl[i] * cl[i], r12 = r2 * r1;
            const vi maybe_close = ~(cl2 > 0.0102 * r12);
            if (L::any(maybe_close)) retry |= maybe_close & (L::sqrt(cl2 / r12) < 0.1);
            const double ex = f.ex[i - 1], ey = f.ey[i - 1], ez = f.ez[i - 1];
            vd b2 = 2.0 * (ax[i] * ex + ay[i] * ey + az[i] * ez);
            vd bh = b2 / len[i] / 2.0;
            const vi flip = (r1 + bh) == 0.0;
            bh = L::select(flip, -bh, bh);
            b2 = L::select(flip, -b2, b2);
            const vd t = L::select(flip, L::splat(-1.0), L::splat(1.0));
            const vd den = r1 + bh;
            const vd ratio = (L::sqrt(len2[i] + b2 + r1 * r1) + len[i] + bh) / den;
            const vd integral =
                t * L::select(den != 0.0, inv_len[i] * facet_lanes_log<L>(ratio), L::splat(0.0));
            P = P + integral * ex;
            Q = Q + integral * ey;
            R = R + integral * ez;
        }

        const int lanes = first + W <= count ? W : static_cast<int>(count - first);
        if (lanes == W) {
            L::store(out.omega + first, omega);
            L::store(out.P + first, P);
            L::store(out.Q + first, Q);
            L::store(out.R + first, R);
            L::store(out.d + first, d);
        } else {
            for (int i = 0; i < lanes; ++i) {
                const std::size_t k = first + static_cast<std::size_t>(i);
                out.omega[k] = omega[i];
                out.P[k] = P[i];
                out.Q[k] = Q[i];
                out.R[k] = R[i];
                out.d[k] = d[i];
            }
        }
        for (int i = 0; i < lanes; ++i)
            out.retry[first + static_cast<std::size_t>(i)] = retry[i] != 0 ? 1 : 0;
    }
}

template <class L>
void facet_block_range(const facet_block_face& f, const double* xs, const double* ys,
                       const double* zs, std::size_t count, const facet_block_terms& out) {
    if (f.num_vertices == 3)
        facet_block_range_of<L, 3>(f, xs, ys, zs, count, out);
    else if (f.num_vertices == 4)
        facet_block_range_of<L, 4>(f, xs, ys, zs, count, out);
    else
        facet_block_range_of<L, 0>(f, xs, ys, zs, count, out);
}

}  // namespace
}  // namespace trensil
