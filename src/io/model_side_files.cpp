#include "io/model_side_files.h"

#include <cmath>

#include "io/model_file_fields.h"
#include "io/model_line_source.h"
#include "support/atomic_file.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

constexpr double degrees_to_radians = 0.017453292;

void write_text(const std::string& path, const std::string& text) {
    atomic_file out(path);
    if (!out.is_open()) throw file_run_error(out.error());
    out.stream() << text;
    if (!out.commit()) throw file_run_error(out.error());
}

}  // namespace

std::string side_file_path(const std::string& model_path, const std::string& suffix) {
    return drop_extension(model_path) + suffix;
}

std::string model_csv_text(const model_record& model) {
    std::string text = "#Profile model for " + model.data_file + "\r\n";
    text +=
        "East, North, DepthToTop, HorizontalWidth, Strike, Dip, Susceptability, Density, "
        "PlungeAlongStrike, SlopeOfTop, VerticalDepthExtent, StrikeLength, Name\r\n";
    for (int i = 1; i <= model.num_bodies; ++i) {
        const body_record& b = model.body(i);
        const double strike = b.strike.value * degrees_to_radians;
        const double half_width = b.width.value / 2.0;
        // The centre of the top: half the width across strike from the reference point, then the
        // offset along strike with the strike cosines cached on the body (stale until computed).
        const float east_shift =
            static_cast<float>(std::cos(strike) * half_width + b.sin_strike * b.offset.value);
        const float north_shift =
            static_cast<float>(-std::sin(strike) * half_width + b.cos_strike * b.offset.value);
        text += format_fixed(b.east + east_shift, 2) + ",";
        text += format_fixed(b.north + north_shift, 2) + ",";
        text += format_fixed(b.top.value, 2) + ",";
        text += format_fixed(b.width.value, 2) + ",";
        for (const parameter* p : {&b.strike, &b.dip, &b.susc, &b.density, &b.plunge, &b.slope,
                                   &b.depth_extent, &b.length})
            text += print_number(p->value) + ",";
        text += trim_text(b.name) + "\r\n";
    }
    return text;
}

void write_model_csv(const model_record& model, const std::string& path) {
    write_text(path, model_csv_text(model));
}

std::string model_mesh_text(const model_record& model) {
    const profile_block& p = model.profile;
    const int n = p.num_stations;
    if (n < 1 || p.profile_distance.empty() || p.profile_distance.hi() < n)
        throw file_run_error("Subscript out of range");
    double s = std::nearbyint(static_cast<double>(p.profile_distance(n)) / n);
    if (s < 10.0) s = 10.0;
    // Counts stay in double: a range still at its unset markers gives a huge negative count that
    // the floor of 10 replaces.
    auto count = [s](double extent) {
        const double c = std::nearbyint(extent / s);
        return c < 10.0 ? 10.0 : c;
    };
    const double cx = count(p.xmax - p.xmin);
    const double cy = count(p.ymax - p.ymin);
    const double cz = count(static_cast<double>(p.zmax) - static_cast<double>(p.zmin));
    std::string text = print_list().add(cx).add(cy).add(cz).line();
    text += print_list().add(p.xmin).add(p.ymin).add(p.zmax).line();
    for (double c : {cx, cy, cz}) text += format_fixed(c, 0) + "*" + format_fixed(s, 1) + "\r\n";
    return text;
}

void write_model_mesh(const model_record& model, const std::string& path) {
    write_text(path, model_mesh_text(model));
}

}  // namespace trensil
