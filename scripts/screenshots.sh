#!/usr/bin/env bash
# Takes the documentation's pictures of the desktop program under a virtual X
# server, from copies of the examples: a run of Er3+ (log book and parameter
# editor), the fitting workspace after a fit of Pr3+, a differential-evolution
# search mid-run; PNGs into docs/images/.
# Needs xvfb (installed by scripts/bootstrap.sh) and a build with the desktop program.
set -euo pipefail
cd "$(dirname "$0")/.."
program=./build/orvane-desktop
[ -x "$program" ] || { echo "build the desktop program first: bash scripts/bootstrap.sh" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp examples/Er3plus-LaF3.par examples/Pr3plus-LaF3.par examples/Pr3plus-LaF3-levels.txt "$work/"
# A data folder of its own, so that the pictures show the default state.
export XDG_DATA_HOME="$work/data" XDG_CONFIG_HOME="$work/config" XDG_RUNTIME_DIR="$work/runtime"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
export QT_QPA_PLATFORM=xcb
xvfb-run -a -s "-screen 0 1400x900x24" "$program" --screenshots docs/images "$work"
ls -l docs/images/desktop-*.png
