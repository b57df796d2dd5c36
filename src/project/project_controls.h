// What the project window's handlers share among themselves (not for the window): showing the
// state of the workspace on its controls, and reading it back from them.
#pragma once

#include <string>

#include "project/line_files.h"
#include "project/project_workspace.h"

namespace trensil {

// "GridFileSelector_0" .. "_2": the file selector of each grid tab.
std::string grid_selector_name(int tab);
// "Check_sample_grid_0" .. "_2".
std::string sample_check_name(int tab);

// The scratch record's columns on the column boxes.
void show_column_positions(project_workspace& ws);
// The project's sample settings on the check boxes, and back into the project.
void show_sample_settings(project_workspace& ws);
void take_sample_settings(project_workspace& ws);
// Frame_grid_profiles (the points of the baseline) while digitising, else Frame_qvx_list.
void show_digitising_frames(project_workspace& ws, bool digitising);
// Opens the grid of a tab (an empty path closes it) and shows it. 0, or -1 (shown).
int open_tab_grid(project_workspace& ws, int tab, const std::string& path);
// The project's lines, the current one marked, and the baseline with its stations over the grids.
void show_viewer_lines(project_workspace& ws);
// Draws a profile digest in Graph_profile by distance along the line: the magnetics when it has
// them, else its ground and sensor elevations.
void draw_profile(project_workspace& ws, const line_profile& profile);
// Asks for a new line's number ("Enter the new line number", proposing the next one); false
// when cancelled or refused ("The specified line number is not valid", "The line number must be
// positive").
bool ask_line_number(project_workspace& ws, int& number);
// The grids that feed a new line: those ticked in Check_sample_grid and open.
line_sampling ticked_sampling(project_workspace& ws);

}  // namespace trensil
