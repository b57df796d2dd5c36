// The cylinder/pipe body's mesh: rings of vertices along the axis joined by pairs of triangles,
// closed by fans (capped), annuli (open hollow) or a scaled inner copy (hollow with end plates).
#include "response/solid_tessellation.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <stdexcept>
#include <string>

namespace trensil {

namespace {

constexpr double to_radians = 0.017453292;
constexpr double circle_start = -1.57079628;
// Larger meshes are refused with a message rather than exhausting memory.
constexpr long long max_mesh_size = 50000000;

// Sector count the mesh uses: below 4 gives 12, an odd count is raised by one.
int mesh_sectors(int sectors) {
    if (sectors < 4) return 12;
    return sectors % 2 != 0 ? sectors + 1 : sectors;
}

// Fills the mesh arrays as it goes; counts stay within the sizes allocated from them.
struct mesh_writer {
    array2<double>& vertices;
    array2<std::int32_t>& triangles;
    int vertex_count = 0;
    int triangle_count = 0;

    void vertex(double c1, double c2, double c3) {
        ++vertex_count;
        vertices(1, vertex_count) = c1;
        vertices(2, vertex_count) = c2;
        vertices(3, vertex_count) = c3;
    }
    void triangle(int a, int b, int c) {
        ++triangle_count;
        triangles(1, triangle_count) = a;
        triangles(2, triangle_count) = b;
        triangles(3, triangle_count) = c;
    }
    // Two triangles per sector between ring `lower` and ring `upper` (first vertex numbers),
    // wrapping round at the ring's end. `reverse` swaps the second and third corners.
    void join_rings(int lower, int upper, int n, bool reverse) {
        for (int j = 0; j < n; ++j) {
            const int a = lower + j, a_next = lower + (j + 1) % n;
            const int b = upper + j, b_next = upper + (j + 1) % n;
            if (!reverse) {
                triangle(a, a_next, b);
                triangle(b, a_next, b_next);
            } else {
                triangle(a, b, a_next);
                triangle(b, b_next, a_next);
            }
        }
    }
    // A fan of n triangles from `centre` to a ring. `reverse` as above.
    void fan(int centre, int ring, int n, bool reverse) {
        for (int j = 0; j < n; ++j) {
            const int a = ring + j, a_next = ring + (j + 1) % n;
            if (!reverse) {
                triangle(centre, a, a_next);
            } else {
                triangle(centre, a_next, a);
            }
        }
    }
};

// The axial coordinate of a body-frame vertex.
double axial_of(const array2<double>& v, bool axis_on_y, int k) {
    return axis_on_y ? v(2, k) : v(3, k);
}

}  // namespace

void make_unit_circle(unit_circle& circle, int sectors) {
    const int n = sectors;
    circle.circle_sin.resize(0, n);
    circle.circle_cos.resize(0, n);
    const double step = (360.0 / n) * to_radians;
    for (int k = 0; k <= n - 1; ++k) {
        circle.circle_sin(k) = std::sin(k * step + circle_start) / 2.0;
        circle.circle_cos(k) = std::cos(k * step + circle_start) / 2.0;
    }
    // The four quarter points exactly, so that rings close and stand level.
    circle.circle_sin(0) = -0.5;
    circle.circle_cos(0) = 0.0;
    circle.circle_sin(n / 2) = 0.5;
    circle.circle_cos(n / 2) = 0.0;
    circle.circle_sin(n) = -0.5;
    circle.circle_cos(n) = 0.0;
}

void add_ring(const unit_circle& circle, bool axis_on_y, int sectors, double aspect, double axial,
              double radius, int first_index, int& vertex_count, array2<double>& vertices) {
    (void)first_index;
    // The circle is of unit diameter: twice the radius scales it to the true ring.
    const double diameter = 2.0 * radius;
    for (int k = 1; k <= sectors; ++k) {
        ++vertex_count;
        vertices(1, vertex_count) = diameter * circle.circle_sin(k - 1);
        if (axis_on_y) {
            vertices(2, vertex_count) = axial;
            vertices(3, vertex_count) = diameter * circle.circle_cos(k - 1) * aspect;
        } else {
            vertices(2, vertex_count) = diameter * circle.circle_cos(k - 1) * aspect;
            vertices(3, vertex_count) = axial;
        }
    }
}

void place_solid(int count, bool shear, const std::array<double, 3>& scale,
                 const std::array<double, 3>& rotation, const std::array<double, 3>& position,
                 array2<double>& vertices) {
    for (int k = 1; k <= count; ++k)
        for (int c = 1; c <= 3; ++c) vertices(c, k) *= scale[static_cast<std::size_t>(c - 1)];

    const double first = rotation[0];
    if (first != 0.0 && first > -180.0) {
        const double s = -std::sin(first * to_radians);
        const double c = std::cos(first * to_radians);
        for (int k = 1; k <= count; ++k) {
            const double c1 = vertices(1, k), c3 = vertices(3, k);
            if (shear) {
                // Lean coordinate 1 with height, as a dipping sheet leans.
                vertices(1, k) = c1 + (c * scale[2] / s) * (c3 / scale[2]);
            } else {
                vertices(1, k) = c * c1 + s * c3;
                vertices(3, k) = -s * c1 + c * c3;
            }
        }
    }
    const double third = rotation[2];
    if (third != 0.0 && third > -180.0) {
        const double s = std::sin(third * to_radians);
        const double c = std::cos(third * to_radians);
        for (int k = 1; k <= count; ++k) {
            const double c2 = vertices(2, k), c3 = vertices(3, k);
            vertices(2, k) = c * c2 + s * c3;
            vertices(3, k) = -s * c2 + c * c3;
        }
    }
    const double second = rotation[1];
    if (second != 0.0 && second > -360.0) {
        const double s = std::sin(second * to_radians);
        const double c = std::cos(second * to_radians);
        for (int k = 1; k <= count; ++k) {
            const double c1 = vertices(1, k), c2 = vertices(2, k);
            vertices(1, k) = c * c1 + s * c2;
            vertices(2, k) = -s * c1 + c * c2;
        }
    }
    for (int k = 1; k <= count; ++k)
        for (int c = 1; c <= 3; ++c) vertices(c, k) += position[static_cast<std::size_t>(c - 1)];
}

int tessellate_cylinder(platform* ui, bool axis_on_y, bool apply_pose, int& num_vertices,
                        int& num_triangles, const solid_pose& pose, double length,
                        double start_radius, double end_radius, double shell, double end_thickness,
                        double aspect, int sectors, int segments, array2<std::int32_t>& triangles,
                        array2<double>& vertices) {
    if (start_radius == 0.0 && end_radius == 0.0) return 0;
    if (shell > 0.0 && (!(start_radius > shell) || !(end_radius > shell))) return 0;
    if (shell > 0.0 && end_thickness > 0.0 && !(length / 2.0 > end_thickness)) return 0;
    try {
        if (sectors > max_mesh_size || segments > max_mesh_size)
            throw std::length_error("the mesh would need more than 50,000,000 triangles");
        const int n = mesh_sectors(sectors);
        const int s = std::max(segments, 1);
        const bool hollow = shell > 0.0;
        const bool open_ends = hollow && end_thickness == 0.0;
        const bool end_plates = hollow && end_thickness > 0.0;

        // Counts of what the steps below build. A capped body has a centre vertex at each end
        // that has a ring (an apex stands in for the ring at a pointed end).
        const bool from_far_end = end_radius == 0.0;
        const double near_radius = from_far_end ? end_radius : start_radius;
        const double far_radius = from_far_end ? start_radius : end_radius;
        long long vertex_total = 0;
        long long triangle_total = 0;
        const long long nn = n;
        if (open_ends) {
            vertex_total = 2 * nn * (s + 1LL);
            triangle_total = 4 * nn * (s + 1LL);
        } else {
            const long long rings = s + (near_radius > 0.0 ? 1LL : 0LL);
            vertex_total = 2 + rings * nn;
            triangle_total = 2 * nn * (rings - 1) + nn + nn;
            if (end_plates) {
                vertex_total *= 2;
                triangle_total *= 2;
            }
        }
        if (vertex_total > max_mesh_size || triangle_total > max_mesh_size)
            throw std::length_error("the mesh would need more than 50,000,000 triangles");
        unit_circle circle;
        make_unit_circle(circle, n);
        vertices.resize(1, 3, 1, static_cast<int>(vertex_total));
        triangles.resize(1, 3, 1, static_cast<int>(triangle_total));
        mesh_writer mesh{vertices, triangles};

        // Built from the far end when that end is a point, so the first vertex is the apex.
        const double start_axial = from_far_end ? length : 0.0;
        const double step = (from_far_end ? -length : length) / s;
        // Rings run anticlockwise about the second coordinate but clockwise about the third,
        // so the winding that faces out turns with the axis as well as with the build direction.
        const bool reverse = from_far_end != !axis_on_y;
        // Radius along the axis, from the start radius at axial 0 to the end radius at length.
        const double taper = (end_radius - start_radius) / length;
        auto radius_at = [&](double axial) { return start_radius + axial * taper; };
        auto point = [&](double axial) {
            if (axis_on_y) {
                mesh.vertex(0.0, axial, 0.0);
            } else {
                mesh.vertex(0.0, 0.0, axial);
            }
        };
        auto ring_pair = [&](double axial, double radius) {
            add_ring(circle, axis_on_y, n, aspect, axial, radius, mesh.vertex_count + 1,
                     mesh.vertex_count, vertices);
            if (open_ends)
                add_ring(circle, axis_on_y, n, aspect, axial, radius - shell, mesh.vertex_count + 1,
                         mesh.vertex_count, vertices);
        };

        int start_centre = 0;
        if (!open_ends) {
            start_centre = mesh.vertex_count + 1;
            point(start_axial);
        }
        int previous = 0;  // first vertex of the ring before, 0 while there is none
        if (near_radius > 0.0) {
            previous = mesh.vertex_count + 1;
            ring_pair(start_axial, near_radius);
        }
        const int first_ring = previous;
        for (int i = 1; i <= s; ++i) {
            const double axial =
                i == s ? start_axial + (from_far_end ? -length : length) : start_axial + step * i;
            const double radius = i == s ? far_radius : radius_at(axial);
            const int ring = mesh.vertex_count + 1;
            ring_pair(axial, radius);
            if (previous == 0) {
                // A pointed start: the apex fans out to the first ring.
                mesh.fan(start_centre, ring, n, !reverse);
            } else {
                mesh.join_rings(previous, ring, n, reverse);
                if (open_ends) mesh.join_rings(previous + n, ring + n, n, !reverse);
            }
            previous = ring;
        }
        const int last_ring = previous;
        if (open_ends) {
            // Annuli between outer and inner rings, facing out along the axis.
            mesh.join_rings(first_ring + n, first_ring, n, reverse);
            mesh.join_rings(last_ring, last_ring + n, n, reverse);
        } else {
            if (first_ring != 0) mesh.fan(start_centre, first_ring, n, !reverse);
            const int end_centre = mesh.vertex_count + 1;
            point(start_axial + (from_far_end ? -length : length));
            mesh.fan(end_centre, last_ring, n, reverse);
        }

        if (end_plates) {
            // The cavity: a copy of the outer surface shrunk to leave a wall `shell` thick and
            // plates `end_thickness` thick, its triangles turned to face into the cavity.
            const int outer_vertices = mesh.vertex_count;
            const int outer_triangles = mesh.triangle_count;
            const double f = (length - 2.0 * end_thickness) / length;
            for (int k = 1; k <= outer_vertices; ++k) {
                const double d = axial_of(vertices, axis_on_y, k) - start_axial;
                const double r = d * taper + start_radius;
                const double a = (start_axial + end_thickness) + d * f;
                const double t = (a - start_axial) * taper + start_radius;
                const double g = (t - shell) / r;
                if (axis_on_y) {
                    mesh.vertex(vertices(1, k) * g, a, vertices(3, k) * g);
                } else {
                    mesh.vertex(vertices(1, k) * g, vertices(2, k) * g, a);
                }
            }
            for (int k = 1; k <= outer_triangles; ++k)
                mesh.triangle(triangles(1, k) + outer_vertices, triangles(3, k) + outer_vertices,
                              triangles(2, k) + outer_vertices);
        }
        num_vertices = mesh.vertex_count;
        num_triangles = mesh.triangle_count;

        if (apply_pose)
            place_solid(num_vertices, false, {1.0, 1.0, 1.0}, pose.rotation, pose.position,
                        vertices);
        return 0;
    } catch (const std::exception& error) {
        if (ui)
            ui->show_message(std::string("An error occurred while creating the graphic object: ") +
                             error.what());
        return -1;
    }
}

void build_body_solid(int& failed, model_record& model, response_state& state, int body_index) {
    try {
        body_record& body = model.body(body_index);
        solid_cache& solid = body.solid;
        body.cos_dip = static_cast<float>(std::cos(body.dip.value * to_radians));
        body.sin_dip = static_cast<float>(std::sin(body.dip.value * to_radians));
        body.cos_strike = static_cast<float>(std::cos(body.strike.value * to_radians));
        body.sin_strike = static_cast<float>(std::sin(body.strike.value * to_radians));

        const float width = body.width.value;
        const bool shape_stale =
            solid.num_triangles == 0 || solid.num_vertices == 0 ||
            body.length.value != solid.length || width != solid.width_start ||
            width != solid.width_end || body.shell_thickness != solid.shell_thickness ||
            body.end_thickness != solid.end_thickness || body.num_sectors != solid.num_sectors ||
            body.num_segments != solid.num_segments ||
            body.max_triangle_size != solid.max_triangle_size;
        if (shape_stale) {
            solid.length = body.length.value;
            solid.width_start = width;
            solid.width_end = width;
            solid.shell_thickness = body.shell_thickness;
            solid.end_thickness = body.end_thickness;
            solid.num_sectors = body.num_sectors;
            solid.num_segments = body.num_segments;
            solid.max_triangle_size = body.max_triangle_size;
            // `width` is the diameter; the mesh is built at the true radius.
            const double radius = static_cast<double>(width) / 2.0;
            if (tessellate_cylinder(state.ui, true, false, solid.num_vertices, solid.num_triangles,
                                    solid_pose{}, body.length.value, radius, radius,
                                    body.shell_thickness, body.end_thickness, 1.0, body.num_sectors,
                                    body.num_segments, solid.triangles, solid.vertices) != 0) {
                failed = -1;
                return;
            }
        }

        const double along = static_cast<double>(body.length.value) / 2.0 + body.offset.value;
        const std::array<double, 3> position{body.east - along * body.sin_strike,
                                             body.north - along * body.cos_strike,
                                             static_cast<double>(body.top.value)};
        const bool pose_stale =
            solid.num_placed_vertices != solid.num_vertices || body.dip.value != solid.pose_dip ||
            body.strike.value != solid.pose_strike || body.plunge.value != solid.pose_plunge ||
            position != solid.pose_position || shape_stale;
        if (pose_stale) {
            solid.pose_dip = body.dip.value;
            solid.pose_strike = body.strike.value;
            solid.pose_plunge = body.plunge.value;
            solid.pose_position = position;
            solid.placed_vertices = solid.vertices;
            solid.num_placed_vertices = solid.num_vertices;
            place_solid(solid.num_vertices, false, {1.0, 1.0, 1.0},
                        {body.plunge.value, body.strike.value, body.dip.value}, position,
                        solid.placed_vertices);
        }
        failed = 0;
    } catch (const std::exception& error) {
        if (state.ui)
            state.ui->show_message(
                std::string("An error occurred while setting up the cylinder body: ") +
                error.what());
        failed = -1;
    }
}

}  // namespace trensil
