#!/usr/bin/env bash
# Installs the Debian 12 packages Orvane needs (when missing) and builds it into
# ./build. Safe to run again: it installs nothing that is there and rebuilds
# only what changed.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(build-essential cmake ninja-build pkg-config libeigen3-dev libopenblas-dev
          liblapack-dev libfmt-dev libcli11-dev libgtest-dev libbenchmark-dev
          libxlsxwriter-dev libminizip-dev libpugixml-dev
          pybind11-dev python3-dev python3-numpy python3-pytest python3-openpyxl
          qt6-base-dev qt6-charts-dev qt6-svg-dev xvfb xauth)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${missing[@]}"
fi

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)"
