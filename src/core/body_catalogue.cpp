#include "core/body_catalogue.h"

#include <array>

namespace trensil {

const std::string& body_type_name(int code) {
    static const std::array<std::string, 17> names = [] {
        std::array<std::string, 17> n{};
        n[1] = "Thin Sheet";
        n[2] = "Thick Sheet";
        n[3] = "Edge";
        n[4] = "Sloping step";
        n[5] = "Polygon";
        n[6] = "Sphere";
        n[16] = "Cylinder/pipe";
        return n;
    }();
    static const std::string none;
    if (code < 0 || code >= static_cast<int>(names.size())) return none;
    return names[static_cast<std::size_t>(code)];
}

}  // namespace trensil
