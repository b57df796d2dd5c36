// Reading the model file (extension "qvx"), format versions 0 to 7.
//
//   file_search_state search;                      // lives for the program's run
//   model_file_services services{ui, search, &settings};
//   std::int16_t status;
//   read_model_file(0, model, "/lines/l10.qvx", status, services);   // whole file
//   read_model_file(-1, scratch, path, status, services);   // header and display settings only
//   read_model_file(1, model, path, status, services);       // bodies only
//
// The reader checks little: a bad number reads 0, a file that ends early leaves the fields that
// follow at 0 and is marked truncated in the summary. A failure to read the file at all, a data
// file that the search gave up on, or a number that does not fit its field (beyond its precision
// or not finite: "Overflow") ends it with "An error occurred while reading the location file : "
// and status -1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/model_record.h"
#include "io/file_search.h"
#include "support/platform.h"
#include "support/settings_store.h"

namespace trensil {

// Largest body count the reader accepts; a larger count is a run-time error ("Out of memory")
// rather than an attempt to hold that many bodies.
inline constexpr int max_model_bodies = 32767;

// What the reader needs from the program: where to report, the file search that finds a data
// file whose stored path has moved, and the settings that give new bodies their defaults.
struct model_file_services {
    platform& ui;
    file_search_state& search;
    const settings_store* settings = nullptr;
};

// What the reader found out about the file besides the record: the format version it was read
// as and whether the file ended inside the header or the body lines (lines missing, or the last
// of them cut short without its line end).
struct model_read_summary {
    std::int32_t format_version = 0;
    bool truncated = false;
};

// `mode` 0: the whole file; -1: line 1, the header and the display settings (num_bodies is left
// as it was); above 0: the bodies only (data file and header fields untouched). `status` is 0 on
// success, -1 after a failure that was shown; what was read until then stays in the record.
void read_model_file(std::int16_t mode, model_record& model, const std::string& path,
                     std::int16_t& status, model_file_services& services,
                     model_read_summary* summary = nullptr);

}  // namespace trensil
