// Models built in code for the export tests, a scratch directory, and the DXF reader script.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "core/model_record.h"
#include "support/scratch_dir.h"
#include "test_paths.h"

namespace trensil::testing {

// A model whose stations lie at the given (east, north) points, with the plan ranges set as the
// profile set-up sets them.
inline model_record model_with_stations(const std::vector<std::pair<double, double>>& points) {
    model_record model;
    reset_model(model);
    const int n = static_cast<int>(points.size());
    model.profile.allocate_stations(n);
    for (int i = 1; i <= n; ++i) {
        const auto& [e, nn] = points[static_cast<std::size_t>(i - 1)];
        model.profile.location(easting_row, i) = e;
        model.profile.location(northing_row, i) = nn;
        model.profile.xmin = std::min(model.profile.xmin, e);
        model.profile.xmax = std::max(model.profile.xmax, e);
        model.profile.ymin = std::min(model.profile.ymin, nn);
        model.profile.ymax = std::max(model.profile.ymax, nn);
    }
    return model;
}

// Appends a body of `type` at (east, north) with its strike and dip, and stores the strike and
// dip cosines on it as a response would.
inline body_record& add_body(model_record& model, int type, const std::string& name, double east,
                             double north, float strike, float dip) {
    model.num_bodies += 1;
    if (model.num_bodies > model.bodies.hi()) grow_bodies(model, model.num_bodies + 16);
    body_record& b = model.body(model.num_bodies);
    b = body_record{};
    b.type = type;
    b.name = name;
    b.east = east;
    b.north = north;
    b.strike.value = strike;
    b.dip.value = dip;
    b.cos_strike = static_cast<float>(std::cos(strike * 0.017453292));
    b.sin_strike = static_cast<float>(std::sin(strike * 0.017453292));
    b.cos_dip = static_cast<float>(std::cos(dip * 0.017453292));
    b.sin_dip = static_cast<float>(std::sin(dip * 0.017453292));
    return b;
}

// The lines of a file without their "\r\n" ends.
inline std::vector<std::string> read_lines(const std::string& path) {
    std::vector<std::string> lines;
    std::istringstream in(read_all(path));
    for (std::string line; std::getline(in, line);)
        lines.push_back(line.substr(0, line.find('\r')));
    return lines;
}

// Standard output of a shell command and its exit status.
inline std::pair<std::string, int> run_command(const std::string& command) {
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return {output, -1};
    char buffer[4096];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, got);
    const int status = ::pclose(pipe);
    return {output, status};
}

// One item as the DXF reader reports it.
struct dxf_item {
    std::string kind;
    std::string layer;
    int colour = 0;
    std::vector<double> numbers;
};

// Reads `path` with Debian's ezdxf through tests/exports/read_dxf.py. `readable` is false when
// the reader refused the file.
struct dxf_reading {
    bool readable = false;
    std::vector<double> extmin, extmax;
    std::string layers;
    std::vector<dxf_item> entities;

    std::vector<dxf_item> of_kind(const std::string& kind) const {
        std::vector<dxf_item> found;
        for (const auto& e : entities)
            if (e.kind == kind) found.push_back(e);
        return found;
    }
};

inline std::vector<double> parse_numbers(const std::string& text) {
    std::istringstream in(text);
    return {std::istream_iterator<double>(in), std::istream_iterator<double>()};
}

inline dxf_reading read_dxf(const std::string& path) {
    const std::string script = std::string(TRENSIL_SOURCE_DIR) + "/tests/exports/read_dxf.py";
    const auto [output, status] =
        run_command("/usr/bin/python3 '" + script + "' '" + path + "' 2>&1");
    dxf_reading reading;
    reading.readable = status == 0;
    std::istringstream in(output);
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> f;
        std::istringstream fields(line);
        for (std::string field; std::getline(fields, field, '\t');) f.push_back(field);
        if (f.size() == 2 && f[0] == "EXTMIN") reading.extmin = parse_numbers(f[1]);
        if (f.size() == 2 && f[0] == "EXTMAX") reading.extmax = parse_numbers(f[1]);
        if (f.size() == 2 && f[0] == "LAYERS") reading.layers = f[1];
        if (f.size() >= 3)
            reading.entities.push_back(
                {f[0], f[1], std::stoi(f[2]),
                 f.size() > 3 ? parse_numbers(f[3]) : std::vector<double>{}});
    }
    return reading;
}

}  // namespace trensil::testing
