// The facet engine: per face, the solid angle at the station from the corner angles of the
// spherical polygon the face projects to, and the line integral of 1/r along each edge.
#include "response/facet_engine.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <vector>

#include "response/facet_engine_block.h"

namespace trensil {

void cross_with_length(double a1, double a2, double a3, double b1, double b2, double b3, double& c1,
                       double& c2, double& c3, double& length) {
    c1 = a2 * b3 - a3 * b2;
    c2 = a3 * b1 - a1 * b3;
    c3 = a1 * b2 - a2 * b1;
    length = std::sqrt(c1 * c1 + c2 * c2 + c3 * c3);
}

double arc_cos(double x) {
    if (std::fabs(x) < 1.0) return facet_pi / 2.0 + std::atan(-x / std::sqrt(1.0 - x * x));
    if (x >= 1.0) return 0.0;
    return facet_pi;
}

double facet_corner_angle(const vec3& a, const vec3& b, const vec3& c, const vec3& normal,
                          int& sign_out) {
    const double perp = a[0] * normal[0] + a[1] * normal[1] + a[2] * normal[2];
    sign_out = 1;
    if (perp == 0.0) return 0.0;
    // Walk the corner so that the angle is measured on the side the station sees.
    const vec3& p = perp > 0.0 ? c : a;
    const vec3& q = perp > 0.0 ? a : c;
    double u1, u2, u3, ulen;
    cross_with_length(b[0], b[1], b[2], p[0], p[1], p[2], u1, u2, u3, ulen);
    u1 /= ulen;
    u2 /= ulen;
    u3 /= ulen;
    double w1, w2, w3, wlen;
    cross_with_length(q[0], q[1], q[2], b[0], b[1], b[2], w1, w2, w3, wlen);
    w1 = -w1 / wlen;
    w2 = -w2 / wlen;
    w3 = -w3 / wlen;
    const double test = q[0] * u1 + q[1] * u2 + q[2] * u3;
    const double cosine = u1 * w1 + u2 * w2 + u3 * w3;
    const double angle = arc_cos(cosine);
    if (test < 0.0) {
        sign_out = -1;
        return facet_two_pi - angle;
    }
    return angle;
}

bool prepare_facet(int num_vertices, double* vx1, double* vy1, double* vz1, double* ex1,
                   double* ey1, double* ez1, bool want_magnetic, float mx, float my, float mz,
                   facet_face& face) {
    const int nv = num_vertices;
    // Indexed from 1 as the face tables are: vx(i) is vertex i.
    auto vx = [vx1](int i) -> double& { return vx1[i - 1]; };
    auto vy = [vy1](int i) -> double& { return vy1[i - 1]; };
    auto vz = [vz1](int i) -> double& { return vz1[i - 1]; };
    auto ex = [ex1](int i) -> double& { return ex1[i - 1]; };
    auto ey = [ey1](int i) -> double& { return ey1[i - 1]; };
    auto ez = [ez1](int i) -> double& { return ez1[i - 1]; };
    vx(nv + 1) = vx(1);
    vy(nv + 1) = vy(1);
    vz(nv + 1) = vz(1);
    for (int i = 1; i <= nv; ++i) {
        ex(i) = vx(i + 1) - vx(i);
        ey(i) = vy(i + 1) - vy(i);
        ez(i) = vz(i + 1) - vz(i);
    }
    // Doubled area vector by a fan from vertex 1.
    double nx = 0.0, ny = 0.0, nz = 0.0;
    for (int i = 2; i <= nv - 1; ++i) {
        double c1, c2, c3, len;
        cross_with_length(vx(i) - vx(1), vy(i) - vy(1), vz(i) - vz(1), vx(i + 1) - vx(1),
                          vy(i + 1) - vy(1), vz(i + 1) - vz(1), c1, c2, c3, len);
        nx += c1;
        ny += c2;
        nz += c3;
    }
    const double area = std::sqrt(nx * nx + ny * ny + nz * nz);
    if (area == 0.0) return false;
    face = facet_face{};
    face.num_vertices = nv;
    face.vx = vx1;
    face.vy = vy1;
    face.vz = vz1;
    face.ex = ex1;
    face.ey = ey1;
    face.ez = ez1;
    face.l = nx / area;
    face.m = ny / area;
    face.n = nz / area;
    if (want_magnetic) {
        face.p = static_cast<double>(mx) * face.l + static_cast<double>(my) * face.m +
                 static_cast<double>(mz) * face.n;
        if (std::fabs(face.p) < 1e-6) return false;
    }
    return true;
}

namespace {

// What one face gives at one station: the solid angle omega, the edge sums P, Q, R and the
// signed distance d of the station from the face's plane.
struct station_terms {
    double omega = 0.0;
    double P = 0.0, Q = 0.0, R = 0.0;
    double d = 0.0;
};

// Per station: vectors from the station to vertices 1..n + 1 and their lengths, and for each
// edge k the product rel(k) x rel(k + 1), its length and its unit vector. Each product serves
// the corner angles at both ends of the edge and the edge's closeness test; b x a is exactly
// -(a x b), so sharing them gives the same bits as working each corner out alone.
struct station_scratch {
    std::vector<vec3> rel;
    std::vector<double> dist;
    std::vector<double> cross_length;
    std::vector<vec3> cross_unit;
    explicit station_scratch(int nv)
        : rel(static_cast<std::size_t>(nv) + 2),
          dist(static_cast<std::size_t>(nv) + 2),
          cross_length(static_cast<std::size_t>(nv) + 2),
          cross_unit(static_cast<std::size_t>(nv) + 2) {}
};

// facet_corner_angle at corner b from the unit products of its two edges: before = a x b and
// after = b x c, normalised.
double shared_corner_angle(const vec3& a, const vec3& c, const vec3& before, const vec3& after,
                           const vec3& normal) {
    const double perp = a[0] * normal[0] + a[1] * normal[1] + a[2] * normal[2];
    if (perp == 0.0) return 0.0;
    vec3 u, w;
    const vec3* q = nullptr;
    if (perp > 0.0) {
        u = after;                                     // b x c
        w = vec3{-before[0], -before[1], -before[2]};  // -(a x b)
        q = &a;
    } else {
        u = vec3{-before[0], -before[1], -before[2]};  // b x a
        w = after;                                     // -(c x b)
        q = &c;
    }
    const double test = (*q)[0] * u[0] + (*q)[1] * u[1] + (*q)[2] * u[2];
    const double cosine = u[0] * w[0] + u[1] * w[1] + u[2] * w[2];
    const double angle = arc_cos(cosine);
    return test < 0.0 ? facet_two_pi - angle : angle;
}

// Field and attraction terms of a flat face of uniform pole density at one station.
// In: vertices and station in metres (x north, y east, z down), unit normal (l, m, n).
// Out: omega in steradians, (P, Q, R) = sum over edges of I_i e_i in metres, d in metres, where
//   I_i = (1/L) ln((|a + e| + L + a.e/L) / (r1 + a.e/L)) is the integral of 1/r along edge i.
// Solid angle and edge line integrals after Blakely (1995) and Singh and Guptasarma (2001).
// A station in the face's plane has omega 0; one on the line of an edge is moved off it.
void face_terms(const facet_face& f, double sx, double sy, double sz, station_scratch& s,
                station_terms& out) {
    const int nv = f.num_vertices;
    // The face arrays are handed in from vertex 1; X(i) reads vertex i.
    auto X = [&f](int i) { return f.vx[i - 1]; };
    auto Y = [&f](int i) { return f.vy[i - 1]; };
    auto Z = [&f](int i) { return f.vz[i - 1]; };
    const vec3 normal{f.l, f.m, f.n};
    int retry = 0;
restart:
    ++retry;
    for (int i = 1; i <= nv + 1; ++i) {
        vec3& a = s.rel[static_cast<std::size_t>(i)];
        a = vec3{X(i) - sx, Y(i) - sy, Z(i) - sz};
        s.dist[static_cast<std::size_t>(i)] = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    }
    auto rel = [&s](int i) -> const vec3& { return s.rel[static_cast<std::size_t>(i)]; };
    for (int k = 1; k <= nv; ++k) {
        const vec3& a = rel(k);
        const vec3& b = rel(k + 1);
        double c1, c2, c3, len;
        cross_with_length(a[0], a[1], a[2], b[0], b[1], b[2], c1, c2, c3, len);
        s.cross_length[static_cast<std::size_t>(k)] = len;
        s.cross_unit[static_cast<std::size_t>(k)] = vec3{c1 / len, c2 / len, c3 / len};
    }
    auto unit = [&s](int k) -> const vec3& { return s.cross_unit[static_cast<std::size_t>(k)]; };
    const double d = (X(1) - sx) * f.l + (Y(1) - sy) * f.m + (Z(1) - sz) * f.n;
    const double side = d >= 0.0 ? 1.0 : -1.0;
    double omega = 0.0;
    if (std::fabs(d) != 0.0) {
        double sum = 0.0;
        for (int i = 1; i <= nv - 1; ++i)
            sum += shared_corner_angle(rel(i), rel(i + 2), unit(i), unit(i + 1), normal);
        // The closing corner at vertex 1: edges n (vertex n to n + 1 = 1) and 1.
        sum += shared_corner_angle(rel(nv), rel(2), unit(nv), unit(1), normal);
        omega = -side * (sum - (nv - 2) * facet_pi);
    }
    double P = 0.0, Q = 0.0, R = 0.0;
    // Set when the tenth try has moved the station: from the next edge on, the vectors, lengths
    // and edge test are those of the moved station, not of the position the face started from.
    bool moved = false;
    for (int i = 1; i <= nv; ++i) {
        vec3 a, b;
        double r1, r2, clen;  // clen = |b x a|
        if (!moved) {
            a = rel(i);
            b = rel(i + 1);
            r1 = s.dist[static_cast<std::size_t>(i)];
            r2 = s.dist[static_cast<std::size_t>(i) + 1];
            clen = s.cross_length[static_cast<std::size_t>(i)];
        } else {
            a = vec3{X(i) - sx, Y(i) - sy, Z(i) - sz};
            b = vec3{X(i + 1) - sx, Y(i + 1) - sy, Z(i + 1) - sz};
            r1 = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
            r2 = std::sqrt(b[0] * b[0] + b[1] * b[1] + b[2] * b[2]);
            double c1, c2, c3;
            cross_with_length(b[0], b[1], b[2], a[0], a[1], a[2], c1, c2, c3, clen);
        }
        const double closeness = std::sqrt(clen * clen / (r2 * r1));
        if (closeness < 0.1) {
            // Almost on the line of this edge: move the station down (and, for a level edge,
            // sideways by a tenth of the edge's steps with x and y crossed, growing with each
            // try) and redo the whole face from there.
            if (std::fabs(Z(i + 1) - Z(i)) < 0.1) {
                sx = sx + (Y(i + 1) - Y(i)) / 10.0 * retry;
                sy = sy + (X(i + 1) - X(i)) / 10.0 * retry;
            }
            sz = sz - 1.0;
            if (retry < 10) goto restart;
            // Tenth try: integrate this edge as it stands, from its nearer vertex, and carry on
            // from the moved position with the rest of the face. The solid angle and the
            // distance from the plane keep the values of this try.
            if (r1 > r2) a = b;
            moved = true;
        }
        const double ex = f.ex[i - 1], ey = f.ey[i - 1], ez = f.ez[i - 1];
        const double L2 = ex * ex + ey * ey + ez * ez;
        const double L = std::sqrt(L2);
        double b2 = 2.0 * (a[0] * ex + a[1] * ey + a[2] * ez);
        double bh = b2 / L / 2.0;
        double t = 1.0;
        if (r1 + bh == 0.0) {
            bh = -bh;
            b2 = -b2;
            t = -1.0;
        }
        double integral = 0.0;
        if (r1 + bh != 0.0)
            integral = (1.0 / L) * std::log((std::sqrt(L2 + b2 + r1 * r1) + L + bh) / (r1 + bh));
        integral = t * integral;
        P += integral * ex;
        Q += integral * ey;
        R += integral * ez;
    }
    out.omega = omega;
    out.P = P;
    out.Q = Q;
    out.R = R;
    out.d = d;
}

// Two lanes: plain SSE2 on any x86-64, and plain arithmetic elsewhere.
typedef double portable_vd __attribute__((vector_size(16)));
typedef std::int64_t portable_vi __attribute__((vector_size(16)));

struct portable_lanes : facet_lanes_base<portable_vd, portable_vi> {
    static vd sqrt(vd x) {
        vd r;
        for (int i = 0; i < width; ++i) r[i] = std::sqrt(x[i]);
        return r;
    }
};

// Adds one station's terms to its sums: the field components of the face's poles, and the
// attraction where the station is off the face's plane.
template <class T>
inline void add_station(const facet_face& face, std::size_t k, double omega, double P, double Q,
                        double R, double d, bool want_magnetic, bool want_gravity,
                        const facet_sums<T>& sums) {
    const double l = face.l, m = face.m, n = face.n, p = face.p;
    if (want_magnetic) {
        const double hx = p * (l * omega + n * Q - m * R);
        const double hy = p * (m * omega + l * R - n * P);
        const double hz = p * (n * omega + m * P - l * Q);
        if (sums.hx) sums.hx[k] = static_cast<T>(sums.hx[k] + hx);
        if (sums.hy) sums.hy[k] = static_cast<T>(sums.hy[k] + hy);
        if (sums.hz) sums.hz[k] = static_cast<T>(sums.hz[k] + hz);
    }
    if (want_gravity && std::fabs(d) != 0.0 && sums.g) {
        const double g = (n * omega + m * P - l * Q) * d;
        sums.g[k] = static_cast<T>(sums.g[k] - g);
    }
}

// add_station over a chunk of stations [start, start + count) whose terms are in `terms`
// (index 0 is station start), in loops free of branches: adding a zero attraction where the
// station is in the face's plane leaves the sum as it was, as skipping it does.
template <class T>
void add_chunk(const facet_face& face, std::size_t start, std::size_t count,
               const facet_block_terms& terms, bool want_magnetic, bool want_gravity,
               const facet_sums<T>& sums) {
    const double l = face.l, m = face.m, n = face.n, p = face.p;
    const double *omega = terms.omega, *P = terms.P, *Q = terms.Q, *R = terms.R, *d = terms.d;
    if (want_magnetic) {
        if (T* hx = sums.hx ? sums.hx + start : nullptr)
            for (std::size_t i = 0; i < count; ++i)
                hx[i] = static_cast<T>(hx[i] + p * (l * omega[i] + n * Q[i] - m * R[i]));
        if (T* hy = sums.hy ? sums.hy + start : nullptr)
            for (std::size_t i = 0; i < count; ++i)
                hy[i] = static_cast<T>(hy[i] + p * (m * omega[i] + l * R[i] - n * P[i]));
        if (T* hz = sums.hz ? sums.hz + start : nullptr)
            for (std::size_t i = 0; i < count; ++i)
                hz[i] = static_cast<T>(hz[i] + p * (n * omega[i] + m * P[i] - l * Q[i]));
    }
    if (want_gravity && sums.g) {
        T* g = sums.g + start;
        for (std::size_t i = 0; i < count; ++i) {
            const double term = (n * omega[i] + m * P[i] - l * Q[i]) * d[i];
            g[i] = static_cast<T>(g[i] - (d[i] != 0.0 ? term : 0.0));
        }
    }
}

std::atomic<facet_block_isa> automatic_kernel{facet_block_isa::automatic};

// The kernel that runs for `isa`: `automatic` resolved to the chosen or the widest one, and one
// the processor cannot run replaced by the portable one, so that it is never called.
facet_block_isa resolve_kernel(facet_block_isa isa) {
    if (isa == facet_block_isa::automatic) isa = automatic_kernel.load(std::memory_order_relaxed);
    if (isa == facet_block_isa::automatic) {
        static const facet_block_isa widest = [] {
            if (facet_block_isa_available(facet_block_isa::avx512)) return facet_block_isa::avx512;
            if (facet_block_isa_available(facet_block_isa::avx2)) return facet_block_isa::avx2;
            return facet_block_isa::portable;
        }();
        return widest;
    }
    return facet_block_isa_available(isa) ? isa : facet_block_isa::portable;
}

facet_block_function block_function(facet_block_isa resolved) {
#if defined(TRENSIL_FACET_X86_LANES)
    if (resolved == facet_block_isa::avx512) return &facet_block_avx512;
    if (resolved == facet_block_isa::avx2) return &facet_block_avx2;
#else
    (void)resolved;
#endif
    return &facet_block_portable;
}

}  // namespace

bool facet_block_isa_available(facet_block_isa isa) {
    switch (isa) {
        case facet_block_isa::automatic:
        case facet_block_isa::portable:
        case facet_block_isa::scalar:
            return true;
#if defined(TRENSIL_FACET_X86_LANES)
        case facet_block_isa::avx2:
            // The processor's features may not be read yet when this runs during start-up.
            __builtin_cpu_init();
            return __builtin_cpu_supports("avx2");
        case facet_block_isa::avx512:
            __builtin_cpu_init();
            return __builtin_cpu_supports("avx512f");
#else
        default:
            return false;
#endif
    }
    return false;
}

void choose_automatic_facet_kernel(facet_block_isa isa) {
    automatic_kernel.store(isa, std::memory_order_relaxed);
}

void facet_block_portable(const facet_block_face& face, const double* x, const double* y,
                          const double* z, std::size_t count, const facet_block_terms& out) {
    facet_block_range<portable_lanes>(face, x, y, z, count, out);
}

template <class T>
void facet_kernel_reference(const facet_face& face, const facet_stations& stations,
                            std::size_t first, std::size_t last, bool want_magnetic,
                            bool want_gravity, const facet_sums<T>& sums) {
    station_terms t;
    station_scratch scratch(face.num_vertices);
    for (std::size_t k = first; k < last; ++k) {
        face_terms(face, stations.x[k], stations.y[k], stations.z[k], scratch, t);
        add_station(face, k, t.omega, t.P, t.Q, t.R, t.d, want_magnetic, want_gravity, sums);
    }
}

template <class T>
void facet_kernel(const facet_face& face, const facet_stations& stations, std::size_t first,
                  std::size_t last, bool want_magnetic, bool want_gravity,
                  const facet_sums<T>& sums, facet_block_isa isa) {
    const facet_block_isa kernel = resolve_kernel(isa);
    if (kernel == facet_block_isa::scalar || face.num_vertices > facet_block_max_vertices) {
        facet_kernel_reference(face, stations, first, last, want_magnetic, want_gravity, sums);
        return;
    }
    const facet_block_function block = block_function(kernel);
    const facet_block_face bf{face.num_vertices, face.vx, face.vy, face.vz, face.ex,
                              face.ey,           face.ez, face.l,  face.m,  face.n};
    // Terms of a chunk of stations at a time, then added station by station in order.
    constexpr std::size_t chunk = 256;
    double omega[chunk], P[chunk], Q[chunk], R[chunk], d[chunk];
    unsigned char retry[chunk];
    const facet_block_terms terms{omega, P, Q, R, d, retry};
    station_terms t;
    station_scratch scratch(face.num_vertices);
    for (std::size_t start = first; start < last; start += chunk) {
        const std::size_t count = std::min(chunk, last - start);
        block(bf, stations.x + start, stations.y + start, stations.z + start, count, terms);
        // Stations on an edge line take the reference terms in place of the block's.
        for (std::size_t i = 0; i < count; ++i) {
            if (retry[i] == 0) continue;
            const std::size_t k = start + i;
            face_terms(face, stations.x[k], stations.y[k], stations.z[k], scratch, t);
            omega[i] = t.omega;
            P[i] = t.P;
            Q[i] = t.Q;
            R[i] = t.R;
            d[i] = t.d;
        }
        add_chunk(face, start, count, terms, want_magnetic, want_gravity, sums);
    }
}

template void facet_kernel<float>(const facet_face&, const facet_stations&, std::size_t,
                                  std::size_t, bool, bool, const facet_sums<float>&,
                                  facet_block_isa);
template void facet_kernel<double>(const facet_face&, const facet_stations&, std::size_t,
                                   std::size_t, bool, bool, const facet_sums<double>&,
                                   facet_block_isa);
template void facet_kernel_reference<float>(const facet_face&, const facet_stations&, std::size_t,
                                            std::size_t, bool, bool, const facet_sums<float>&);
template void facet_kernel_reference<double>(const facet_face&, const facet_stations&, std::size_t,
                                             std::size_t, bool, bool, const facet_sums<double>&);

void facet_response(int /*face_index*/, body_record& body, const profile_block& profile,
                    bool want_magnetic, bool want_gravity, float mx, float my, float mz,
                    double /*fx*/, double /*fy*/, double /*fz*/, int num_vertices,
                    array1<double>& vx, array1<double>& vy, array1<double>& vz, array1<double>& ex,
                    array1<double>& ey, array1<double>& ez) {
    facet_face face;
    if (!prepare_facet(num_vertices, &vx(1), &vy(1), &vz(1), &ex(1), &ey(1), &ez(1), want_magnetic,
                       mx, my, mz, face))
        return;
    const int count = profile.num_stations;
    if (count <= 0) return;
    std::vector<double> xs(static_cast<std::size_t>(count)), ys(xs.size()), zs(xs.size());
    const double north1 = profile.location(northing_row, 1);
    const double east1 = profile.location(easting_row, 1);
    const double elev1 = profile.location(sensor_row, 1);
    for (int k = 1; k <= count; ++k) {
        xs[static_cast<std::size_t>(k - 1)] = profile.location(northing_row, k) - north1;
        ys[static_cast<std::size_t>(k - 1)] = profile.location(easting_row, k) - east1;
        zs[static_cast<std::size_t>(k - 1)] = -(profile.location(sensor_row, k) - elev1);
    }
    const facet_stations stations{xs.size(), xs.data(), ys.data(), zs.data()};
    facet_sums<float> sums;
    if (want_magnetic) {
        sums.hx = &body.body_response(north_row, 1);
        sums.hy = &body.body_response(east_row, 1);
        sums.hz = &body.body_response(down_row, 1);
    }
    if (want_gravity) sums.g = &body.body_response(gravity_row, 1);
    facet_split_stations(stations.count, [&](std::size_t first, std::size_t last) {
        facet_kernel(face, stations, first, last, want_magnetic, want_gravity, sums);
    });
}

}  // namespace trensil
