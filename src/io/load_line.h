// Loading one project line from its model file: the model, then its data, then the profile.
//
//   load_line_services services{ui, search, transforms, &settings};
//   std::int16_t status;
//   load_line("/lines/l10.qvx", model, "/survey/area.qvj", status, services);
//   if (status == 0) ... model.profile holds the stations, every body a response array
#pragma once

#include <cstdint>
#include <string>

#include "core/model_record.h"
#include "io/coordinate_transform.h"
#include "io/file_search.h"
#include "io/model_file_reader.h"
#include "support/platform.h"
#include "support/settings_store.h"

namespace trensil {

struct load_line_services {
    platform& ui;
    file_search_state& search;
    transform_state& transforms;
    const settings_store* settings = nullptr;
};

// The data half of loading a line, for a model already read: checks its data definition, counts
// the data, checks that every chosen column held a value ("No valid mag values were read" and
// its like), reads the data, sets up the profile and prepares the channels. `status` as for
// load_line.
void load_model_data(model_record& model, std::int16_t& status, load_line_services& services);

// Reads the model file (whole), checks its data definition, counts and reads the data, sets up
// the profile and prepares the channels. `status` is 0 when the line is ready to compute, -1
// when a step failed (the step showed why) or the data hold no station. `owner` is the file that
// names this model (the project file), or "".
void load_line(const std::string& path, model_record& model, const std::string& owner,
               std::int16_t& status, load_line_services& services,
               model_read_summary* summary = nullptr);

}  // namespace trensil
