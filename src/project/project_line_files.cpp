// "Save New Trensil File" and "Save New CSV Data File": a new line's csv and model on disk, and
// the line in the project.
#include <filesystem>
#include <system_error>

#include "project/line_files.h"
#include "project/project_controls.h"
#include "project/project_workspace.h"
#include "support/number_format.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

constexpr const char* csv_filter = "Profile data file (*csv)|*.csv|All files (*.*)|*.*";
const char* const tab_names[grid_tab_count] = {"magnetic", "DTM", "sensor"};

// Where the csv goes, or "" when the user stopped. Index 1: beside the project file as
// "Line_<number>.csv" (a project without a file is saved first); index 0: a file the user picks.
std::string csv_destination(project_workspace& ws, int index, int& number) {
    if (index == 1) {
        if (!ask_line_number(ws, number)) return "";
        if (ws.project_file.empty() && file_save_project(ws) != 0) return "";
        std::error_code ec;
        const std::string folder = directory_part(ws.project_file);
        if (!folder.empty()) std::filesystem::create_directories(folder, ec);
        return line_file_stem(ws.project_file, number) + ".csv";
    }
    const std::string start =
        ws.project_file.empty() ? std::string() : drop_extension(ws.project_file) + ".csv";
    const auto chosen =
        ws.ui.choose_save_file("Select the trensil data file to create", csv_filter, start);
    if (!chosen || trim_text(*chosen).empty()) return "";
    std::string path = trim_text(*chosen);
    if (extension_part(path).empty()) path += ".csv";
    return path;
}

}  // namespace

int save_line(project_workspace& ws, int index) {
    const bool digitised = ws.digitising.active;
    digitising_state& d = ws.digitising;
    model_record& scratch = ws.scratch;
    try {
        // Is there a line to save?
        if (digitised) {
            setup_and_display_grid_profile(ws);
            if (d.num_samples < 16) {
                ws.ui.show_message("The digitised baseline is not long enough to be meaningful");
                return -1;
            }
        } else {
            if (!ws.view->checked(sample_check_name(0)) && scratch.magpos < 1) {
                ws.ui.show_message("There is no data value defined");
                return -1;
            }
            if (!ws.locations_loaded && command_load_locations(ws) != 0) return -1;
        }
        const line_sampling sampling = ticked_sampling(ws);
        for (int tab = 0; tab < grid_tab_count; ++tab) {
            if (ws.view->checked(sample_check_name(tab)) &&
                !sampling.grids[static_cast<std::size_t>(tab)]) {
                ws.ui.show_message(
                    std::string("An error occured while loading the grid file: no ") +
                    tab_names[tab] + " grid is open");
                return -1;
            }
        }

        // Where the csv goes.
        int number = 0;
        const std::string csv_path = csv_destination(ws, index, number);
        if (csv_path.empty()) return -1;
        if (file_exists(csv_path) &&
            !ws.ui.ask_yes_no("The csv file already already, exists, overwrite?"))
            return -1;

        // The stations, what the grids or the data give there, the csv.
        line_station_values values;
        if (digitised) {
            gather_line_values(d.sample_x, d.sample_y, d.num_samples, sampling, nullptr, values);
        } else {
            const int n = scratch.profile.num_stations;
            array1<double> x(1, n), y(1, n);
            for (int i = 1; i <= n; ++i) {
                x(i) = scratch.profile.location(easting_row, i);
                y(i) = scratch.profile.location(northing_row, i);
            }
            gather_line_values(x, y, n, sampling, &scratch, values);
        }
        if (!write_line_csv(csv_path, values, ws.ui)) return -1;
        if (index != 1) {
            ws.ui.show_message("Export complete");
            return 0;
        }

        // The model that reads the csv: the header alone. A digitised line keeps the
        // elevations typed for it as the model's topography and sensor offset, which the
        // response uses where the csv has no ground or sensor column.
        const std::string stem = drop_extension(csv_path);
        const std::string model_path = stem + ".qvx";
        if (file_exists(model_path) &&
            !ws.ui.ask_yes_no("The QVX file already, exists, overwrite?"))
            return -1;
        const float kept_topo = scratch.topo, kept_offset = scratch.sensor_offset;
        if (digitised) {
            scratch.topo = d.surface_elevation;
            scratch.sensor_offset = d.sensor_offset;
        }
        const bool written = write_line_model(model_path, csv_path, values, scratch, ws.ui);
        scratch.topo = kept_topo;
        scratch.sensor_offset = kept_offset;
        if (!written) return -1;

        // The line in the project, in number order, and the project on disk.
        const int place =
            enter_line(ws.project, number, project_relative_path(ws.project_file, model_path),
                       project_relative_path(ws.project_file, stem + ".bmp"));
        load_project_line(ws, place);
        if (!digitised) ws.current_line = place;
        write_current_project(ws);
        display_qvx_list(ws);
        if (!digitised) {
            build_body_list(ws);
            display_QVX_line(ws);
        }
        return 0;
    } catch (const std::exception& e) {
        ws.ui.show_message(std::string("An error occurred while reading the file: ") + e.what());
        return -1;
    }
}

}  // namespace trensil
