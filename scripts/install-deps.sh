#!/usr/bin/env bash
# Installs every Debian package the build, the tests, the benchmarks and the window need.
# Idempotent: asks apt only for what is missing, and says nothing when all is there.
set -euo pipefail

packages=(
    build-essential cmake make pkg-config
    libgtest-dev libgmock-dev libbenchmark-dev
    clang-format clang
    qt6-base-dev qt6-base-dev-tools libqt6svg6 libgl1-mesa-dev
    libgdal-dev gdal-bin
    libceres-dev libeigen3-dev
    python3 python3-ezdxf
    xvfb xauth xdotool imagemagick
    gmt gmt-dcw gmt-gshhg-low
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing packages: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
