#!/usr/bin/env bash
# Builds with line coverage, runs the whole suite and prints gcovr's table of src/ with its TOTAL.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh gcovr
dir=build/coverage
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="--coverage" \
  -DCMAKE_EXE_LINKER_FLAGS="--coverage" -DCMAKE_SHARED_LINKER_FLAGS="--coverage" \
  -DCMAKE_MODULE_LINKER_FLAGS="--coverage" >/dev/null
cmake --build "$dir" -j "$(nproc)"
find "$dir" -name '*.gcda' -delete
ctest --test-dir "$dir" -j "$(nproc)" --output-on-failure >/dev/null
gcovr --root . --filter 'src/' --exclude-throw-branches --print-summary "$dir" | tail -n +1
