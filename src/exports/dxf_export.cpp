#include "exports/dxf_export.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <vector>

#include "response/exact_solid_bodies.h"
#include "response/solid_tessellation.h"
#include "support/atomic_file.h"
#include "support/number_format.h"
#include "support/paths.h"

namespace trensil {

namespace {

constexpr const char* dxf_filter = "DXF files (*.dxf)|*.dxf|All files (*.*)|*.*";
constexpr const char* plan_dialog_title = "Enter name of DXF export file";
constexpr const char* body_dialog_title = "Enter name of 3D model DXF export file";
constexpr const char* write_error_text = "An error occurred while writing the file: ";

// Every line of the files ends as the program's other text files do.
void line(std::ostream& out, const std::string& text) {
    out << text << "\r\n";
}

// Group code line, then value line.
void group(std::ostream& out, const char* code, const std::string& value) {
    line(out, code);
    line(out, value);
}

void write_head(std::ostream& out, const clip_rectangle& extents) {
    group(out, "  0", "SECTION");
    group(out, "  2", "HEADER");
    group(out, "  9", "$EXTMIN");
    group(out, " 10", print_number(extents.xmin));
    group(out, " 20", print_number(extents.ymin));
    group(out, "  9", "$EXTMAX");
    group(out, " 10", print_number(extents.xmax));
    group(out, " 20", print_number(extents.ymax));
    group(out, "  0", "ENDSEC");
    group(out, "  0", "SECTION");
    group(out, "  2", "ENTITIES");
}

void write_tail(std::ostream& out) {
    group(out, "  0", "ENDSEC");
    group(out, "  0", "EOF");
}

void write_face_head(std::ostream& out, const body_record& body) {
    group(out, "  0", "3DFACE");
    group(out, "  8", body.name);
    group(out, "  62", "  1");
}

// A sheet as six four-cornered faces: top, bottom, then the four sides.
void write_sheet_faces(std::ostream& out, const body_record& body) {
    trapezoid_corners corners;
    convert_profile_model_to_trapezoid(body, corners);

    // Vertices 1..4 are the top (end 1), 5..8 the bottom (end 2).
    std::array<std::array<float, 3>, 9> vertex{};
    for (int end = 1; end <= 2; ++end) {
        for (int corner = 1; corner <= 4; ++corner) {
            auto& v = vertex[static_cast<std::size_t>((end - 1) * 4 + corner)];
            v[0] = static_cast<float>(corners(end, corner, 1) + body.east);
            v[1] = static_cast<float>(corners(end, corner, 2) + body.north);
            v[2] = body.top.value + corners(end, corner, 3);
        }
    }

    static constexpr std::array<std::array<int, 4>, 6> faces{{
        {1, 2, 3, 4},
        {8, 7, 6, 5},
        {1, 5, 6, 2},
        {2, 6, 7, 3},
        {3, 7, 8, 4},
        {4, 8, 5, 1},
    }};
    static constexpr std::array<std::array<const char*, 3>, 4> codes{{
        {"  10", "  20", "  30"},
        {"  11", "  21", "  31"},
        {"  12", "  22", "  32"},
        {"  13", "  23", "  33"},
    }};
    for (const auto& face : faces) {
        write_face_head(out, body);
        for (std::size_t k = 0; k < 4; ++k) {
            const auto& v = vertex[static_cast<std::size_t>(face[k])];
            for (std::size_t axis = 0; axis < 3; ++axis) {
                group(out, codes[k][axis], print_number(v[axis]));
            }
        }
    }
}

// A cylinder as the triangles of its mesh, its corners placed as the model's field geometry
// computes it; the third corner is repeated as the fourth.
void write_solid_faces(std::ostream& out, const model_record& model, const body_record& body) {
    static constexpr std::array<std::array<const char*, 3>, 4> codes{{
        {" 10", " 20", " 30"},
        {" 11", " 21", " 31"},
        {" 12", " 22", " 32"},
        {" 13", " 23", " 33"},
    }};
    const solid_cache& solid = body.solid;
    const std::vector<space_vector> exact_corners =
        model.exact_field_geometry ? exact_pipe_vertices(body) : std::vector<space_vector>{};
    const auto corner = [&](int v, int axis) -> double {
        if (model.exact_field_geometry)
            return exact_corners[static_cast<std::size_t>(v - 1)]
                                [static_cast<std::size_t>(axis - 1)];
        return solid.placed_vertices(axis, v);
    };
    for (int t = 1; t <= solid.num_triangles; ++t) {
        write_face_head(out, body);
        for (int k = 0; k <= 3; ++k) {
            const int v = solid.triangles(std::min(k, 2) + 1, t);
            for (int axis = 1; axis <= 3; ++axis) {
                group(out, codes[static_cast<std::size_t>(k)][static_cast<std::size_t>(axis - 1)],
                      format_fixed(corner(v, axis), 2));
            }
        }
    }
}

// Writes `text_of` into `path` through a temporary file.
template <class Writer>
int write_file(const std::string& path, std::string& error, Writer&& text_of) {
    atomic_file file(path);
    if (!file.is_open()) {
        error = file.error();
        return -1;
    }
    text_of(file.stream());
    if (!file.commit()) {
        error = file.error();
        return -1;
    }
    return 0;
}

// The name chosen in the save dialog, with ".dxf" added when it has none; no value on a cancel.
std::optional<std::string> ask_file_name(platform& ui, const char* title,
                                         const std::string& default_name) {
    auto chosen = ui.choose_save_file(title, dxf_filter, default_name);
    if (!chosen || chosen->empty()) return std::nullopt;
    if (extension_part(*chosen).empty()) *chosen += ".dxf";
    return chosen;
}

// Notes the working directory and puts it back when the command ends, whichever way.
class working_directory_keeper {
public:
    working_directory_keeper() { saved_ = std::filesystem::current_path(ec_); }
    ~working_directory_keeper() {
        if (!ec_) set_current_directory(saved_.string());
    }
    working_directory_keeper(const working_directory_keeper&) = delete;
    working_directory_keeper& operator=(const working_directory_keeper&) = delete;

private:
    std::error_code ec_;
    std::filesystem::path saved_;
};

std::string stem_of_model(const model_record& model) {
    return drop_extension(model.model_file);
}

}  // namespace

clip_rectangle squared_plan_extents(const model_record& model) {
    const profile_block& p = model.profile;
    double xmin = p.xmin, xmax = p.xmax, ymin = p.ymin, ymax = p.ymax;
    const double east_range = xmax - xmin;
    const double north_range = ymax - ymin;
    if (north_range > east_range) {
        const double half = (north_range - east_range) / 2.0;
        xmin -= half;
        xmax += half;
    } else {
        const double half = (east_range - north_range) / 2.0;
        ymin -= half;
        ymax += half;
    }
    return {static_cast<float>(xmin), static_cast<float>(xmax), static_cast<float>(ymin),
            static_cast<float>(ymax)};
}

std::string plan_dxf_default_name(const model_record& model) {
    return model.model_file.empty() ? std::string() : stem_of_model(model) + ".dxf";
}

std::string body_dxf_default_name(const model_record& model) {
    return model.model_file.empty() ? std::string() : stem_of_model(model) + "_3d.dxf";
}

void write_plan_dxf(std::ostream& out, const model_record& model) {
    const clip_rectangle extents = squared_plan_extents(model);
    write_head(out, extents);

    const profile_block& p = model.profile;
    if (p.num_stations > 0) {
        group(out, "  0", "POLYLINE");
        for (int i = 1; i <= p.num_stations; ++i) {
            group(out, "  0", "VERTEX");
            group(out, " 10", print_number(p.location(easting_row, i)));
            group(out, " 20", print_number(p.location(northing_row, i)));
        }
        group(out, "  0", "SEQEND");
    }

    for (int b = 1; b <= model.num_bodies; ++b) {
        const int type = model.body(b).type;
        if (type >= 5 && type != 16) continue;
        std::array<float, 5> x{}, y{};
        if (body_plan_outline(model, extents, b, x, y, outline_rules::dxf_export) < 0) continue;
        group(out, "  0", "POLYLINE");
        for (std::size_t k = 0; k < 5; ++k) {
            group(out, "  0", "VERTEX");
            group(out, " 10", print_number(x[k]));
            group(out, " 20", print_number(y[k]));
        }
        group(out, "  0", "SEQEND");
    }

    write_tail(out);
}

void write_body_dxf(std::ostream& out, model_record& model, response_state& state) {
    write_head(out, squared_plan_extents(model));
    for (int b = 1; b <= model.num_bodies; ++b) {
        if (model.body(b).type != 16) {
            write_sheet_faces(out, model.body(b));
            continue;
        }
        int failed = 0;
        build_body_solid(failed, model, state, b);
        if (failed != 0) continue;
        write_solid_faces(out, model, model.body(b));
    }
    write_tail(out);
}

int write_plan_dxf(const model_record& model, const std::string& path, std::string& error) {
    return write_file(path, error, [&](std::ostream& out) { write_plan_dxf(out, model); });
}

int write_body_dxf(model_record& model, response_state& state, const std::string& path,
                   std::string& error) {
    return write_file(path, error, [&](std::ostream& out) { write_body_dxf(out, model, state); });
}

int export_plan_dxf(const model_record& model, platform& ui) {
    working_directory_keeper directory;
    const auto path = ask_file_name(ui, plan_dialog_title, plan_dxf_default_name(model));
    if (!path) return -1;
    std::string error;
    if (write_plan_dxf(model, *path, error) != 0) {
        ui.show_message(write_error_text + error);
        return -1;
    }
    ui.show_message("Output complete");
    return 0;
}

int export_body_dxf(model_record& model, response_state& state, platform& ui) {
    if (model.num_bodies <= 0) return -1;
    working_directory_keeper directory;
    const auto path = ask_file_name(ui, body_dialog_title, body_dxf_default_name(model));
    if (!path) return -1;
    std::string error;
    if (write_body_dxf(model, state, *path, error) != 0) {
        ui.show_message(write_error_text + error);
        return -1;
    }
    ui.show_message("Output complete");
    return 0;
}

void menu_export_dxf(model_record& model, response_state& state, platform& ui) {
    export_plan_dxf(model, ui);
    export_body_dxf(model, state, ui);
}

}  // namespace trensil
