#!/usr/bin/env python3
"""Makes the synthetic line of this folder: magnetic AND gravity values computed by trensil-cli
from the known bodies of synthetic_truth.qvx, plus a regional trend and random noise.

    python3 examples/synthetic/make_synthetic.py [path/to/trensil-cli]

Steps: write the station geometry (synthetic_stations.csv: easting, northing, sensor, ground,
and zero placeholders for the two data columns); compute the truth model on it with
`trensil-cli compute`; add to the computed total field a base level of 52,000 nT, a regional
gradient and Gaussian noise, and to the computed gravity a regional gradient and noise; write
synthetic_line.csv. The random generator has a fixed seed, so the files come out the same.
"""
import csv
import math
import os
import random
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
CLI = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "..", "..", "build", "bin",
                                                           "trensil-cli")

STATIONS = 401          # 10 km at 25 m
SPACING = 25.0
START = (500000.0, 7000000.0)
AZIMUTH_DRIFT = 0.02    # northing grows by 2 % of the easting step: a nearly east-west line
BASE_MAG = 52000.0      # nT, the level of the field away from the bodies
MAG_TREND = 0.004       # nT per metre along the line
MAG_NOISE = 1.5         # nT, standard deviation
GRAV_TREND = -0.0002    # mGal per metre along the line
GRAV_NOISE = 0.015      # mGal, standard deviation


def station_geometry():
    rows = []
    for i in range(STATIONS):
        d = i * SPACING
        ground = 320.0 + 15.0 * math.sin(d / 1700.0) + 0.002 * d
        sensor = ground + 40.0 + 3.0 * math.sin(d / 430.0)
        rows.append((START[0] + d, START[1] + AZIMUTH_DRIFT * d, sensor, ground))
    return rows


def write_stations(path, rows):
    with open(path, "w", newline="") as f:
        f.write("easting,northing,sensor,ground,tmi,gravity\r\n")
        for x, y, s, g in rows:
            f.write("%.2f,%.2f,%.2f,%.2f,0,0\r\n" % (x, y, s, g))


def truth_on(data_file):
    """The truth model's text with its data file replaced."""
    with open(os.path.join(HERE, "synthetic_truth.qvx"), newline="") as f:
        lines = f.read().split("\r\n")
    lines[0] = data_file
    return "\r\n".join(lines)


def main():
    stations_csv = os.path.join(HERE, "synthetic_stations.csv")
    truth_tmp = os.path.join(HERE, "synthetic_truth_on_stations.qvx")
    response_csv = os.path.join(HERE, "synthetic_truth_response.csv")
    rows = station_geometry()
    write_stations(stations_csv, rows)
    with open(truth_tmp, "w", newline="") as f:
        f.write(truth_on("synthetic_stations.csv"))
    try:
        subprocess.run([CLI, "compute", truth_tmp, "-o", response_csv, "--force"], check=True)
        with open(response_csv) as f:
            table = list(csv.reader(f))[1:]
    finally:
        for p in (truth_tmp, response_csv):
            if os.path.exists(p):
                os.remove(p)
    head = [h.strip() for h in table[0]]
    computed = [[float(v) for v in r] for r in table[1:]]
    tmi_col, grav_col, dist_col = head.index("TMI_Mod"), head.index("Grav_Mod"), head.index("Dist")
    east_col = head.index("East")
    if len(computed) != STATIONS:
        sys.exit("expected %d computed stations, got %d" % (STATIONS, len(computed)))

    rng = random.Random(20240601)
    out = os.path.join(HERE, "synthetic_line.csv")
    with open(out, "w", newline="") as f:
        f.write("easting,northing,sensor,ground,tmi,gravity\r\n")
        # The profile runs east from the first station, as the stations were written.
        for (x, y, s, g), c in zip(rows, computed):
            if abs(c[east_col] - x) > 0.1:
                sys.exit("stations out of order at easting %.2f" % x)
            d = c[dist_col]
            tmi = BASE_MAG + c[tmi_col] + MAG_TREND * d + rng.gauss(0.0, MAG_NOISE)
            grav = c[grav_col] + GRAV_TREND * d + rng.gauss(0.0, GRAV_NOISE)
            f.write("%.2f,%.2f,%.2f,%.2f,%.2f,%.4f\r\n" % (x, y, s, g, tmi, grav))
    os.remove(stations_csv)
    print("wrote", out)


if __name__ == "__main__":
    main()
