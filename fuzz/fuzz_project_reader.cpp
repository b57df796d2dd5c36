// Fuzz target of the project file reader: the bytes are a project file. Oracle: a project that
// reads is written and read again to the same text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "io/project_file.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"

namespace {

// A file of this run's own folder, which goes when the run ends.
std::string temp_path(const char* name) {
    return trensil::testing::process_scratch_dir().file(std::string(name) + ".qvj");
}

using trensil::testing::write_all;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = temp_path("trensil_fuzz_project");
    write_all(path, std::string(reinterpret_cast<const char*>(data), size));
    trensil::scripted_platform ui;
    trensil::project_definition project;
    std::int16_t status = 0;
    trensil::read_project(path, project, status, ui);
    if (status != 0) return 0;

    const std::string text = trensil::project_file_text(project);
    write_all(path, text);
    trensil::project_definition again;
    trensil::read_project(path, again, status, ui);
    if (status != 0 || trensil::project_file_text(again) != text) std::abort();
    return 0;
}
