#!/usr/bin/env bash
# Installs the plug-in kit into a temporary prefix, builds the example plug-in against it as a
# plug-in author would, and runs the loader test on the library that comes out.
set -euo pipefail
build_dir=$1 source_dir=$2 loader=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build_dir" --component PluginKit --prefix "$work/prefix" >/dev/null
cmake -S "$source_dir/examples/plugin" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
      -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$work/build" >/dev/null
TESS_EXAMPLE_PLUGIN="$work/build/EXAMPLE.DLL" "$loader"
