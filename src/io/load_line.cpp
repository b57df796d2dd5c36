#include "io/load_line.h"

#include <new>

#include "io/data_definition.h"
#include "io/location_reader.h"
#include "io/profile_setup.h"

namespace trensil {

void load_model_data(model_record& model, std::int16_t& status, load_line_services& services) {
    status = -1;
    if (check_data_definition(model, services.transforms, services.ui) != 0) return;
    if (read_location_data(0, model, model.profile, services.transforms, services.ui) != 0) return;
    if (model.profile.num_stations < 1) return;
    // A chosen column that never held a number (every line shorter than it) is reported here,
    // before its -1e32 start value could stand for every reading.
    if (check_location_ranges(model, model.profile, services.ui) != 0) return;
    if (read_location_data(1, model, model.profile, services.transforms, services.ui) != 0) return;
    if (setup_profile(model, services.ui) != 0) return;
    prepare_channels(model);
    status = 0;
}

void load_line(const std::string& path, model_record& model, const std::string& /*owner*/,
               std::int16_t& status, load_line_services& services, model_read_summary* summary) {
    status = -1;
    try {
        model_file_services reader{services.ui, services.search, services.settings};
        std::int16_t read_status = 0;
        read_model_file(0, model, path, read_status, reader, summary);
        if (read_status != 0) return;
        load_model_data(model, status, services);
    } catch (const std::bad_alloc&) {
        services.ui.show_message("An error occurred while reading the qvx workspace file: " + path +
                                 " Error: Out of memory");
    } catch (const std::exception& e) {
        services.ui.show_message("An error occurred while reading the qvx workspace file: " + path +
                                 " Error: " + e.what());
    }
}

}  // namespace trensil
