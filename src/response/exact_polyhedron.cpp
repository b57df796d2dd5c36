#include "response/exact_polyhedron.h"

#include <algorithm>
#include <array>
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

// The faces of one plane facing one way, summed as one: their triangles (fans of each face)
// give one solid angle.
struct prepared_face {
    std::vector<std::array<int, 3>> triangles;
    int corner = 0;         // a corner in the plane, for its distance from the station
    space_vector pole{};    // (M . n) n
    double up = 0.0;        // n_up
    space_vector normal{};  // outward unit normal
};

// Parallel edges whose field weights are equal or opposite (the four edges of a prism along one
// direction): their logarithms add as one logarithm of the product of their ratios.
struct edge_group {
    space_vector field{};
    std::vector<std::pair<std::size_t, bool>> members;  // edge, weight opposite to `field`
};

struct prepared_body {
    std::vector<prepared_edge> edges;
    std::vector<edge_group> groups;  // magnetics alone: the edges in groups
    std::vector<prepared_face> faces;
    double winding = 1.0;  // -1 when the faces wind inward
};

// The face of the same plane and facing, or null.
prepared_face* same_plane(std::vector<prepared_face>& faces, const polyhedron_body& body,
                          const space_vector& normal, int corner) {
    const space_vector& p = body.corners[static_cast<std::size_t>(corner)];
    for (prepared_face& f : faces) {
        if (dot(f.normal, normal) < 1.0 - 1e-12) continue;
        const space_vector d = minus(p, body.corners[static_cast<std::size_t>(f.corner)]);
        if (std::fabs(dot(d, normal)) <= 1e-9 * (1.0 + std::sqrt(dot(d, d)))) return &f;
    }
    return nullptr;
}

prepared_body prepare(const polyhedron_body& body, const space_vector& m, bool group_edges) {
    prepared_body out;
    out.winding = polyhedron_volume(body) < 0.0 ? -1.0 : 1.0;
    std::map<std::pair<int, int>, std::size_t> edge_of;
    for (const std::vector<int>& loop : body.faces) {
        if (loop.size() < 3) continue;
        const space_vector area = area_vector(body, loop);
        const double len = std::sqrt(dot(area, area));
        if (len == 0.0) continue;  // no area, no contribution
        const space_vector normal = scaled(area, out.winding / len);
        const double pole_density = dot(m, normal);
        const double up = normal[2];
        prepared_face* face = same_plane(out.faces, body, normal, loop[0]);
        if (!face) {
            out.faces.push_back(prepared_face{});
            face = &out.faces.back();
            face->corner = loop[0];
            face->normal = normal;
            face->pole = scaled(normal, pole_density);
            face->up = up;
        }
        for (std::size_t k = 1; k + 1 < loop.size(); ++k)
            face->triangles.push_back({loop[0], loop[k], loop[k + 1]});
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
            const space_vector edge_normal = cross(scaled(e.t, along), normal);
            add_to(e.field, scaled(edge_normal, pole_density));
            add_to(e.gravity, scaled(edge_normal, up));
        }
    }
    // An edge inside a plane (a diagonal, a spoke of a cap) is crossed both ways by faces of the
    // same poles: its terms cancel, and it is left out.
    const double pole_scale = std::sqrt(dot(m, m));
    std::erase_if(out.edges, [pole_scale](const prepared_edge& e) {
        return std::sqrt(dot(e.gravity, e.gravity)) < 1e-9 &&
               std::sqrt(dot(e.field, e.field)) <= 1e-9 * pole_scale;
    });
    if (group_edges) {
        for (std::size_t k = 0; k < out.edges.size(); ++k) {
            const prepared_edge& e = out.edges[k];
            const double size = std::sqrt(dot(e.field, e.field));
            edge_group* home = nullptr;
            bool opposite = false;
            for (edge_group& g : out.groups) {
                const space_vector& first = out.edges[g.members[0].first].t;
                const space_vector c = cross(first, e.t);
                if (dot(c, c) > 1e-24) continue;
                const space_vector same = minus(e.field, g.field);
                const space_vector flip = {e.field[0] + g.field[0], e.field[1] + g.field[1],
                                           e.field[2] + g.field[2]};
                if (std::sqrt(dot(same, same)) <= 1e-12 * size) {
                    home = &g;
                } else if (std::sqrt(dot(flip, flip)) <= 1e-12 * size) {
                    home = &g;
                    opposite = true;
                }
                if (home) break;
            }
            if (!home) {
                out.groups.push_back(edge_group{e.field, {}});
                home = &out.groups.back();
            }
            home->members.emplace_back(k, opposite);
        }
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
        for (const edge_group& group : p.groups) {
            double product = 1.0;
            for (const auto& [k, opposite] : group.members) {
                const prepared_edge& e = p.edges[k];
                const auto a = static_cast<std::size_t>(e.a), b = static_cast<std::size_t>(e.b);
                const double ratio = edge_ratio(dot(r[a], e.t), dist[a], dot(r[b], e.t), dist[b]);
                product = opposite ? product / ratio : product * ratio;
            }
            add_to(field, scaled(group.field, std::log(product)));
        }
        for (const prepared_edge& e : p.edges) {
            if (!p.groups.empty()) break;  // the groups above hold them
            const auto a = static_cast<std::size_t>(e.a), b = static_cast<std::size_t>(e.b);
            const double l = edge_line_integral(dot(r[a], e.t), dist[a], dot(r[b], e.t), dist[b]);
            if (want_magnetic) add_to(field, scaled(e.field, l));
            if (want_gravity) g += l * dot(r[a], e.gravity);
        }
        for (const prepared_face& f : p.faces) {
            // The half solid angles of the triangles add as the arguments of their
            // (den + i num) multiply; a plane subtends at most 2 pi, so one arc tangent ends it.
            double pr = 1.0, qi = 0.0;
            for (const auto& t : f.triangles) {
                const auto a = static_cast<std::size_t>(t[0]), b = static_cast<std::size_t>(t[1]),
                           c = static_cast<std::size_t>(t[2]);
                const half_angle h =
                    triangle_half_angle(r[a], dist[a], r[b], dist[b], r[c], dist[c]);
                const double nr = pr * h.den - qi * h.num;
                qi = pr * h.num + qi * h.den;
                pr = nr;
                const double size = std::fabs(pr) + std::fabs(qi);
                if (size > 1e150 || (size < 1e-150 && size > 0.0)) {
                    pr /= size;
                    qi /= size;
                }
            }
            // A station on the plane's own face takes the limit from outside.
            const double half = (qi == 0.0 && pr < 0.0) ? -3.14159265358979 : std::atan2(qi, pr);
            const double omega = 2.0 * half * p.winding;
            if (want_magnetic) add_to(field, scaled(f.pole, -omega));
            if (want_gravity)
                g -= f.up * dot(r[static_cast<std::size_t>(f.corner)], f.normal) * omega;
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
    const prepared_body p = prepare(body, magnetisation, want_magnetic && !want_gravity);
    facet_split_stations(n, [&](std::size_t first, std::size_t last) {
        fields_over(body, p, want_magnetic, want_gravity, stations, first, last, out);
    });
    return out;
}

}  // namespace trensil
