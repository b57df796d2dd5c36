// Reading stations from a free-column data file: one station a line, columns chosen by number.
//
//   read_location_data(0, model, model.profile, transforms, ui);  // count, ranges, allocate
//   if (model.profile.num_stations >= 1)
//       read_location_data(1, model, model.profile, transforms, ui);  // store
//
//   array1<std::string> fields;
//   int count = 0;
//   split_fields(count, "East, North, TMI", fields);  // count 3, fields(2) == "North"
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "core/model_record.h"
#include "io/coordinate_transform.h"
#include "support/bounded_array.h"
#include "support/platform.h"

namespace trensil {

// Reads the lines of a data file. Files with CR line ends (a CR within the first 512 characters)
// are read by plain lines; other files (LF only, or starting with byte 239, a byte-order mark) go
// through a tolerant reader that ends lines at LF or CR, turns tabs into blanks and drops other
// control characters and bytes from 127 up. A line read at the end of the file is empty.
class location_line_reader {
public:
    location_line_reader() = default;
    ~location_line_reader();
    location_line_reader(const location_line_reader&) = delete;
    location_line_reader& operator=(const location_line_reader&) = delete;

    // Opens the file and chooses the way of reading; false when it cannot be opened.
    bool open(const std::string& path);
    void close();
    bool is_open() const { return file_ != nullptr; }
    bool tolerant() const { return tolerant_; }
    // True when no character is left to read.
    bool at_end();
    // The next line, without its line end; "" at the end of the file.
    std::string read_line();
    void read_line(std::string& line);

private:
    bool fill_buffer();
    int peek_char();

    std::FILE* file_ = nullptr;
    bool tolerant_ = false;
    std::vector<char> buffer_;
    std::size_t buffer_pos_ = 0;
    std::size_t buffer_len_ = 0;
};

// Reads the data file of `definition` into `block`. Mode 0 counts the stations, works out the
// ranges and allocates the location and channel arrays for them; mode 1 stores the stations in
// those arrays; a mode below 0 only counts. The program-wide transform, when active, is applied
// to x, y and the sensor elevation. Returns 0 at the end of the file, -1 after an error (shown).
int read_location_data(int mode, const data_definition& definition, profile_block& block,
                       const transform_state& transforms, platform& ui);

// After a counting pass: shows "No valid x coordinate values were read" and its like for each
// column asked for (x, z, DTM, mag, gravity, in that order) whose range never saw a value, and
// returns -1 if there was one; 0 otherwise.
int check_location_ranges(const data_definition& definition, const profile_block& block,
                          platform& ui);

// Splits a line into fields 1..count at `delimiter`, or into words when the delimiter does not
// occur. A count of 0 takes every field; count comes back as the number found. Quotes at either
// end of a field become blanks and fields are trimmed. `fields` is re-dimensioned to 1..count
// (at least the count asked for).
void split_fields(int& count, const std::string& line, array1<std::string>& fields,
                  char delimiter = ',');

}  // namespace trensil
