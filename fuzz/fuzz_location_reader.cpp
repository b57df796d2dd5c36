// Fuzz target of the data file reader and the profile set-up: the bytes are a data file. A first
// line "#def NHEAD NSTEP X Y Z DTM MAG GRAV" chooses the columns and is removed; without it the
// columns of the bundled example line are used. Oracle: the counting and the storing pass agree
// on the stations, and a profile that sets up never runs backwards.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/model_record.h"
#include "io/coordinate_transform.h"
#include "io/location_reader.h"
#include "io/profile_setup.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"
#include "support/text_tokens.h"

namespace {

// A file of this run's own folder, which goes when the run ends.
std::string temp_path(const char* name) {
    return trensil::testing::process_scratch_dir().file(std::string(name) + ".csv");
}

// Small column numbers only: the reader takes every word up to the largest column.
int column(std::string& line) {
    const double v = trensil::parse_number(trensil::take_word(line));
    return v > -2 && v < 40 ? static_cast<int>(v) : 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = temp_path("trensil_fuzz_location");
    std::string bytes(reinterpret_cast<const char*>(data), size);

    trensil::model_record model;
    trensil::reset_model(model);
    model.nhead = 2;
    model.xpos = 3;
    model.ypos = 4;
    model.zpos = 9;
    model.dtm = 11;
    model.magpos = 12;
    model.gravpos = 0;
    if (bytes.starts_with("#def ")) {
        const std::size_t end = bytes.find('\n');
        std::string def = bytes.substr(5, end == std::string::npos ? std::string::npos : end - 5);
        bytes.erase(0, end == std::string::npos ? bytes.size() : end + 1);
        model.nhead = column(def);
        model.nstep = column(def);
        model.xpos = column(def);
        model.ypos = column(def);
        model.zpos = column(def);
        model.dtm = column(def);
        model.magpos = column(def);
        model.gravpos = column(def);
        if (model.nstep < 1) model.nstep = 1;
    }
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out << bytes;
    }
    model.data_file = path;

    trensil::scripted_platform ui;
    trensil::transform_state transforms;
    if (trensil::read_location_data(0, model, model.profile, transforms, ui) != 0) return 0;
    const int counted = model.profile.num_stations;
    if (counted < 1) return 0;
    if (trensil::read_location_data(1, model, model.profile, transforms, ui) != 0) return 0;
    if (model.profile.num_stations != counted) std::abort();
    if (trensil::setup_profile(model, ui) != 0) return 0;
    const auto& d = model.profile.profile_distance;
    for (int i = 2; i <= model.profile.num_stations; ++i)
        if (std::isfinite(d(i)) && std::isfinite(d(i - 1)) && d(i) < d(i - 1)) std::abort();
    return 0;
}
