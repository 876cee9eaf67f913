#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, only those that are missing.
set -euo pipefail
# The editor needs Qt 6 Widgets with its platform plugins and a font; running it without a
# display, and taking pictures of it, needs Xvfb, xauth, xdotool and ImageMagick; the
# converter's manual page test needs groff.
packages=(g++ cmake ninja-build libgtest-dev libgmock-dev libbenchmark-dev locales
          qt6-base-dev qt6-qpa-plugins fonts-dejavu-core xvfb xauth xdotool imagemagick groff-base "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update
$sudo apt-get install -y --no-install-recommends "${missing[@]}"
