#!/usr/bin/env bash
# Configures and builds one build folder. Usage: build.sh DIR [cmake options...]
set -euo pipefail
dir=${1:?usage: build.sh DIR [options]}; shift
root=$(cd "$(dirname "$0")/.." && pwd)
cmake -S "$root" -B "$root/$dir" "$@" >/dev/null
cmake --build "$root/$dir" -j "$(nproc)"
