#!/usr/bin/env bash
# Builds the converter, converts the example gun data into FOLDER (default: build/example-output)
# and shows the binary file it wrote.
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
out="${1:-$top/build/example-output}"
bash "$top/scripts/install-deps.sh"
cmake -S "$top" -B "$top/build/release" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$top/build/release" --target tessarine-convert
mkdir -p "$out"
convert="$top/build/release/src/tools/tessarine-convert"
"$convert" "$top/examples/guns.ini" "$out/guns.ini"
echo "Wrote $out/guns.ini and $out/guns.dat"
"$convert" --dump "$out/guns.dat"
