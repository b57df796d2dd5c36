#!/usr/bin/env bash
# Remakes the example project in examples/project/ with the batch tool: the magnetic grid copied
# from the shared survey data, a line digitised along flight line 225401 across it (its csv and
# model), and the project file listing that line and the modelled Tempest line beside it.
set -euo pipefail
build=$1
cli="$(cd "$build" && pwd)/bin/trensil-cli"
shared="$(cd "$(dirname "$0")/.." && pwd)/../shared/data"
cd "$(dirname "$0")/../examples/project"

cp -f "$shared/usgs-map-mag-grid/map_mag_1km.tif" map_mag_1km.tif
chmod 644 map_mag_1km.tif

# The baseline follows the flight line's first, middle and last stations (Albers metres); the
# Earth's field is the one of the Tempest line (see its provenance), the elevations the
# survey's: ground about 60 m, sensor 120 m above it.
"$cli" sample-grid --mag map_mag_1km.tif \
    --line 357875.5,1210778.75,411201.16,1210395.75,463681.75,1210719.75 --interval 250 \
    --surface-elevation 60 --sensor-offset 120 --field 49299,62.6,0.1 \
    -o Line_1000.csv --model Line_1000.qvx --force

"$cli" project new tempest_survey.qvj --first 1000 --step 10 --mag map_mag_1km.tif --force
"$cli" project add tempest_survey.qvj Line_1000.qvx --number 1000
"$cli" project add tempest_survey.qvj ../tempest/tempest_line_225401.qvx --number 225401
