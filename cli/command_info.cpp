// trensil-cli info: the header of a model file, its data definition, its transform and one line
// a body.
#include <iostream>

#include "cli_command.h"
#include "cli_model.h"
#include "core/body_catalogue.h"
#include "support/number_format.h"

namespace trensil::cli {
namespace {

constexpr const char* info_usage = "info MODEL.qvx";

std::string g(float v) {
    return general_number(v);
}
std::string g(double v) {
    return general_number(v);
}

void print_model(const model_record& m, std::ostream& out) {
    out << "model file      " << m.model_file << "\n";
    out << "data file       " << m.data_file << "\n";
    out << "columns         x " << m.xpos << ", y " << m.ypos << ", sensor " << m.zpos << ", dtm "
        << m.dtm << ", mag " << m.magpos << ", gravity " << m.gravpos << "\n";
    out << "lines           first data " << m.nhead << ", step " << m.nstep << ", names "
        << m.names_line << "\n";
    out << "station spacing " << g(m.station_spacing) << "\n";
    out << "field           " << g(m.mag_intensity) << " nT, inclination " << g(m.mag_inclination)
        << ", declination " << g(m.mag_declination) << "\n";
    out << "base levels     mag " << g(m.basemag) << ", gravity " << g(m.basegrav) << ", floating "
        << m.float_base[0] << " " << m.float_base[1] << "\n";
    out << "ground, sensor  topo " << g(m.topo) << ", sensor offset " << g(m.sensor_offset) << "\n";
    out << "filters         residual " << m.residual << ", gradient width " << m.VG_filter_width
        << ", step " << m.VG_filter_step << ", total gradient " << m.vg_component_1 << "\n";
    const data_transform& t = m.transform;
    out << "transform       rotation " << g(t.rotation) << ", scales " << g(t.x_scale) << " "
        << g(t.y_scale) << ", input origin " << g(t.x_input_origin) << " " << g(t.y_input_origin)
        << ", output origin " << g(t.x_output_origin) << " " << g(t.y_output_origin) << ", z shift "
        << g(t.z_shift) << ", z scale " << g(t.z_scale) << "\n";
    out << "bodies          " << m.num_bodies << "\n";
    if (m.num_bodies < 1) return;
    out << "  #  type           distance  top  width  depth_extent  strike  dip  susc  density  "
           "name\n";
    for (int i = 1; i <= m.num_bodies; ++i) {
        const body_record& b = m.body(i);
        std::string type = body_type_name(b.type);
        if (type.empty()) type = "code " + std::to_string(b.type);
        out << "  " << i << "  " << type << "  " << g(b.distance.value) << "  " << g(b.top.value)
            << "  " << g(b.width.value) << "  " << g(b.depth_extent.value) << "  "
            << g(b.strike.value) << "  " << g(b.dip.value) << "  " << g(b.susc.value) << "  "
            << g(b.density.value) << "  " << b.name << "\n";
    }
}

int run_info(const std::vector<std::string>& args) {
    cli_arguments parsed;
    std::string error;
    if (!parse_cli_arguments(args, {}, {}, parsed, error) || parsed.positional.size() != 1) {
        std::cerr << "trensil-cli info: " << (error.empty() ? "one model file is needed" : error)
                  << "\nusage: trensil-cli " << info_usage << "\n";
        return exit_usage;
    }
    console_platform ui;
    model_record model;
    if (!load_cli_model({parsed.positional[0], "", false}, model, ui, error)) {
        std::cerr << "trensil-cli info: " << error << "\n";
        return exit_failure;
    }
    print_model(model, std::cout);
    return exit_ok;
}

const cli_command_registration info_registration{"info", info_usage, run_info};

}  // namespace
}  // namespace trensil::cli
