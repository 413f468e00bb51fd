#!/usr/bin/env bash
# The whole test suite: install, build with AddressSanitizer and UndefinedBehaviorSanitizer,
# make the catalogues the real-data tests read, run every test. Ends with ctest's summary.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh" build-test -DCMAKE_BUILD_TYPE=Debug -DNOCTURNEL_SANITIZE=ON
"$root/scripts/make-catalogs.sh" build-test
cd "$root/build-test"
ctest --output-on-failure -j "$(nproc)" --timeout 600
