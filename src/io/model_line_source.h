// The lines of a model or project file, read the way the model reader reads them: each line whole,
// trimmed of blanks at both ends; a read past the end of the file gives an empty line, so a
// truncated file leaves the fields that follow at 0 instead of failing.
//
//   model_line_source lines;
//   if (!lines.open(path, error)) ...      // error: the system's description
//   std::string first = lines.next();       // "" once the file has ended
//   if (lines.at_end()) ...
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace trensil {

// A run-time failure inside a file reader or writer; its text is the description that follows
// the routine's own message.
class file_run_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class model_line_source {
public:
    // Reads the whole file; false with the system's description when it cannot be opened.
    bool open(const std::string& path, std::string& error);
    // Takes the text of a file already in memory (the fuzz targets and tests).
    void assign(const std::string& content);

    // The next line, trimmed; "" at the end of the file. Counts the reads past the end.
    std::string next();
    bool at_end() const { return position_ >= lines_.size(); }
    // Number of lines read so far, past the end included.
    std::size_t lines_read() const { return lines_read_; }
    // Number of reads that found the file already ended.
    std::size_t reads_past_end() const { return reads_past_end_; }
    std::size_t line_count() const { return lines_.size(); }
    std::size_t lines_left() const { return at_end() ? 0 : lines_.size() - position_; }
    // Whether the last line of the file has been read and had no line end: the file was cut
    // inside it, and its fields may be missing or cut short.
    bool ended_inside_last_line() const {
        return last_line_unended_ && !lines_.empty() && at_end();
    }

private:
    std::vector<std::string> lines_;
    std::size_t position_ = 0;
    std::size_t lines_read_ = 0;
    std::size_t reads_past_end_ = 0;
    bool last_line_unended_ = false;
};

// A file's date and time stamp: seconds since 1970-01-01 UTC of its last change. Throws
// file_run_error "File not found" when there is no such file (an empty path included).
double file_date_time(const std::string& path);

// Rounds a number read from a file to a 32-bit integer, halves to even. Throws file_run_error
// "Overflow" when it does not fit.
int to_i32(double value);
// Narrows a number read from a file to single precision. Throws file_run_error "Overflow" when
// it is outside the single-precision range or not a number.
float to_f32(double value);

}  // namespace trensil
