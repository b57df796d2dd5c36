// Fuzz target of the model file reader: the bytes are a model file, read in its three modes with
// a scripted platform that cancels the search for a missing data file (so that the bodies are
// read). Oracle: reading what the writer makes of a read model gives the same text again.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/model_record.h"
#include "io/file_search.h"
#include "io/model_file_reader.h"
#include "io/model_file_writer.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"

namespace {

// A file of this run's own folder, which goes when the run ends.
std::string temp_path(const char* name) {
    return trensil::testing::process_scratch_dir().file(std::string(name) + ".qvx");
}

using trensil::testing::write_all;

trensil::model_record read(std::int16_t mode, const std::string& path, std::int16_t& status) {
    trensil::scripted_platform ui;
    ui.yes_answers.assign(4, true);  // "Cancel reading rest ...?" Yes: go on with the bodies
    trensil::file_search_state search;
    trensil::model_file_services services{ui, search, nullptr};
    trensil::model_record model;
    trensil::reset_model(model);
    trensil::read_model_file(mode, model, path, status, services);
    return model;
}

// Names whose first character is a separator lose it on each reading, and a double that
// overflowed prints as text that reads 0: such records are not expected to come back the same.
bool writes_back_exactly(const trensil::model_record& m) {
    const auto& t = m.transform;
    for (double v :
         {t.rotation, t.x_scale, t.y_scale, t.x_input_origin, t.y_input_origin, t.x_output_origin,
          t.y_output_origin, t.second_x_input_origin, t.second_y_input_origin,
          t.second_x_output_origin, t.second_y_output_origin, t.z_shift, t.z_scale})
        if (!std::isfinite(v)) return false;
    for (int i = 1; i <= m.num_bodies; ++i) {
        const auto& b = m.body(i);
        if (!std::isfinite(b.east) || !std::isfinite(b.north)) return false;
        if (!b.name.empty() && (b.name[0] == ',' || b.name[0] == '\t' || b.name[0] == ' '))
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = temp_path("trensil_fuzz_model");
    static const std::string again = temp_path("trensil_fuzz_model_again");
    write_all(path, std::string(reinterpret_cast<const char*>(data), size));

    std::int16_t status = 0;
    read(-1, path, status);
    read(1, path, status);
    trensil::model_record first = read(0, path, status);
    if (status != 0 || !writes_back_exactly(first)) return 0;

    // The inversion window is written but read back only from an old layout of line 2.
    first.profile.inversion_first_station = 0;
    first.profile.inversion_last_station = 0;
    const std::string text = trensil::model_file_text(false, first);
    write_all(again, text);
    trensil::model_record second = read(0, again, status);
    if (status != 0) std::abort();
    if (trensil::model_file_text(false, second) != text) std::abort();
    return 0;
}
