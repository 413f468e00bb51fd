#!/usr/bin/env bash
# Builds data/ of a program folder from the public sources when it is missing.
# Usage: make-catalogs.sh BUILD_DIR
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bin="$root/${1:?usage: make-catalogs.sh BUILD_DIR}/bin"
sources=${NOCTURNEL_SOURCES:-${XDG_CACHE_HOME:-$HOME/.cache}/nocturnel/sources}
if [ ! -f "$bin/data/nocturnel_default_stars.ppc" ] || [ ! -f "$bin/data/SOURCES" ]; then
  "$root/scripts/fetch-sources.sh" "$sources"
  "$bin/nocturnel" --home "$bin" catalog build --sources "$sources"
fi
