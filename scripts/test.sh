#!/usr/bin/env bash
# Builds and runs every test twice: a plain build (benchmarks compiled, not run), then one under
# AddressSanitizer and UBSan; then the concurrent file readers under ThreadSanitizer; then each
# fuzz target for 20 seconds.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
jobs=$(nproc)

run_suite() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  ctest --test-dir "$dir" --output-on-failure -j "$jobs"
}

echo "== plain build"
run_suite build/plain -DTESS_BENCH=ON
echo "== address and undefined-behaviour sanitizers"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
  run_suite build/asan -DTESS_SANITIZE=ON
echo "== thread sanitizer"
bash scripts/tsan.sh
echo "== fuzz targets, 20 seconds each"
bash scripts/fuzz.sh 20
