// The real magnetic grid of the Mississippi Alluvial Plain survey, given in eight formats, read
// and sampled by the program, against the values that Debian's gdallocationinfo reads from the
// same files independently.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "grid/gdal_grid.h"
#include "support/scratch_dir.h"
#include "test_paths.h"

namespace trensil {
namespace {

const std::string grid_dir = std::string(TRENSIL_SHARED_DATA_DIR) + "/usgs-map-mag-grid/";

struct grid_format {
    const char* file;
    double tolerance;  // the text formats keep three decimals
};
const grid_format formats[] = {
    {"map_mag_1km.tif", 0.0},         {"map_mag_1km.ers", 0.0},    {"map_mag_1km_surfer6.grd", 0.0},
    {"map_mag_1km_surfer7.grd", 0.0}, {"map_mag_1km.asc", 0.0005}, {"map_mag_1km.nc", 0.0},
    {"map_mag_1km_gmt.grd", 0.0},     {"map_mag_1km.xyz", 0.0005},
};

// Cell centres run 346,455 .. 475,455 E and 1,173,785 .. 1,247,785 N.
constexpr double first_centre_x = 346455.0, first_centre_y = 1173785.0;
constexpr int columns = 130, rows = 75;

struct point {
    double x, y;
};

// Every cell centre, row by row from the south.
std::vector<point> centres() {
    std::vector<point> p;
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c)
            p.push_back({first_centre_x + 1000.0 * c, first_centre_y + 1000.0 * r});
    return p;
}

// The values gdallocationinfo reads at `points` (map coordinates, the cell that holds each).
std::vector<double> located_values(const std::string& file, const std::vector<point>& points) {
    trensil::testing::scratch_dir dir("gdal_grid_points");
    const std::string list = dir.file("points.txt");
    std::ostringstream text;
    text.precision(12);
    for (const point& p : points) text << p.x << " " << p.y << "\n";
    trensil::testing::write_all(list, text.str());
    const std::string command =
        "gdallocationinfo -valonly -geoloc '" + file + "' < '" + list + "' 2>/dev/null";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    std::vector<double> values;
    if (!pipe) return values;
    char line[256];
    while (std::fgets(line, sizeof line, pipe)) values.push_back(std::strtod(line, nullptr));
    ::pclose(pipe);
    return values;
}

// The no-data markers of the files: -999999, the Surfer blank, NaN (the GMT grid).
bool is_marker(double v) {
    return std::isnan(v) || v == -999999.0 || v > 1e38;
}

TEST(gdal_grid, every_format_reads_the_same_cells_as_gdallocationinfo) {
    const std::vector<point> points = centres();
    for (const grid_format& f : formats) {
        SCOPED_TRACE(f.file);
        std::string error;
        const auto grid = open_gdal_grid(grid_dir + f.file, error);
        ASSERT_NE(grid, nullptr) << error;
        const grid_geometry& g = grid->geometry();
        EXPECT_EQ(g.columns, columns);
        EXPECT_EQ(g.rows, rows);
        const grid_extent e = extent_of(*grid);
        EXPECT_NEAR(e.xmin, 345955.0, 1e-6);
        EXPECT_NEAR(e.xmax, 475955.0, 1e-6);
        EXPECT_NEAR(e.ymin, 1173285.0, 1e-6);
        EXPECT_NEAR(e.ymax, 1248285.0, 1e-6);

        const std::vector<double> expected = located_values(grid_dir + f.file, points);
        ASSERT_EQ(expected.size(), points.size()) << "gdallocationinfo (gdal-bin) did not answer";
        const bool no_marker = std::string(f.file) == "map_mag_1km.xyz";
        int markers = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double v = sample_grid_point(*grid, points[i].x, points[i].y);
            // The XYZ file declares no marker: its -999999 is a value to GDAL and to us.
            if (is_marker(expected[i]) && !no_marker) {
                ++markers;
                EXPECT_EQ(v, grid_undefined) << "cell " << i;
            } else {
                EXPECT_NEAR(v, expected[i], 1e-4 + f.tolerance) << "cell " << i;
            }
        }
        if (!no_marker) {
            EXPECT_EQ(markers, 918);
        }
    }
}

