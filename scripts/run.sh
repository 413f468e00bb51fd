#!/usr/bin/env bash
# The main job on its defaults: install, build, make the catalogues when needed, then show
# the observing moment for the saved site.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh" build -DCMAKE_BUILD_TYPE=Release
"$root/scripts/make-catalogs.sh" build
bin="$root/build/bin"
"$bin/nocturnel" --home "$bin" now
