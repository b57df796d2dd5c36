#include "response/exact_polyhedron.h"

#include <algorithm>
#include <map>
#include <utility>

#include "response/facet_engine.h"

namespace trensil {

namespace {

space_vector minus(const space_vector& a, const space_vector& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

space_vector scaled(const space_vector& a, double k) {
    return {a[0] * k, a[1] * k, a[2] * k};
}

void add_to(space_vector& a, const space_vector& b) {
    a[0] += b[0];
    a[1] += b[1];
    a[2] += b[2];
}

// Newell's normal of a face loop: twice its area vector.
space_vector area_vector(const polyhedron_body& body, const std::vector<int>& face) {
    space_vector n{0.0, 0.0, 0.0};
    const space_vector& o = body.corners[static_cast<std::size_t>(face[0])];
    for (std::size_t k = 1; k + 1 < face.size(); ++k) {
        const space_vector a = minus(body.corners[static_cast<std::size_t>(face[k])], o);
        const space_vector b = minus(body.corners[static_cast<std::size_t>(face[k + 1])], o);
        add_to(n, cross(a, b));
    }
    return n;
}

struct prepared_edge {
    int a = 0, b = 0;
    space_vector t{};        // unit direction a -> b
    space_vector field{};    // sum over its faces of (M . n_f) m_fe
    space_vector gravity{};  // sum over its faces of n_f,up m_fe
};

struct prepared_face {
    std::vector<int> corners;
    space_vector pole{};    // (M . n) n
    double up = 0.0;        // n_up
    space_vector normal{};  // outward unit normal
};

struct prepared_body {
    std::vector<prepared_edge> edges;
    std::vector<prepared_face> faces;
    double winding = 1.0;  // -1 when the faces wind inward
};

prepared_body prepare(const polyhedron_body& body, const space_vector& m) {
    prepared_body out;
    out.winding = polyhedron_volume(body) < 0.0 ? -1.0 : 1.0;
    std::map<std::pair<int, int>, std::size_t> edge_of;
    for (const std::vector<int>& loop : body.faces) {
        if (loop.size() < 3) continue;
        const space_vector area = area_vector(body, loop);
        const double len = std::sqrt(dot(area, area));
        if (len == 0.0) continue;  // no area, no contribution
        prepared_face face;
        face.corners = loop;
        face.normal = scaled(area, out.winding / len);
        const double pole_density = dot(m, face.normal);
        face.pole = scaled(face.normal, pole_density);
        face.up = face.normal[2];
        for (std::size_t k = 0; k < loop.size(); ++k) {
            const int a = loop[k], b = loop[(k + 1) % loop.size()];
            const auto key = std::minmax(a, b);
            auto found = edge_of.find(key);
            if (found == edge_of.end()) {
                prepared_edge e;
                e.a = key.first;
                e.b = key.second;
                const space_vector d = minus(body.corners[static_cast<std::size_t>(e.b)],
                                             body.corners[static_cast<std::size_t>(e.a)]);
                const double l = std::sqrt(dot(d, d));
                if (l == 0.0) continue;
                e.t = scaled(d, 1.0 / l);
                found = edge_of.emplace(key, out.edges.size()).first;
                out.edges.push_back(e);
            }
            prepared_edge& e = out.edges[found->second];
            // The edge as the face runs round it when wound outward; its outward in-plane
            // normal is that direction crossed with the face's normal.
            const double along = (a == e.a ? 1.0 : -1.0) * out.winding;
            const space_vector edge_normal = cross(scaled(e.t, along), face.normal);
            add_to(e.field, scaled(edge_normal, pole_density));
            add_to(e.gravity, scaled(edge_normal, face.up));
        }
        out.faces.push_back(std::move(face));
    }
    return out;
}

void fields_over(const polyhedron_body& body, const prepared_body& p, bool want_magnetic,
                 bool want_gravity, const polyhedron_stations& s, std::size_t first,
                 std::size_t last, polyhedron_fields& out) {
    const std::size_t corners = body.corners.size();
    std::vector<space_vector> r(corners);
    std::vector<double> dist(corners);
    for (std::size_t i = first; i < last; ++i) {
        const space_vector station{s.east[i], s.north[i], s.up[i]};
        for (std::size_t k = 0; k < corners; ++k) {
            r[k] = minus(body.corners[k], station);
            dist[k] = std::sqrt(dot(r[k], r[k]));
        }
        space_vector field{0.0, 0.0, 0.0};
        double g = 0.0;
        for (const prepared_edge& e : p.edges) {
            const auto a = static_cast<std::size_t>(e.a), b = static_cast<std::size_t>(e.b);
            const double l = edge_line_integral(dot(r[a], e.t), dist[a], dot(r[b], e.t), dist[b]);
            if (want_magnetic) add_to(field, scaled(e.field, l));
            if (want_gravity) g += l * dot(r[a], e.gravity);
        }
        for (const prepared_face& f : p.faces) {
            double omega = 0.0;
            const auto c0 = static_cast<std::size_t>(f.corners[0]);
            for (std::size_t k = 1; k + 1 < f.corners.size(); ++k) {
                const auto c1 = static_cast<std::size_t>(f.corners[k]);
                const auto c2 = static_cast<std::size_t>(f.corners[k + 1]);
                omega += triangle_solid_angle(r[c0], dist[c0], r[c1], dist[c1], r[c2], dist[c2]);
            }
            omega *= p.winding;
            if (want_magnetic) add_to(field, scaled(f.pole, -omega));
            if (want_gravity) g -= f.up * dot(r[c0], f.normal) * omega;
        }
        if (want_magnetic) {
            out.north[i] = field[1];
            out.east[i] = field[0];
            out.down[i] = -field[2];
        }
        if (want_gravity) out.gravity[i] = g;
    }
}

}  // namespace

double polyhedron_volume(const polyhedron_body& body) {
    double v = 0.0;
    for (const std::vector<int>& loop : body.faces) {
        if (loop.size() < 3) continue;
        const space_vector& o = body.corners[static_cast<std::size_t>(loop[0])];
        for (std::size_t k = 1; k + 1 < loop.size(); ++k)
            v += dot(o, cross(body.corners[static_cast<std::size_t>(loop[k])],
                              body.corners[static_cast<std::size_t>(loop[k + 1])]));
    }
    return v / 6.0;
}

polyhedron_fields polyhedron_fields_at(const polyhedron_body& body,
                                       const space_vector& magnetisation, bool want_magnetic,
                                       bool want_gravity, const polyhedron_stations& stations) {
    polyhedron_fields out;
    const std::size_t n = stations.count;
    if (want_magnetic) {
        out.north.assign(n, 0.0);
        out.east.assign(n, 0.0);
        out.down.assign(n, 0.0);
    }
    if (want_gravity) out.gravity.assign(n, 0.0);
    const prepared_body p = prepare(body, magnetisation);
    facet_split_stations(n, [&](std::size_t first, std::size_t last) {
        fields_over(body, p, want_magnetic, want_gravity, stations, first, last, out);
    });
    return out;
}

}  // namespace trensil
