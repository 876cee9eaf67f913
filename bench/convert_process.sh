#!/usr/bin/env bash
# Whole-process figures of tessarine-convert on a file of GUNS guns (default 400): wall time
# (median of RUNS runs, default 30), instructions (valgrind's callgrind) and peak RSS (GNU time).
# The input is the example gun data repeated and renumbered, every key filled; each run converts
# it over the two files the run before wrote, as a repeated save does.
# Usage: bash bench/convert_process.sh [GUNS] [RUNS]
set -euo pipefail
export LC_ALL=C  # a decimal point in the clock's text
top=$(cd "$(dirname "$0")/.." && pwd)
guns=${1:-400}
runs=${2:-30}
bash "$top/scripts/install-deps.sh" valgrind time
cmake -S "$top" -B "$top/build/release" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$top/build/release" --target tessarine-convert >/dev/null
convert=$top/build/release/src/tools/tessarine-convert
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# GUNS sections made from the example's guns in turn, each TypeName made unique.
awk -v guns="$guns" '
  /^\[/ { sections++; next }
  sections && NF { body[sections] = body[sections] $0 "\n" }
  END {
    for (i = 1; i <= guns; i++) {
      text = body[(i - 1) % sections + 1]
      sub(/TypeName=[^\n]*/, "&-" i, text)
      printf "[GunData%03d]\n%s\n", i, text
    }
  }' "$top/examples/guns.ini" >guns.ini
echo "input: $guns guns, $(stat -c %s guns.ini) bytes"

"$convert" guns.ini out.ini  # the outputs that every timed run writes over
for ((i = 0; i < runs; i++)); do
  start=$EPOCHREALTIME
  "$convert" guns.ini out.ini
  end=$EPOCHREALTIME
  echo "$start $end"
done | awk '{ printf "%.3f\n", ($2 - $1) * 1000 }' | sort -n |
  awk '{ t[NR] = $1 }
    END { printf "wall: median %.2f ms (%.2f-%.2f) of %d runs\n", t[int((NR + 1) / 2)], t[1], t[NR], NR }'
valgrind --tool=callgrind --callgrind-out-file=/dev/null "$convert" guns.ini out.ini 2>&1 |
  awk '/Collected/ { printf "instructions: %.1f M (valgrind --tool=callgrind)\n", $4 / 1e6 }'
/usr/bin/time -f "peak RSS: %M KiB (GNU time)" "$convert" guns.ini out.ini