TEST(gdal_grid, bilinear_between_centres_and_never_from_a_cell_without_value) {
    std::string error;
    const auto grid = open_gdal_grid(grid_dir + "map_mag_1km.tif", error);
    ASSERT_NE(grid, nullptr) << error;
    const std::vector<double> cells = located_values(grid_dir + "map_mag_1km.tif", centres());
    ASSERT_EQ(cells.size(), static_cast<std::size_t>(rows * columns));
    auto cell = [&](int c, int r) { return cells[static_cast<std::size_t>(r * columns + c)]; };

    const double tx = 0.3, ty = 0.8;
    int undefined = 0, defined = 0;
    for (int r = 0; r + 1 < rows; ++r) {
        for (int c = 0; c + 1 < columns; ++c) {
            const double x = first_centre_x + 1000.0 * (c + tx);
            const double y = first_centre_y + 1000.0 * (r + ty);
            const double v = sample_grid_point(*grid, x, y);
            const double q[4] = {cell(c, r), cell(c + 1, r), cell(c, r + 1), cell(c + 1, r + 1)};
            if (is_marker(q[0]) || is_marker(q[1]) || is_marker(q[2]) || is_marker(q[3])) {
                ++undefined;
                EXPECT_EQ(v, grid_undefined) << c << ", " << r;
                continue;
            }
            ++defined;
            const double expected = (1 - tx) * (1 - ty) * q[0] + tx * (1 - ty) * q[1] +
                                    (1 - tx) * ty * q[2] + tx * ty * q[3];
            EXPECT_NEAR(v, expected, 1e-6 * (1 + std::fabs(expected))) << c << ", " << r;
        }
    }
    EXPECT_GT(undefined, 900);
    EXPECT_GT(defined, 8000);

    // Outside the outer edges there is nothing; inside the outer half cell the edge cell holds.
    const double outside[][2] = {
        {345954.0, 1200000.0}, {475956.0, 1200000.0}, {400000.0, 1173284.0}, {400000.0, 1248286.0}};
    for (const auto& p : outside) EXPECT_EQ(sample_grid_point(*grid, p[0], p[1]), grid_undefined);
    EXPECT_NEAR(sample_grid_point(*grid, 346000.0, 1248200.0), cell(0, rows - 1), 1e-9);
}

// A netCDF file of two variables (here made by GDAL's own tools from the GeoTIFF) offers them as
// sub-datasets: the first is read.
TEST(gdal_grid, netcdf_of_several_variables_reads_the_first) {
    trensil::testing::scratch_dir dir("gdal_grid_variables");
    const std::string tif = grid_dir + "map_mag_1km.tif";
    const std::string command = "cd '" + dir.path().string() + "' && gdalbuildvrt -q -separate " +
                                "two.vrt '" + tif + "' '" + tif +
                                "' && gdal_translate -q -of netCDF two.vrt two.nc";
    ASSERT_EQ(std::system(command.c_str()), 0) << "gdal-bin's tools did not run";
    std::string error;
    const auto both = open_gdal_grid(dir.file("two.nc"), error);
    const auto one = open_gdal_grid(tif, error);
    ASSERT_NE(both, nullptr) << error;
    ASSERT_NE(one, nullptr) << error;
    EXPECT_EQ(both->geometry().columns, columns);
    for (const point& p : {point{400000.0, 1200000.0}, point{350000.0, 1175000.0}})
        EXPECT_EQ(sample_grid_point(*both, p.x, p.y), sample_grid_point(*one, p.x, p.y));
}

TEST(gdal_grid, a_file_that_is_no_grid_gives_the_reason) {
    trensil::testing::scratch_dir dir("gdal_grid_bad");
    trensil::testing::write_all(dir.file("notes.grd"), "this is not a grid\n");
    trensil::testing::write_all(dir.file("empty.tif"), "");
    const std::string cases[] = {dir.file("notes.grd"), dir.file("empty.tif"),
                                 dir.file("missing.tif"), grid_dir + "PROVENANCE.md"};
    for (const std::string& path : cases) {
        std::string error;
        EXPECT_EQ(open_gdal_grid(path, error), nullptr) << path;
        EXPECT_FALSE(error.empty()) << path;
    }
    std::string error;
    open_gdal_grid(dir.file("missing.tif"), error);
    EXPECT_NE(error.find("No such file"), std::string::npos) << error;
}

}  // namespace
}  // namespace trensil
