#!/usr/bin/env bash
# Installs what Nocturnel needs on Debian 12, skipping what is already present.
# Everything comes from Debian's packages; nothing else is downloaded.
set -euo pipefail

packages=(build-essential cmake pkg-config git ccache
          libgtest-dev libgmock-dev libbenchmark-dev liberfa-dev
          libcairo2-dev libfontconfig-dev zlib1g-dev fonts-dejavu-core
          libcli11-dev libcpp-httplib-dev nlohmann-json3-dev
          nodejs npm
          clang libclang-rt-14-dev  # fuzz targets: clang's libFuzzer and sanitizer runtimes
          indi-bin  # INDI's own mount drivers: the interoperability tests run them against our simulators
          swetest swe-basic-data  # Swiss Ephemeris, reference for the Sun, Moon and planet tests only
          chromium    # headless browser for the page's tests (web/tests)
          )

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
# A machine that already has node and npm from elsewhere needs no Debian nodejs/npm.
if command -v node >/dev/null && command -v npm >/dev/null; then
  missing=("${missing[@]/nodejs}"); missing=("${missing[@]/npm}")
fi
missing=($(printf '%s\n' "${missing[@]}" | grep -v '^$' || true))

if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
else
  echo "setup: all packages present"
fi

# The page's browser tests drive chromium through npm's playwright-core (never its own browser).
web="$(cd "$(dirname "$0")/.." && pwd)/web"
if [ ! -d "$web/node_modules" ]; then
  (cd "$web" && PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm ci --no-audit --no-fund)
fi
