#include "io/location_reader.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "support/text_tokens.h"

namespace trensil {

namespace {

constexpr std::size_t read_block_size = 1 << 20;
// How much of the start of a file is looked at to choose the way of reading it.
constexpr std::size_t line_end_scan_length = 512;
// First byte of a UTF-8 byte-order mark.
constexpr unsigned char byte_order_mark_start = 239;

constexpr double scratch_start = -1e32;
constexpr double undefined_threshold = -1e30;

const char* const reader_failure = "An error occurred while reading the location file : ";

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}
bool is_separator(char c) {
    return c == ' ' || c == '\t' || c == ',';
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Takes the next word off `rest` exactly as take_word does on a string, without copying: blanks
// before it are skipped, a comma where a word should begin closes an empty word, and after the
// word its separator run (blanks, tabs and at most one comma) goes with it.
std::string_view next_word(std::string_view& rest) {
    std::size_t start = 0;
    while (start < rest.size() && is_blank(rest[start])) ++start;
    if (start < rest.size() && rest[start] == ',') {
        std::size_t after = start + 1;
        while (after < rest.size() && is_blank(rest[after])) ++after;
        rest.remove_prefix(after);
        return {};
    }
    std::size_t end = start;
    while (end < rest.size() && !is_separator(rest[end])) ++end;
    const std::string_view word = rest.substr(start, end - start);
    bool comma_seen = false;
    while (end < rest.size() && is_separator(rest[end])) {
        if (rest[end] == ',') {
            if (comma_seen) break;
            comma_seen = true;
        }
        ++end;
    }
    rest.remove_prefix(end);
    return word;
}

// True when the whole word is one number (sign, digits, point, exponent with e, E, d or D), the
// words that is_numeric_text accepts.
bool is_number_word(std::string_view s) {
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < s.size() && is_digit(s[i])) ++i, ++digits;
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && is_digit(s[i])) ++i, ++digits;
    }
    if (digits == 0) return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
        std::size_t j = i + 1;
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
        if (j < s.size() && is_digit(s[j])) {
            while (j < s.size() && is_digit(s[j])) ++j;
            i = j;
        }
    }
    return i == s.size();
}

// Plain decimals ("-448428.44", "350", ".5") of up to 15 digits: the digits form an exact
// integer and the power of ten is exact, so one division gives the correctly rounded value,
// the same as a full conversion. False for anything else.
bool plain_decimal(std::string_view s, double& value) {
    static constexpr double powers_of_ten[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                               1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    std::size_t i = 0;
    const bool negative = !s.empty() && s[0] == '-';
    if (negative) ++i;
    std::uint64_t digits = 0;
    int count = 0;
    int decimals = 0;
    bool point = false;
    for (; i < s.size(); ++i) {
        const char c = s[i];
        if (is_digit(c)) {
            digits = digits * 10 + static_cast<std::uint64_t>(c - '0');
            ++count;
            if (point) ++decimals;
        } else if (c == '.' && !point) {
            point = true;
        } else {
            return false;
        }
    }
    if (count == 0 || count > 15) return false;
    value = static_cast<double>(digits) / powers_of_ten[decimals];
    if (negative) value = -value;
    return true;
}

// Value of a word that must be a number as a whole; false when it is not one. Plain decimals
// are converted directly; everything else (an exponent, a plus sign, long digit strings, text)
// is judged by the full rule and converted by parse_number. A number too large for the column
// that takes it is a reading error, as it would be on assignment.
bool numeric_token(std::string_view token, bool single_precision, double& value) {
    if (!plain_decimal(token, value)) {
        if (!is_number_word(token)) return false;
        value = parse_number(token);
    }
    const double largest =
        single_precision ? std::numeric_limits<float>::max() : std::numeric_limits<double>::max();
    if (!(std::fabs(value) <= largest)) throw std::overflow_error("Overflow");
    return true;
}

// Scratch values of one line. They start once for the file and are not reset between lines,
// so a column missing from a short line keeps the value of the line before.
struct station_values {
    double x = scratch_start;
    double y = scratch_start;
    double sensor = scratch_start;
    double ground = scratch_start;
    double mag = scratch_start;
    double grav = scratch_start;
};

// Takes the used columns from the words of `rest` into `v`; false when a used column is not
// numeric, in which case the values taken before it stay.
bool take_station(std::string_view rest, int last_column, const data_definition& d,
                  station_values& v) {
    for (int k = 1; k <= last_column && !rest.empty(); ++k) {
        const std::string_view token = next_word(rest);
        const bool location_column = k == d.xpos || k == d.ypos || k == d.zpos;
        const bool other_column = k == d.dtm || k == d.magpos || k == d.gravpos;
        if (!location_column && !other_column) continue;
        // Sensor, ground and the channels are held in single precision, x and y in double.
        const bool single_precision = !(k == d.xpos || k == d.ypos);
        double value = 0.0;
        if (!numeric_token(token, single_precision, value)) return false;
        // One token feeds at most one of x, y, sensor, and independently any of the others.
        if (k == d.xpos)
            v.x = value;
        else if (k == d.ypos)
            v.y = value;
        else if (k == d.zpos)
            v.sensor = value;
        if (k == d.dtm) v.ground = value;
        if (k == d.magpos) v.mag = value;
        if (k == d.gravpos) v.grav = value;
    }
    return true;
}

template <class T>
void widen(T& lo, T& hi, T value) {
    if (value < lo)
        lo = value;
    else if (value > hi)
        hi = value;
}

void start_ranges(profile_block& b, const station_values& v) {
    b.xmin = b.xmax = v.x;
    b.ymin = b.ymax = v.y;
    b.zmin = b.zmax = static_cast<float>(v.sensor);
    b.dtm_min = b.dtm_max = static_cast<float>(v.ground);
    b.mag_min = b.mag_max = static_cast<float>(v.mag);
    b.grav_min = b.grav_max = static_cast<float>(v.grav);
}

void widen_ranges(profile_block& b, const data_definition& d, const station_values& v) {
    widen(b.xmin, b.xmax, v.x);
    widen(b.ymin, b.ymax, v.y);
    if (d.zpos > 0) widen(b.zmin, b.zmax, static_cast<float>(v.sensor));
    if (d.dtm > 0) widen(b.dtm_min, b.dtm_max, static_cast<float>(v.ground));
    if (d.magpos > 0) widen(b.mag_min, b.mag_max, static_cast<float>(v.mag));
    if (d.gravpos > 0) widen(b.grav_min, b.grav_max, static_cast<float>(v.grav));
}

void store_station(profile_block& b, int i, const station_values& v) {
    b.location(0, i) = 0.0;
    b.location(easting_row, i) = v.x;
    b.location(northing_row, i) = v.y;
    b.location(sensor_row, i) = v.sensor;
    b.location(ground_row, i) = v.ground;
    b.mag_channels(observed_raw, i) = static_cast<float>(v.mag);
    b.grav_channels(observed_raw, i) = static_cast<float>(v.grav);
}

// True when all eight bytes at `p` lie in 32..126: no byte below 32 and none above 126, tested
// on a whole word at once.
bool all_printable(const char* p) {
    constexpr std::uint64_t ones = 0x0101010101010101ull;
    constexpr std::uint64_t highs = 0x8080808080808080ull;
    std::uint64_t x;
    std::memcpy(&x, p, sizeof x);
    const std::uint64_t below_32 = (x - ones * 32) & ~x & highs;
    const std::uint64_t above_126 = ((x + ones * (127 - 126)) | x) & highs;
    return (below_32 | above_126) == 0;
}

}  // namespace

