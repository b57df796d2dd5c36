#include "io/model_line_source.h"

#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "support/text_tokens.h"

namespace trensil {

bool model_line_source::open(const std::string& path, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in.is_open()) {
        error = errno == ENOENT ? std::string("File not found") : std::strerror(errno);
        return false;
    }
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) {
        error = "Path/File access error";
        return false;
    }
    const std::string content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) {
        error = "Input past end of file";
        return false;
    }
    assign(content);
    return true;
}

void model_line_source::assign(const std::string& content) {
    lines_.clear();
    position_ = 0;
    lines_read_ = 0;
    reads_past_end_ = 0;
    // Every line the program writes ends with a line end: one missing at the end of the file
    // means the file was cut inside its last line.
    last_line_unended_ = !content.empty() && content.back() != '\n';
    std::size_t start = 0;
    while (start < content.size()) {
        std::size_t end = content.find('\n', start);
        if (end == std::string::npos) end = content.size();
        lines_.push_back(content.substr(start, end - start));
        start = end + 1;
    }
}

std::string model_line_source::next() {
    ++lines_read_;
    if (at_end()) {
        ++reads_past_end_;
        return std::string();
    }
    return trim_text(lines_[position_++]);
}

double file_date_time(const std::string& path) {
    struct stat info {};
    if (path.empty() || ::stat(path.c_str(), &info) != 0) throw file_run_error("File not found");
    return static_cast<double>(info.st_mtim.tv_sec) +
           1e-9 * static_cast<double>(info.st_mtim.tv_nsec);
}

int to_i32(double value) {
    const double r = std::nearbyint(value);
    if (!(r >= static_cast<double>(std::numeric_limits<int>::min()) &&
          r <= static_cast<double>(std::numeric_limits<int>::max())))
        throw file_run_error("Overflow");
    return static_cast<int>(r);
}

float to_f32(double value) {
    if (!(std::fabs(value) <= static_cast<double>(std::numeric_limits<float>::max())))
        throw file_run_error("Overflow");
    return static_cast<float>(value);
}

}  // namespace trensil
