// Feeds arbitrary bytes to the data reader as a data file, the first four bytes choosing the
// first data line, the read increment and the sensor and ground columns. Oracle: the storing
// pass finds the stations the counting pass counted, a reading failure is reported, and profile
// set-up either refuses the profile or leaves strictly growing distances, at most 8193 stations
// when resampled.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/model_record.h"
#include "io/location_reader.h"
#include "io/profile_setup.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"

namespace {

// The data file, in this run's own folder, which goes when the run ends.
const std::string& data_path() {
    static const std::string path = trensil::testing::process_scratch_dir().file("location_data");
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace trensil;
    if (size < 4) return 0;
    {
        std::ofstream out(data_path(), std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data + 4), static_cast<std::streamsize>(size - 4));
    }
    model_record model;
    reset_model(model);
    model.data_file = data_path();
    model.nhead = 1 + data[0] % 3;
    model.nstep = 1 + data[1] % 3;
    model.xpos = 1;
    model.ypos = 2;
    model.magpos = 3;
    model.zpos = data[2] % 5;
    model.dtm = data[3] % 6;
    model.station_spacing = static_cast<float>(data[3] % 3);
    model.num_bodies = 1;
    new_body_defaults(model, 1, nullptr);

    scripted_platform ui;
    transform_state transforms;
    // A failure (a number too large for its column) must be reported, and only then.
    auto failed = [&](int status) {
        const bool reported =
            !ui.messages.empty() &&
            ui.messages.back().starts_with("An error occurred while reading the location file : ");
        if ((status != 0) != reported) std::abort();
        return status != 0;
    };
    if (failed(read_location_data(0, model, model.profile, transforms, ui))) return 0;
    const int counted = model.profile.num_stations;
    if (counted < 1) return 0;
    if (failed(read_location_data(1, model, model.profile, transforms, ui))) std::abort();
    if (model.profile.num_stations != counted) std::abort();

    if (setup_profile(model, ui) != 0) return 0;
    const profile_block& p = model.profile;
    if (p.num_stations < 1 || p.profile_distance(1) != 0.0f) std::abort();
    if (model.station_spacing > 0.0f && p.num_stations > max_resampled_stations) std::abort();
    for (int i = 2; i <= p.num_stations; ++i)
        if (!(p.profile_distance(i) > p.profile_distance(i - 1))) std::abort();
    return 0;
}
