#include "response/exact_sphere.h"

#include <cmath>

namespace trensil {

double sphere_total_field(double volume, const space_vector& magnetisation,
                          const space_vector& field, const space_vector& offset) {
    const double r2 = dot(offset, offset);
    if (r2 == 0.0) return 0.0;
    const double r = std::sqrt(r2);
    const double r3 = r2 * r;
    const double jr = dot(magnetisation, offset), fr = dot(field, offset);
    const double jf = dot(magnetisation, field);
    return volume / (4.0 * 3.14159265358979) * (3.0 * jr * fr / (r3 * r2) - jf / r3);
}

double sphere_gravity(double volume, const space_vector& offset) {
    const double r2 = dot(offset, offset);
    if (r2 == 0.0) return 0.0;
    return volume * offset[2] / (r2 * std::sqrt(r2));
}

}  // namespace trensil