location_line_reader::~location_line_reader() {
    close();
}

bool location_line_reader::open(const std::string& path) {
    close();
    file_ = std::fopen(path.c_str(), "rb");
    if (file_ == nullptr) return false;
    buffer_.resize(read_block_size);
    buffer_pos_ = 0;
    buffer_len_ = std::fread(buffer_.data(), 1, line_end_scan_length, file_);
    // A CR near the start means CR line ends and plain lines; without one (LF-only files), or
    // with a byte-order mark, every character is looked at.
    const char* begin = buffer_.data();
    const bool has_cr = std::find(begin, begin + buffer_len_, '\r') != begin + buffer_len_;
    const bool marked =
        buffer_len_ > 0 && static_cast<unsigned char>(buffer_[0]) == byte_order_mark_start;
    tolerant_ = !has_cr || marked;
    return true;
}

void location_line_reader::close() {
    if (file_ != nullptr) std::fclose(file_);
    file_ = nullptr;
    buffer_pos_ = buffer_len_ = 0;
}

bool location_line_reader::fill_buffer() {
    if (buffer_pos_ < buffer_len_) return true;
    if (file_ == nullptr) return false;
    buffer_pos_ = 0;
    buffer_len_ = std::fread(buffer_.data(), 1, buffer_.size(), file_);
    return buffer_len_ > 0;
}

bool location_line_reader::at_end() {
    return !fill_buffer();
}

int location_line_reader::peek_char() {
    if (!fill_buffer()) return -1;
    return static_cast<unsigned char>(buffer_[buffer_pos_]);
}

std::string location_line_reader::read_line() {
    std::string line;
    read_line(line);
    return line;
}

void location_line_reader::read_line(std::string& line) {
    line.clear();
    while (fill_buffer()) {
        const char* begin = buffer_.data() + buffer_pos_;
        const char* end = buffer_.data() + buffer_len_;
        const char* p = begin;
        if (!tolerant_) {
            while (p < end && *p != '\r' && *p != '\n') ++p;
            line.append(begin, p);
        } else {
            // Printable characters (32..126) pass eight at a time, then one at a time; the rest
            // are looked at.
            bool plain = true;  // nothing to map or drop
            while (end - p >= 8 && all_printable(p)) p += 8;
            for (; p < end; ++p) {
                const auto c = static_cast<unsigned char>(*p);
                if (static_cast<unsigned char>(c - 32) < 95) continue;
                if (c == '\r' || c == '\n') break;
                plain = false;
            }
            if (plain) {
                line.append(begin, p);
            } else {
                for (const char* q = begin; q < p; ++q) {
                    const auto c = static_cast<unsigned char>(*q);
                    if (c == '\t')
                        line.push_back(' ');
                    else if (c >= 32 && c < 127)
                        line.push_back(static_cast<char>(c));
                }
            }
        }
        buffer_pos_ += static_cast<std::size_t>(p - begin);
        if (p == end) continue;  // the line goes on in the next block
        // A line end: LF, CR, or CR LF taken as one.
        const char ending = *p;
        ++buffer_pos_;
        if (ending == '\r' && peek_char() == '\n') ++buffer_pos_;
        return;
    }
}

