#include "grid/gdal_grid.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <dlfcn.h>
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

// The GDAL functions the reader calls. GDAL is loaded when the first grid is opened rather than
// when the program starts: it and the libraries it pulls in take a tenth of a second to load,
// which every run of the batch tool would otherwise pay.
struct gdal_api {
    decltype(&GDALAllRegister) all_register = nullptr;
    decltype(&CPLPushErrorHandlerEx) push_error_handler = nullptr;
    decltype(&CPLPopErrorHandler) pop_error_handler = nullptr;
    decltype(&CPLGetErrorHandlerUserData) error_handler_data = nullptr;
    decltype(&GDALOpen) open = nullptr;
    decltype(&GDALClose) close = nullptr;
    decltype(&GDALGetRasterCount) raster_count = nullptr;
    decltype(&GDALGetRasterXSize) x_size = nullptr;
    decltype(&GDALGetRasterYSize) y_size = nullptr;
    decltype(&GDALGetGeoTransform) geo_transform = nullptr;
    decltype(&GDALGetDatasetDriver) dataset_driver = nullptr;
    decltype(&GDALGetDriverShortName) driver_name = nullptr;
    decltype(&GDALGetProjectionRef) projection = nullptr;
    decltype(&GDALGetRasterBand) raster_band = nullptr;
    decltype(&GDALGetRasterNoDataValue) no_data_value = nullptr;
    decltype(&GDALRasterIO) raster_io = nullptr;
    decltype(&GDALVersionInfo) version_info = nullptr;
    decltype(&GDALGetMetadata) metadata = nullptr;
    std::string failure;  // why GDAL could not be loaded; "" when it was
};

template <class F>
void bind(void* library, const char* name, F& function, std::string& failure) {
    function = reinterpret_cast<F>(::dlsym(library, name));
    if (!function && failure.empty()) failure = std::string("GDAL has no ") + name;
}

// GDAL, loaded and registered once for the program's run.
const gdal_api& gdal() {
    static gdal_api api;
    static std::once_flag once;
    std::call_once(once, [] {
        void* library = nullptr;
        for (const char* name : {TRENSIL_GDAL_LIBRARY, "libgdal.so"}) {
            library = ::dlopen(name, RTLD_NOW | RTLD_LOCAL);
            if (library) break;
        }
        if (!library) {
            const char* why = ::dlerror();
            api.failure = std::string("the grid library GDAL cannot be loaded: ") +
                          (why ? why : TRENSIL_GDAL_LIBRARY);
            return;
        }
        std::string& f = api.failure;
        bind(library, "GDALAllRegister", api.all_register, f);
        bind(library, "CPLPushErrorHandlerEx", api.push_error_handler, f);
        bind(library, "CPLPopErrorHandler", api.pop_error_handler, f);
        bind(library, "CPLGetErrorHandlerUserData", api.error_handler_data, f);
        bind(library, "GDALOpen", api.open, f);
        bind(library, "GDALClose", api.close, f);
        bind(library, "GDALGetRasterCount", api.raster_count, f);
        bind(library, "GDALGetRasterXSize", api.x_size, f);
        bind(library, "GDALGetRasterYSize", api.y_size, f);
        bind(library, "GDALGetGeoTransform", api.geo_transform, f);
        bind(library, "GDALGetDatasetDriver", api.dataset_driver, f);
        bind(library, "GDALGetDriverShortName", api.driver_name, f);
        bind(library, "GDALGetProjectionRef", api.projection, f);
        bind(library, "GDALGetRasterBand", api.raster_band, f);
        bind(library, "GDALGetRasterNoDataValue", api.no_data_value, f);
        bind(library, "GDALRasterIO", api.raster_io, f);
        bind(library, "GDALVersionInfo", api.version_info, f);
        bind(library, "GDALGetMetadata", api.metadata, f);
        if (f.empty()) api.all_register();
    });
    return api;
}

// Keeps GDAL's messages off the console while a file is opened, and remembers the first error
// as the reason to give the user.
class gdal_error_capture {
public:
    gdal_error_capture() { gdal().push_error_handler(&gdal_error_capture::handler, this); }
    ~gdal_error_capture() { gdal().pop_error_handler(); }
    gdal_error_capture(const gdal_error_capture&) = delete;
    gdal_error_capture& operator=(const gdal_error_capture&) = delete;

    // The first error GDAL reported, or `fallback`.
    std::string reason(const std::string& fallback) const {
        return first_error_.empty() ? fallback : first_error_;
    }

private:
    static void CPL_STDCALL handler(CPLErr level, CPLErrorNum, const char* message) {
        auto* self = static_cast<gdal_error_capture*>(gdal().error_handler_data());
        if (self && level >= CE_Failure && self->first_error_.empty() && message)
            self->first_error_ = message;
    }
    std::string first_error_;
};

struct dataset_closer {
    void operator()(void* dataset) const {
        if (dataset) gdal().close(dataset);
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
    const double nodata = gdal().no_data_value(band, &has_nodata);
    const float none = std::numeric_limits<float>::quiet_NaN();
    values.assign(static_cast<std::size_t>(g.columns) * static_cast<std::size_t>(g.rows), none);
    std::vector<double> row(static_cast<std::size_t>(g.columns));
    for (int r = 0; r < g.rows; ++r) {
        if (gdal().raster_io(band, GF_Read, 0, r, g.columns, 1, row.data(), g.columns, 1,
                             GDT_Float64, 0, 0) != CE_None) {
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
    const gdal_api& api = gdal();
    if (!api.failure.empty()) {
        error = api.failure;
        return nullptr;
    }
    gdal_error_capture capture;
    try {
        dataset_handle dataset(api.open(path.c_str(), GA_ReadOnly));
        if (!dataset) {
            error = capture.reason("the file is not a grid that can be read");
            return nullptr;
        }
        // A file of several variables (a netCDF file, say) offers them as sub-datasets: the
        // first is the grid.
        if (api.raster_count(dataset.get()) < 1) {
            const std::string key = "SUBDATASET_1_NAME=";
            char** list = api.metadata(dataset.get(), "SUBDATASETS");
            for (; list && *list; ++list) {
                const std::string item = *list;
                if (item.rfind(key, 0) != 0) continue;
                dataset.reset(api.open(item.substr(key.size()).c_str(), GA_ReadOnly));
                break;
            }
            if (!dataset) {
                error = capture.reason("the file's first variable cannot be read");
                return nullptr;
            }
        }
        GDALDatasetH ds = dataset.get();
        if (api.raster_count(ds) < 1) {
            error = "the file holds no raster band";
            return nullptr;
        }
        grid_geometry g;
        g.columns = api.x_size(ds);
        g.rows = api.y_size(ds);
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
        if (api.geo_transform(ds, t) != CE_None) {
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
        if (GDALDriverH driver = api.dataset_driver(ds)) g.format = api.driver_name(driver);
        if (const char* wkt = api.projection(ds)) g.projection = wkt;

        std::vector<float> values;
        if (!read_band(api.raster_band(ds, 1), g, values, error)) {
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
    const gdal_api& api = gdal();
    return api.failure.empty() ? api.version_info("RELEASE_NAME") : "not available";
}

}  // namespace trensil
