#!/usr/bin/env bash
# Installs the converter from the build tree BUILD into a fresh prefix and runs it from there.
set -euo pipefail
build=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --component Converter --prefix "$prefix" >/dev/null
test -x "$prefix/bin/tessarine-convert"
"$prefix/bin/tessarine-convert" --version | grep -q '^tessarine-convert '
test -s "$prefix/share/man/man1/tessarine-convert.1"
# The page must render without a warning.
out=$(groff -man -Tutf8 -ww -z "$prefix/share/man/man1/tessarine-convert.1" 2>&1)
test -z "$out" || { echo "$out"; exit 1; }
