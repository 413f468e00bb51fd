#!/usr/bin/env bash
# Fuzzes every reader of outside bytes (fuzz/): builds the libFuzzer targets with clang under
# AddressSanitizer and UndefinedBehaviorSanitizer in build-fuzz/, then runs each for SECONDS
# (default 60) from the seed corpus in fuzz/corpus/<target>. New inputs the fuzzer finds are
# kept in build-fuzz/corpus/<target>; a crash leaves its input in build-fuzz/crashes/ and
# makes the script fail. Prints executions, executions per second and findings per target.
# Usage: scripts/fuzz.sh [SECONDS] [TARGET...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
shift || true
build="$root/build-fuzz"

cmake -S "$root/fuzz" -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=None >/dev/null
cmake --build "$build" -j "${NOCTURNEL_JOBS:-2}"

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=($(cd "$build" && find . -maxdepth 1 -type f -executable -name 'fuzz_*' | sed 's|^\./fuzz_||' | sort))
fi
mkdir -p "$build/crashes" "$build/logs"
failed=0
printf '%-20s %-6s %12s %10s  %s\n' target result executions exec/s findings
for t in "${targets[@]}"; do
  mkdir -p "$build/corpus/$t"
  log="$build/logs/$t.log"
  if "$build/fuzz_$t" -max_total_time="$seconds" -rss_limit_mb=2048 -print_final_stats=1 \
       -artifact_prefix="$build/crashes/${t}-" "$build/corpus/$t" "$root/fuzz/corpus/$t" >"$log" 2>&1; then
    result=ok
  else
    result=FAILED; failed=1
  fi
  runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo '?')
  speed=$(grep -o 'stat::average_exec_per_sec: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo '?')
  found=$(grep -o "Test unit written to .*" "$log" | sed 's/Test unit written to //' || true)
  printf '%-20s %-6s %12s %10s  %s\n' "$t" "$result" "$runs" "$speed" "${found:-none (log: $log)}"
done
exit $failed
