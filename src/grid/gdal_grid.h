// Grid files read through GDAL: GeoTIFF, ER Mapper, Surfer 6 and 7, ESRI ASCII, CF and GMT
// netCDF, and whatever else the installed GDAL reads as a north-up raster. The first band is
// read whole into memory in single precision; no-data cells and values below -1e30 become cells
// without a value.
//
//   std::string error;
//   std::unique_ptr<grid_source> grid = open_gdal_grid("/survey/mag.grd", error);
//   if (!grid) ui.show_message("An error occured while loading the grid file: " + error);
//
// This folder is the only part of the program that includes GDAL.
#pragma once

#include <memory>
#include <string>

#include "project/grid_source.h"

namespace trensil {

// Opens and reads a grid file; null with GDAL's reason (or ours: a rotated grid, no raster band,
// too many cells) in `error`.
std::unique_ptr<grid_source> open_gdal_grid(const std::string& path, std::string& error);

// GDAL's release name ("3.6.2"), for the list of the program's modules.
std::string gdal_version_text();

}  // namespace trensil
