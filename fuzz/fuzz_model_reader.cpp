// Fuzz target of the model file reader: the bytes are a model file, read in its three modes with
// a scripted platform that cancels the search for a missing data file (so that the bodies are
// read). Oracle: reading what the writer makes of a read model gives the same text again, and
// that text is never taken for a file cut short.
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

trensil::model_record read(std::int16_t mode, const std::string& path, std::int16_t& status,
                           trensil::model_read_summary* summary = nullptr) {
    trensil::scripted_platform ui;
    ui.yes_answers.assign(4, true);  // "Cancel reading rest ...?" Yes: go on with the bodies
    trensil::file_search_state search;
    trensil::model_file_services services{ui, search, nullptr};
    trensil::model_record model;
    trensil::reset_model(model);
    trensil::read_model_file(mode, model, path, status, services, summary);
    return model;
}

// Names whose first character is a separator lose it on each reading: such records are not
// expected to come back the same. (A number that is not finite does not read at all.)
bool writes_back_exactly(const trensil::model_record& m) {
    for (int i = 1; i <= m.num_bodies; ++i) {
        const std::string& name = m.body(i).name;
        if (!name.empty() && (name[0] == ',' || name[0] == '\t' || name[0] == ' ')) return false;
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
    // What the writer makes is whole: never read as cut short.
    trensil::model_read_summary summary;
    trensil::model_record second = read(0, again, status, &summary);
    if (status != 0 || summary.truncated) std::abort();
    if (trensil::model_file_text(false, second) != text) std::abort();
    return 0;
}