int read_location_data(int mode, const data_definition& definition, profile_block& block,
                       const transform_state& transforms, platform& ui) {
    location_line_reader reader;
    if (!reader.open(definition.data_file)) {
        ui.show_message(std::string(reader_failure) + std::strerror(errno));
        return -1;
    }
    try {
        const data_definition& d = definition;
        const int last_column = std::max({d.xpos, d.ypos, d.zpos, d.dtm, d.magpos, d.gravpos, -1});
        const data_transform& transform = transforms.program_transform;
        const int stored_capacity = mode == 1 ? block.location.col_hi() : 0;

        std::string line;
        // A first data line past the end of the file leaves no station: stop at the end
        // rather than pass over lines that are not there.
        for (int i = 1; i < d.nhead && !reader.at_end(); ++i) reader.read_line(line);

        station_values v;
        int count = 0;
        for (;;) {
            // Pass over nstep - 1 lines (comments not counted); the next non-empty line after
            // them is the station.
            line.clear();
            int c = 0;
            bool end_of_file = false;
            while (line.empty() || c < d.nstep) {
                if (reader.at_end()) {
                    end_of_file = true;
                    break;
                }
                reader.read_line(line);
                if (!line.empty() && (line[0] == '!' || line[0] == '\\'))
                    line.clear();
                else
                    ++c;
            }
            if (end_of_file) break;

            if (!take_station(line, last_column, d, v)) continue;

            station_values t = v;
            if (transform.active != 0) apply_transform(1, transform, t.x, t.y, t.sensor);

            ++count;
            if (mode == 1) {
                if (count > stored_capacity) break;  // the file grew since it was counted
                store_station(block, count, t);
            } else if (mode == 0) {
                if (count == 1)
                    start_ranges(block, t);
                else
                    widen_ranges(block, d, t);
            }
        }
        reader.close();

        if (mode == 0) {
            block.num_stations = count;
            if (count >= 1) {
                // The arrays the storing pass fills; profile set-up sizes the rest.
                block.station_capacity = count;
                block.location.resize(0, 4, 1, count);
                block.mag_channels.resize(1, 10, 1, count);
                block.grav_channels.resize(1, 10, 1, count);
                block.profile_distance.resize(1, count);
            }
        } else if (mode < 0) {
            block.num_stations = count;
        }
        return 0;
    } catch (const std::exception& e) {
        reader.close();
        ui.show_message(std::string(reader_failure) + e.what());
        return -1;
    }
}

int check_location_ranges(const data_definition& definition, const profile_block& block,
                          platform& ui) {
    // A range whose top is still below the undefined threshold never saw a value.
    int status = 0;
    auto report = [&](bool asked, double top, const char* message) {
        if (asked && !(top > undefined_threshold)) {
            ui.show_message(message);
            status = -1;
        }
    };
    report(true, block.xmax, "No valid x coordinate values were read");
    report(definition.zpos > 0, block.zmax, "No valid z coordinate values were read");
    report(definition.dtm > 0, block.dtm_max, "No valid DTM values were read");
    report(definition.magpos > 0, block.mag_max, "No valid mag values were read");
    report(definition.gravpos > 0, block.grav_max, "No valid gravity values were read");
    return status;
}

void split_fields(int& count, const std::string& line, array1<std::string>& fields,
                  char delimiter) {
    const int wanted = count;
    std::vector<std::string> found;
    std::string text = trim_text(line);
    auto room = [&] { return wanted <= 0 || static_cast<int>(found.size()) < wanted; };
    if (text.find(delimiter) != std::string::npos) {
        std::size_t start = 0;
        while (room()) {
            const std::size_t next = text.find(delimiter, start);
            if (next == std::string::npos) {
                found.push_back(text.substr(start));
                break;
            }
            found.push_back(text.substr(start, next - start));
            start = next + 1;
        }
    } else {
        while (!text.empty() && room()) found.push_back(take_word(text));
    }
    for (std::string& field : found) {
        if (!field.empty() && field.front() == '"') field.front() = ' ';
        if (!field.empty() && field.back() == '"') field.back() = ' ';
        field = trim_text(field);
    }
    count = static_cast<int>(found.size());
    fields.resize(1, std::max(wanted, count));
    for (int i = 1; i <= count; ++i) fields(i) = std::move(found[static_cast<std::size_t>(i - 1)]);
}

}  // namespace trensil
