#!/usr/bin/env bash
# Builds the editor and starts it in FOLDER (default build/run), where it keeps its settings
# file; the example gun data is put there to open. Without a reachable display it runs the
# editor under Xvfb, saves a picture of the main window as FOLDER/tessarine.png, closes it and
# exits 0.
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
folder="${1:-$top/build/run}"
bash "$top/scripts/install-deps.sh"
cmake -S "$top" -B "$top/build/release" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$top/build/release" --target tessarine tessarine-convert
editor="$top/build/release/src/shell/qt/tessarine"
mkdir -p "$folder"
[ -e "$folder/guns.ini" ] || cp "$top/examples/guns.ini" "$folder/guns.ini"
cd "$folder"

source "$top/scripts/xvfb.sh"
if display_reachable; then
  echo "Starting the editor in $folder (Open offers guns.ini there)"
  exec "$editor"
fi

echo "No display is reachable: running the editor under Xvfb instead."
trap stop_xvfb EXIT
start_xvfb
"$editor" &
editor_pid=$!
window=$(wait_window Untitled)
screenshot "$window" "$folder/tessarine.png"
echo "Saved a picture of the main window: $folder/tessarine.png"
press_keys "$window" Escape
wait "$editor_pid"
echo "The editor closed normally; its settings are in $folder/Tessarine.ini"
