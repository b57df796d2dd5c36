// A data file for a new line: choosing it, previewing its first lines, picking its columns and
// reading its stations.
#include <cctype>

#include "io/load_line.h"
#include "io/location_reader.h"
#include "io/model_file_reader.h"
#include "project/column_names.h"
#include "project/project_controls.h"
#include "project/project_workspace.h"
#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

constexpr const char* data_filter =
    "Data Files (*.dat;*.xyz;*.csv;*.txt)|*.dat;*.xyz;*.csv;*.txt|Profile Model Files "
    "(*.qvx)|*.qvx|All files (*.*)|*.*";

std::string upper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// The scratch record's stations are no longer those of its data file.
void forget_locations(project_workspace& ws) {
    ws.locations_loaded = false;
    ws.scratch.profile.num_stations = 0;
    ws.scratch_profile = line_profile{};
}

}  // namespace

int command_add_new_file(project_workspace& ws) {
    const auto chosen =
        ws.ui.choose_open_file("Select the observed  data file", data_filter, ws.scratch.data_file);
    if (!chosen) return -1;
    const std::string path = *chosen;
    if (!file_exists(path)) {
        ws.ui.show_message("That file does not exist");
        return -1;
    }
    forget_locations(ws);
    if (upper(extension_part(path)) == "QVX") {
        // A model's data definition, columns and all, for a line over the same data file.
        model_file_services reader{ws.ui, ws.search, &ws.settings};
        std::int16_t status = 0;
        read_model_file(-1, ws.scratch, path, status, reader);
        if (status != 0) return -1;
        ws.scratch.model_file.clear();
        show_column_positions(ws);
        if (load_names(ws, ws.scratch.data_file) != 0) return -1;
    } else {
        ws.scratch.data_file = path;
        if (load_names(ws, path) != 0) return -1;
        // The columns a names line makes plain are chosen for the user, who can change them.
        data_definition named = ws.scratch;
        if (ws.num_header_lines >= 1 && columns_from_names_line(ws.header_lines(1), named) &&
            named.xpos >= 1 && named.ypos >= 1 && (named.magpos >= 1 || named.gravpos >= 1))
            static_cast<data_definition&>(ws.scratch) = named;
        show_column_positions(ws);
    }
    decode_names(ws);
    return 0;
}

int load_names(project_workspace& ws, const std::string& path) {
    try {
        location_line_reader reader;
        if (!reader.open(path)) {
            ws.ui.show_message("An error occurred while loading the column names onto the form: " +
                               std::string("the file cannot be opened: ") + path);
            return -1;
        }
        ws.num_header_lines = 0;
        while (ws.num_header_lines < stored_header_lines && !reader.at_end())
            ws.header_lines(++ws.num_header_lines) = reader.read_line();
        display_column_data(ws);
        return 0;
    } catch (const std::exception& e) {
        ws.ui.show_message(
            std::string("An error occurred while loading the column names onto the form: ") +
            e.what());
        return -1;
    }
}

void decode_column_positions(project_workspace& ws) {
    if (ws.updating_display) return;
    try {
        model_record& m = ws.scratch;
        const std::pair<const char*, std::int32_t*> boxes[] = {
            {"Text_MAGINV_nhead", &m.nhead},     {"Text_MAGINV_nstep", &m.nstep},
            {"Text_MAGINV_xpos", &m.xpos},       {"Text_MAGINV_ypos", &m.ypos},
            {"Text_MAGINV_zpos", &m.zpos},       {"Text_MAGINV_magpos", &m.magpos},
            {"Text_MAGINV_gravpos", &m.gravpos}, {"Text_MAGINV_dtm", &m.dtm}};
        bool changed = false;
        for (const auto& [control, field] : boxes) {
            const std::string text = ws.view->text(control);
            if (!is_numeric_text(text)) continue;
            const auto value = static_cast<std::int32_t>(parse_number(text));
            changed = changed || value != *field;
            *field = value;
        }
        if (changed) forget_locations(ws);
    } catch (const std::exception& e) {
        ws.ui.show_message(
            std::string("An error occurred while decoding the column definitions: ") + e.what());
    }
}

void decode_names(project_workspace& ws) {
    if (ws.updating_display) return;
    try {
        const std::string text = ws.view->text("Text_locations_name_line");
        ws.scratch.names_line = is_numeric_text(text) ? static_cast<int>(parse_number(text)) : 0;
        std::vector<std::string> items{"N/A"};
        const int line = ws.scratch.names_line;
        if (line > 0 && line < 65 && line <= ws.num_header_lines) {
            for (std::string& name : decode_names_line(ws.header_lines(line)))
                items.push_back(std::move(name));
        }
        project_display_guard guard(ws);
        ws.view->set_items("Combo_names", items);
        ws.view->select_item("Combo_names", 0);
    } catch (const std::exception& e) {
        ws.ui.show_message(std::string("An error occurred while decoding the names: ") + e.what());
    }
}

void display_column_data(project_workspace& ws) {
    try {
        std::vector<std::string> lines;
        for (int i = 1; i <= ws.num_header_lines; ++i) lines.push_back(ws.header_lines(i));
        project_display_guard guard(ws);
        ws.view->set_table("Grid_database", column_table(lines));
    } catch (const std::exception& e) {
        ws.ui.show_message(std::string("An error occurred while displaying the column data: ") +
                           e.what());
    }
}

int command_load_locations(project_workspace& ws) {
    decode_column_positions(ws);
    decode_names(ws);
    forget_locations(ws);
    model_record& m = ws.scratch;
    try {
        // The same road as a project line's data: definition checked, counted, the chosen
        // columns checked for usable values, stored, set up as a profile.
        load_line_services services{ws.ui, ws.search, ws.transforms, &ws.settings};
        std::int16_t status = 0;
        m.num_bodies = 0;
        load_model_data(m, status, services);
        if (status != 0) return -1;
        fill_line_profile(m, ws.scratch_profile);
        ws.locations_loaded = true;
        draw_profile(ws, ws.scratch_profile);
        return 0;
    } catch (const std::exception& e) {
        ws.ui.show_message(std::string("An error occurred while reading the file: ") + e.what());
        return -1;
    }
}

}  // namespace trensil
