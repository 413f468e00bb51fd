#!/usr/bin/env bash
# The whole test suite: install, build with AddressSanitizer and UndefinedBehaviorSanitizer,
# make the catalogues the real-data tests read, run every test. Ends with ctest's summary.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh" build-test -DCMAKE_BUILD_TYPE=Debug -DNOCTURNEL_SANITIZE=ON
"$root/scripts/make-catalogs.sh" build-test
# Fuzz targets (clang and libFuzzer, fuzz/): built apart at -O1, each run a few seconds as a test.
cmake -S "$root/fuzz" -B "$root/build-fuzz" -DCMAKE_CXX_COMPILER=clang++ -DFUZZ_TEST_SECONDS=4 >/dev/null
cmake --build "$root/build-fuzz" -j "$(nproc)"
ctest --test-dir "$root/build-fuzz" --output-on-failure -j "$(nproc)"
cd "$root/build-test"
ctest --output-on-failure -j "$(nproc)" --timeout 600
