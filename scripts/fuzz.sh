#!/usr/bin/env bash
# Builds the fuzz targets with clang (libFuzzer, AddressSanitizer, UBSan) and runs each for
# SECONDS (default 60) from the seeds in fuzz/corpus. A crash, leak or time-out is kept in
# fuzz/findings/ and fails the script.
set -euo pipefail
cd "$(dirname "$0")/.."
top=$(pwd)   # the targets change their working directory: every path they get is absolute
seconds=${1:-60}
bash scripts/install-deps.sh clang libclang-rt-14-dev
build=$top/build/fuzz
CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTESS_FUZZ=ON >/dev/null
targets=(ini_values ini_includes catalog paths gun_file)
cmake --build "$build" -j "$(nproc)" --target "${targets[@]/#/fuzz_}"

findings=$top/fuzz/findings
mkdir -p "$findings"
failed=0
for target in "${targets[@]}"; do
  work="$build/corpus/$target"   # what the run learns stays out of the source tree
  mkdir -p "$work"
  log="$build/$target.log"
  seeds=$top/fuzz/corpus/$target
  if "$build/fuzz/fuzz_$target" "$work" "$seeds" -dict="$seeds.dict" \
       -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1 \
       -artifact_prefix="$findings/$target-" >"$log" 2>&1; then
    runs=$(grep -m1 -o 'number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$')
    speed=$(grep -m1 -o 'average_exec_per_sec: *[0-9]*' "$log" | grep -o '[0-9]*$')
    cov=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1)
    echo "$target: $runs runs, $speed per second, $cov"
  else
    failed=1
    echo "$target: FINDING (see fuzz/findings/ and $log)"
    grep -E 'ERROR|SUMMARY|runtime error' "$log" | head -n 5
  fi
done
exit "$failed"
