#!/usr/bin/env bash
# The main job on its defaults: install, build, make the catalogues when needed, then show
# the observing moment for the saved site and draw tonight's sky chart.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh" build -DCMAKE_BUILD_TYPE=Release
"$root/scripts/make-catalogs.sh" build
bin="$root/build/bin"
"$bin/nocturnel" --home "$bin" now
chart="$bin/tonight.png"
"$bin/nocturnel" --home "$bin" --time 22:00 chart -o "$chart"
echo "Tonight's sky at 22:00 for the saved site: $chart"
