#!/usr/bin/env bash
# Takes the README's pictures of both windows under Xvfb: the gun list with the example data
# open and a row selected, and the edit form on that gun. Writes docs/gun-list-window.png and
# docs/edit-gun-dialog.png.
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
bash "$top/scripts/install-deps.sh"
cmake -S "$top" -B "$top/build/release" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$top/build/release" --target tessarine
work=$(mktemp -d)
cp "$top/examples/guns.ini" "$work/"
mkdir -p "$top/docs"

source "$top/scripts/xvfb.sh"
trap 'stop_xvfb; rm -rf "$work"' EXIT
start_xvfb
cd "$work"
"$top/build/release/src/shell/qt/tessarine" &
editor_pid=$!
main=$(wait_window Untitled)
# The list has the focus; Open is the eighth control after it.
press_keys "$main" Tab Tab Tab Tab Tab Tab Tab Tab space
chooser=$(wait_window Open)
xdotool windowfocus --sync "$chooser" type --delay 20 guns.ini
press_keys "$chooser" Return
main=$(wait_window guns.ini)
press_keys "$main" shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab \
  shift+Tab Down Down
screenshot "$main" "$top/docs/gun-list-window.png"
press_keys "$main" Tab Tab space
form=$(wait_window "Edit Gun Data")
screenshot "$form" "$top/docs/edit-gun-dialog.png"
press_keys "$form" Escape
press_keys "$main" Escape
wait "$editor_pid"
echo "Wrote docs/gun-list-window.png and docs/edit-gun-dialog.png"
