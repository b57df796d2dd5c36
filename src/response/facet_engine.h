// The facet engine: the field and the attraction of one flat polygonal face of a closed solid at
// every station, by the solid angle the face subtends and three line integrals along its edges.
// A solid's response is the sum over its faces.
//
//   facet_response(f, body, model.profile, true, false, mx, my, mz, fx, fy, fz, 4,
//                  vx, vy, vz, ex, ey, ez);
//
// Geometry is double precision in a frame of x north, y east, z down, with its origin at the first
// station's horizontal position and elevation.
#pragma once

#include <array>
#include <cstddef>
#include <thread>

#include "core/body_record.h"
#include "core/profile_block.h"
#include "support/bounded_array.h"

namespace trensil {

inline constexpr double facet_pi = 3.14159265358979;
inline constexpr double facet_two_pi = 6.28318530717958;

using vec3 = std::array<double, 3>;

// c = a x b (right-handed) and length = |c|.
void cross_with_length(double a1, double a2, double a3, double b1, double b2, double b3, double& c1,
                       double& c2, double& c3, double& length);

// Arc cosine by pi/2 + atan(-x / sqrt(1 - x^2)); 0 for x >= 1, pi for x <= -1.
double arc_cos(double x);

// Angle of the spherical polygon at corner b, from the position vectors a, b, c of three
// consecutive face vertices relative to the station and the face's unit normal. 0 when the
// station lies in the face's plane. sign_out is -1 when the angle was taken the long way round.
double facet_corner_angle(const vec3& a, const vec3& b, const vec3& c, const vec3& normal,
                          int& sign_out);

// Adds one flat face's contribution at every station of `profile` to rows 3, 4, 5 (field
// north, east, down; want_magnetic) and row 2 (attraction; want_gravity) of body.body_response.
// vx, vy, vz have lower bound 1 and room for num_vertices + 1; ex, ey, ez room for num_vertices.
void facet_response(int face_index, body_record& body, const profile_block& profile,
                    bool want_magnetic, bool want_gravity, float mx, float my, float mz, double fx,
                    double fy, double fz, int num_vertices, array1<double>& vx, array1<double>& vy,
                    array1<double>& vz, array1<double>& ex, array1<double>& ey, array1<double>& ez);

// Station positions in the facet frame, one entry per station (index 0 is station 1).
struct facet_stations {
    std::size_t count = 0;
    const double* x = nullptr;  // north of station 1
    const double* y = nullptr;  // east of station 1
    const double* z = nullptr;  // down from station 1
};

// Where a face's contribution is added, one entry per station. Null rows are not written.
// Each addition rounds to the element type (float for body_response rows).
template <class T>
struct facet_sums {
    T* hx = nullptr;  // field north
    T* hy = nullptr;  // field east
    T* hz = nullptr;  // field down
    T* g = nullptr;   // attraction, subtracted as the face's gravity term
};

// One closed face ready for the kernel: the vertex arrays start at vertex 1 (element 0) and run to
// vertex n + 1 = vertex 1, the edge arrays hold edges 1..n; the unit normal; the pole density.
struct facet_face {
    int num_vertices = 0;
    const double* vx = nullptr;
    const double* vy = nullptr;
    const double* vz = nullptr;
    const double* ex = nullptr;
    const double* ey = nullptr;
    const double* ez = nullptr;
    double l = 0.0, m = 0.0, n = 0.0;  // unit normal
    double p = 0.0;                    // pole density, magnetisation . normal
};

// Closes the face (entry n + 1), fills its edges, normal and pole density. Returns false for a
// face that contributes nothing: zero area, or (want_magnetic) no poles.
bool prepare_facet(int num_vertices, double* vx, double* vy, double* vz, double* ex, double* ey,
                   double* ez, bool want_magnetic, float mx, float my, float mz, facet_face& face);

// The block kernel that computes the per-station terms: `automatic` takes the widest the
// processor has (AVX-512, AVX2, else the portable one); one the processor lacks is replaced by the
// portable one. All of them give the same bits. `scalar` takes no block kernel: every station
// goes one at a time through facet_kernel_reference.
enum class facet_block_isa { automatic, portable, avx2, avx512, scalar };

// True when this processor and build can run `isa`.
bool facet_block_isa_available(facet_block_isa isa);

// What `automatic` stands for from now on, in the whole process: the widest kernel (automatic,
// the default) or the one named. For running whole models through each kernel in turn.
void choose_automatic_facet_kernel(facet_block_isa isa);

// Adds a prepared face's contribution at stations [first, last) to the sums. The single-thread
// kernel under facet_response and the polyhedron responses: stations go through the block kernel
// several at a time, and a station on an edge line goes through facet_kernel_reference.
// Against facet_kernel_reference the terms differ only through the corner angles' arc cosines
// and the edges' logarithms (our own, a few units in the last place of a double apart); the rest
// of the arithmetic and every decision agree bit for bit.
template <class T>
void facet_kernel(const facet_face& face, const facet_stations& stations, std::size_t first,
                  std::size_t last, bool want_magnetic, bool want_gravity,
                  const facet_sums<T>& sums, facet_block_isa isa = facet_block_isa::automatic);

// The same one station at a time with the C library's arc tangent and logarithm: the plain
// statement of the method, and the path of stations that must be moved off an edge line.
template <class T>
void facet_kernel_reference(const facet_face& face, const facet_stations& stations,
                            std::size_t first, std::size_t last, bool want_magnetic,
                            bool want_gravity, const facet_sums<T>& sums);

// Runs `work(first, last)` over [0, count): in two halves on two threads when count is at least
// facet_parallel_threshold, otherwise at once on this thread.
inline constexpr std::size_t facet_parallel_threshold = 1024;
template <class Work>
void facet_split_stations(std::size_t count, Work&& work) {
    if (count < facet_parallel_threshold) {
        work(std::size_t{0}, count);
        return;
    }
    const std::size_t half = count / 2;
    std::thread second([&work, half, count] { work(half, count); });
    work(std::size_t{0}, half);
    second.join();
}

}  // namespace trensil
