#!/usr/bin/env bash
# Times tessarine-catalog on a 64 MB catalog of 1,000 files against cp of the same files: create
# (files to catalog) and extract (catalog to files), each the best of several warm runs.
# Usage: bash bench/catalog_bench.sh [TOOL] [ROUNDS]
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
tool=${1:-$top/build/plain/src/tools/tessarine-catalog}
rounds=${2:-5}
[ -x "$tool" ] || { echo "no tool at $tool: build first (cmake --build build/plain)" >&2; exit 1; }

work=$(mktemp -d "${TMPDIR:-/tmp}/tess-catalog-bench-XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir "$work/files"
# 1,000 files of 67,109 bytes (64 MiB in all), of random bytes.
head -c $((1000 * 67109)) /dev/urandom |
  split -b 67109 -d -a 3 --additional-suffix=.dat - "$work/files/f"
cd "$work"

# Best wall time in seconds of running "$@" after `reset` (a command) each round.
best() {
  local reset=$1; shift
  local best_ns=0
  for _ in $(seq "$rounds"); do
    eval "$reset"
    local start end
    start=$(date +%s%N)
    "$@"
    end=$(date +%s%N)
    local ns=$((end - start))
    if [ "$best_ns" -eq 0 ] || [ "$ns" -lt "$best_ns" ]; then best_ns=$ns; fi
  done
  awk -v ns="$best_ns" 'BEGIN { printf "%.4f", ns / 1e9 }'
}

cp_time=$(best 'rm -rf copy && mkdir copy' cp files/f[0-9]*.dat copy/)
create_time=$(best 'rm -f packed.cat' "$tool" create packed.cat files/f[0-9]*.dat)
extract_time=$(best 'rm -rf out && mkdir out' "$tool" extract packed.cat -C out)
cmp <(cat files/f[0-9]*.dat) <(cat out/F[0-9]*.DAT) || { echo "extracted bytes differ" >&2; exit 1; }

size=$(stat -c %s packed.cat)
report() {  # name, seconds
  awk -v name="$1" -v t="$2" -v cp="$cp_time" -v mb="$((size / 1048576))" \
    'BEGIN { printf "%-8s %8.4f s  %7.1f MB/s  %5.2f x the speed of cp%s\n", name, t, mb / t,
             cp / t, (cp / t >= 0.5 ? "" : "  (below the goal of 0.5)") }'
}
echo "catalog: $size bytes, 1000 files; best of $rounds warm runs"
awk -v t="$cp_time" -v mb="$((size / 1048576))" \
  'BEGIN { printf "%-8s %8.4f s  %7.1f MB/s\n", "cp", t, mb / t }'
report create "$create_time"
report extract "$extract_time"
