#!/usr/bin/env bash
# The main job on its defaults: install, build, make the catalogues when needed, show the
# observing moment for the saved site, draw tonight's sky chart, then serve the interface to a
# browser (loopback, port 8080; NOCTURNEL_BIND and NOCTURNEL_PORT choose others).
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
exec "$bin/nocturnel" --home "$bin" serve --bind "${NOCTURNEL_BIND:-127.0.0.1}" --port "${NOCTURNEL_PORT:-8080}"
