#!/usr/bin/env bash
# Builds the file tests under ThreadSanitizer and runs the concurrent readers; fails on a race.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
jobs=${TESS_JOBS:-$(nproc)}
dir=build/tsan

cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESS_TSAN=ON >/dev/null
cmake --build "$dir" -j "$jobs" --target test_files

# halt_on_error stops the run at the first report with a non-zero status, so a race fails the
# script even if the test's own checks pass.
run() { TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 ${TSAN_OPTIONS:-}" "$@"; }
filter='FileManagerThreads.*'
if ! out=$(run "$dir/tests/test_files" --gtest_filter="$filter" 2>&1) &&
   grep -q "unexpected memory mapping" <<<"$out"; then
  # Kernels with high mmap randomisation break older ThreadSanitizer runtimes: run without it.
  out=$(run setarch "$(uname -m)" -R "$dir/tests/test_files" --gtest_filter="$filter" 2>&1) || {
    echo "$out"; exit 1; }
elif grep -q "ThreadSanitizer" <<<"$out" || ! grep -q "\[  PASSED  \]" <<<"$out" ||
     grep -q "\[  FAILED  \]" <<<"$out"; then
  echo "$out"
  exit 1
fi
echo "$out" | tail -n 3
