#include "grid/gdal_grid.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <new>
#include <vector>

namespace trensil {

namespace {

// Larger grids are refused with a reason rather than risk the memory of the machine: 2^28 cells
// of single precision take 1 GB.
constexpr long long max_grid_cells = 1LL << 28;

void register_drivers() {
    static std::once_flag once;
    std::call_once(once, [] { GDALAllRegister(); });
}

// Keeps GDAL's messages off the console while a file is opened, and remembers the first error
// as the reason to give the user.
class gdal_error_capture {
public:
    gdal_error_capture() { CPLPushErrorHandlerEx(&gdal_error_capture::handler, this); }
    ~gdal_error_capture() { CPLPopErrorHandler(); }
    gdal_error_capture(const gdal_error_capture&) = delete;
    gdal_error_capture& operator=(const gdal_error_capture&) = delete;

    // The first error GDAL reported, or `fallback`.
    std::string reason(const std::string& fallback) const {
        return first_error_.empty() ? fallback : first_error_;
    }

private:
    static void CPL_STDCALL handler(CPLErr level, CPLErrorNum, const char* message) {
        auto* self = static_cast<gdal_error_capture*>(CPLGetErrorHandlerUserData());
        if (self && level >= CE_Failure && self->first_error_.empty() && message)
            self->first_error_ = message;
    }
    std::string first_error_;
};

struct dataset_closer {
    void operator()(void* dataset) const {
        if (dataset) GDALClose(dataset);
    }
};
using dataset_handle = std::unique_ptr<void, dataset_closer>;

class gdal_grid : public grid_source {
public:
    gdal_grid(grid_geometry geometry, std::vector<float> values)
        : geometry_(std::move(geometry)), values_(std::move(values)) {}
    const grid_geometry& geometry() const override { return geometry_; }
    const float* row_values(int row) const override {
        return values_.data() +
               static_cast<std::size_t>(row) * static_cast<std::size_t>(geometry_.columns);
    }

private:
    grid_geometry geometry_;
    std::vector<float> values_;
};

// Reads band 1 row by row in double precision (so that large values and no-data markers of any
// type compare exactly) and keeps single precision, NaN for a cell without a value.
bool read_band(GDALRasterBandH band, const grid_geometry& g, std::vector<float>& values,
               std::string& error) {
    int has_nodata = 0;
    const double nodata = GDALGetRasterNoDataValue(band, &has_nodata);
    const float none = std::numeric_limits<float>::quiet_NaN();
    values.assign(static_cast<std::size_t>(g.columns) * static_cast<std::size_t>(g.rows), none);
    std::vector<double> row(static_cast<std::size_t>(g.columns));
    for (int r = 0; r < g.rows; ++r) {
        if (GDALRasterIO(band, GF_Read, 0, r, g.columns, 1, row.data(), g.columns, 1, GDT_Float64,
                         0, 0) != CE_None) {
            error = "the values of row " + std::to_string(r + 1) + " could not be read";
            return false;
        }
        float* out = values.data() + static_cast<std::size_t>(r) * g.columns;
        for (int c = 0; c < g.columns; ++c) {
            const double v = row[static_cast<std::size_t>(c)];
            const bool marked =
                has_nodata && (v == nodata || (std::isnan(nodata) && std::isnan(v)));
            // A value outside single precision (a blanking marker that the file does not
            // declare) has no place in the grid either.
            if (marked || !std::isfinite(v) || v <= grid_undefined_threshold ||
                std::fabs(v) > std::numeric_limits<float>::max())
                continue;
            out[c] = static_cast<float>(v);
        }
    }
    return true;
}

}  // namespace

std::unique_ptr<grid_source> open_gdal_grid(const std::string& path, std::string& error) {
    register_drivers();
    gdal_error_capture capture;
    try {
        dataset_handle dataset(GDALOpen(path.c_str(), GA_ReadOnly));
        if (!dataset) {
            error = capture.reason("the file is not a grid that can be read");
            return nullptr;
        }
        GDALDatasetH ds = dataset.get();
        if (GDALGetRasterCount(ds) < 1) {
            error = "the file holds no raster band";
            return nullptr;
        }
        grid_geometry g;
        g.columns = GDALGetRasterXSize(ds);
        g.rows = GDALGetRasterYSize(ds);
        if (g.columns < 1 || g.rows < 1) {
            error = "the grid has no cells";
            return nullptr;
        }
        if (static_cast<long long>(g.columns) * g.rows > max_grid_cells) {
            error = "the grid has " + std::to_string(static_cast<long long>(g.columns) * g.rows) +
                    " cells, more than can be held";
            return nullptr;
        }
        double t[6] = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
        if (GDALGetGeoTransform(ds, t) != CE_None) {
            // No georeference: cells of unit size from the origin, rows north to south.
            t[0] = 0.0, t[1] = 1.0, t[2] = 0.0, t[3] = g.rows, t[4] = 0.0, t[5] = -1.0;
        }
        if (t[2] != 0.0 || t[4] != 0.0) {
            error = "the grid is rotated; only grids with rows along the east axis can be used";
            return nullptr;
        }
        if (t[1] == 0.0 || t[5] == 0.0) {
            error = "the grid's cell size is zero";
            return nullptr;
        }
        g.x_origin = t[0];
        g.cell_width = t[1];
        g.y_origin = t[3];
        g.cell_height = t[5];
        g.path = path;
        if (GDALDriverH driver = GDALGetDatasetDriver(ds))
            g.format = GDALGetDriverShortName(driver);
        if (const char* wkt = GDALGetProjectionRef(ds)) g.projection = wkt;

        std::vector<float> values;
        if (!read_band(GDALGetRasterBand(ds, 1), g, values, error)) {
            error = capture.reason(error);
            return nullptr;
        }
        // Columns that run west (a negative cell width) are turned round so that column 0 is
        // the western one, as the rest of the program expects.
        if (g.cell_width < 0.0) {
            for (int r = 0; r < g.rows; ++r) {
                float* row = values.data() + static_cast<std::size_t>(r) * g.columns;
                std::reverse(row, row + g.columns);
            }
            g.x_origin += g.columns * g.cell_width;
            g.cell_width = -g.cell_width;
        }
        return std::make_unique<gdal_grid>(std::move(g), std::move(values));
    } catch (const std::bad_alloc&) {
        error = "Out of memory";
        return nullptr;
    }
}

std::string gdal_version_text() {
    return GDALVersionInfo("RELEASE_NAME");
}

}  // namespace trensil
