#!/usr/bin/env bash
# Builds data/ of a program folder from the public sources when it is missing.
# Usage: make-catalogs.sh BUILD_DIR
# NOCTURNEL_SOURCES names the sources folder (default ~/.cache/nocturnel/sources);
# NOCTURNEL_TYCHO2 may name a Tycho-2 tyc2.dat to build the Tycho files as well.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bin="$root/${1:?usage: make-catalogs.sh BUILD_DIR}/bin"
sources=${NOCTURNEL_SOURCES:-${XDG_CACHE_HOME:-$HOME/.cache}/nocturnel/sources}
# A data/ folder made by an older builder lacks some file: build again.
missing=0
for f in nocturnel_default_stars.ppc nocturnel_hip_110k.ppc nocturnel_obj_18k.ppc nocturnel_eyepiece.ppc \
         nocturnel_names.ppc nocturnel_planets.ppc nocturnel_tycho_390k.ppc nocturnel_tycho_390k_pm.ppc \
         nocturnel_star_motion.ppc nocturnel_list_members.ppc nocturnel_meteor_showers.ppc SOURCES; do
  [ -f "$bin/data/$f" ] || missing=1
done
if [ "$missing" = 1 ]; then
  "$root/scripts/fetch-sources.sh" "$sources"
  tycho=()
  if [ -n "${NOCTURNEL_TYCHO2:-}" ]; then tycho=(--tycho2 "$NOCTURNEL_TYCHO2"); fi
  "$bin/nocturnel" --home "$bin" catalog build --sources "$sources" "${tycho[@]}"
fi
