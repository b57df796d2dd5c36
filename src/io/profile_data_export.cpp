#include "io/profile_data_export.h"

#include <filesystem>
#include <system_error>

#include "support/atomic_file.h"
#include "support/number_format.h"
#include "support/paths.h"

namespace trensil {

namespace {

std::string heading(const model_record& model) {
    std::string text = "East, North, Sensor, Dist";
    if (model.dtm > 0) text += ", DTM";
    const bool total_gradient = model.vg_component_1 == 1;
    if (model.magpos > 0)
        text += total_gradient
                    ? ", TMI_Obs, TMI_Obs_Res, TMI_Obs_TG, TMI_Mod, TMI_Mod_Res, TMI_Mod_TG"
                    : ", TMI_Obs, TMI_Obs_Res, TMI_Obs_VG, TMI_Mod, TMI_Mod_Res, TMI_Mod_VG";
    if (model.gravpos > 0)
        text += total_gradient
                    ? ", Grav_Obs, Grav_Obs_Res, Grav_Obs_TG, Grav_Mod, Grav_Mod_Res, Grav_Mod_TG"
                    : ", Grav_Obs, Grav_Obs_Res, Grav_Obs_VG, Grav_Mod, Grav_Mod_Res, Grav_Mod_VG";
    return text;
}

void append_channels(std::string& line, const array2<float>& channels, int i, int gradient_row) {
    // Observed raw, levelled, gradient, then the same three computed.
    const int rows[6] = {observed_raw, observed_level, gradient_row,
                         computed_raw, computed_level, gradient_row + 5};
    for (int r : rows) {
        line += ", ";
        line += format_fixed(channels(r, i), 4);
    }
}

std::string station_line(const model_record& model, int i) {
    const profile_block& p = model.profile;
    std::string line = format_fixed(p.location(easting_row, i), 1);
    line += ", " + format_fixed(p.location(northing_row, i), 1);
    line += ", " + format_fixed(p.location(sensor_row, i), 1);
    line += ", " + format_fixed(p.profile_distance(i), 1);
    if (model.dtm > 0) line += ", " + format_fixed(p.location(ground_row, i), 1);
    // The magnetic block shows the gradient that is displayed (vertical or total); the gravity
    // block always shows the vertical gradient rows.
    if (model.magpos > 0)
        append_channels(line, p.mag_channels, i, observed_vertical_gradient + model.vg_component_2);
    if (model.gravpos > 0) append_channels(line, p.grav_channels, i, observed_vertical_gradient);
    return line;
}

std::string current_directory() {
    std::error_code ec;
    std::string dir = std::filesystem::current_path(ec).string();
    return ec ? std::string() : dir;
}

}  // namespace

int write_profile_data(const model_record& model, const std::string& path, std::string& error) {
    atomic_file out(path);
    if (!out.is_open()) {
        error = out.error();
        return -1;
    }
    std::ostream& s = out.stream();
    s << "#Profile model data for " << model.data_file << '\n';
    s << heading(model) << '\n';
    for (int i = 1; i <= model.profile.num_stations; ++i) s << station_line(model, i) << '\n';
    if (!out.commit()) {
        error = out.error();
        return -1;
    }
    return 0;
}

int export_profile_data(const model_record& model, platform& ui) {
    if (model.profile.num_stations < 1) {
        ui.beep();
        return -1;
    }
    const std::string working_directory = current_directory();
    auto leave = [&](int status) {
        if (!working_directory.empty()) set_current_directory(working_directory);
        return status;
    };

    const std::string suggested =
        model.model_file.empty() ? std::string() : drop_extension(model.model_file) + ".csv";
    auto chosen =
        ui.choose_save_file("Select the profile data file to create",
                            "Profile Data Files (*.csv)|*.csv|All files (*.*)|*.*", suggested);
    if (!chosen || chosen->empty()) return leave(-1);
    std::string path = *chosen;
    if (extension_part(path).empty()) path += ".csv";
    if (file_exists(path) && !ui.ask_yes_no("That file already, exists, overwrite?"))
        return leave(-1);

    std::string error;
    if (write_profile_data(model, path, error) != 0) {
        ui.show_message("An error occurred while writing the file: " + error);
        return leave(-1);
    }
    leave(0);
    ui.show_message("Output complete");
    return 0;
}

}  // namespace trensil
