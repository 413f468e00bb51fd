#!/usr/bin/env bash
# Brings the public catalogues the catalogue builder reads, only through the registries:
#   d3-celestial (npm, BSD-3): Hipparcos stars, names, deep-sky objects, constellations;
#   xplanet (Debian): the Yale Bright Star Catalogue, 5th revised edition (stars/BSC);
#   stellarium-data (Debian): the deep-sky catalogue nebulae/default/catalog.dat and names.dat,
#   and the star catalogue stars/default/stars_0..3_*.cat.
# The packages are unpacked, never installed. Usage: fetch-sources.sh DIR
set -euo pipefail
dir=${1:?usage: fetch-sources.sh DIR}
mkdir -p "$dir"
cd "$dir"

if [ ! -f d3-celestial/data/stars.14.json ]; then
  echo "sources: d3-celestial from npm"
  rm -rf d3-celestial package ./*.tgz
  npm pack --silent d3-celestial@0.7.35 >/dev/null
  tar xzf d3-celestial-0.7.35.tgz
  mv package d3-celestial
  rm -f d3-celestial-0.7.35.tgz
fi

if [ ! -f xplanet/usr/share/xplanet/stars/BSC ]; then
  echo "sources: xplanet (Bright Star Catalogue) from Debian"
  rm -f xplanet_*.deb
  apt-get download xplanet >/dev/null 2>&1 || { apt-get update -qq && apt-get download xplanet; }
  mkdir -p xplanet && dpkg-deb -x xplanet_*.deb xplanet
  rm -f xplanet_*.deb
fi

if [ ! -f stellarium/usr/share/stellarium/nebulae/default/catalog.dat ] ||
   [ ! -f stellarium/usr/share/stellarium/stars/default/stars_3_1v0_4.cat ]; then
  echo "sources: stellarium-data (deep-sky and star catalogues) from Debian"
  rm -f stellarium-data_*.deb
  apt-get download stellarium-data >/dev/null 2>&1 || { apt-get update -qq && apt-get download stellarium-data; }
  mkdir -p stellarium
  # Only the deep-sky catalogue and its names, and the star catalogue to about magnitude 10.5
  # (stars_0 .. stars_3, for the "Tycho 390K" card) with the Hipparcos proper motions, are kept.
  dpkg-deb --fsys-tarfile stellarium-data_*.deb | tar x -C stellarium --wildcards \
    ./usr/share/stellarium/nebulae/default/catalog.dat ./usr/share/stellarium/nebulae/default/names.dat \
    './usr/share/stellarium/stars/default/stars_[0-3]_*.cat' ./usr/share/stellarium/stars/default/hip_pm.dat \
    ./usr/share/doc/stellarium-data/copyright
  rm -f stellarium-data_*.deb
fi
# astronomia (npm, MIT): the VSOP87B planetary series and the ELP/MPP02 lunar series.
if [ ! -f astronomia/data/elpMppDeFull.js ]; then
  echo "sources: astronomia (planetary and lunar series) from npm"
  rm -rf astronomia package astronomia-*.tgz
  npm pack --silent astronomia@4.2.0 >/dev/null
  tar xzf astronomia-4.2.0.tgz
  mv package astronomia
  rm -f astronomia-4.2.0.tgz
fi

echo "sources: ready in $dir"
