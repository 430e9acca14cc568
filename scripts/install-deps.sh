#!/usr/bin/env bash
# Installs the Debian packages the game needs to build, run and be tested,
# asking apt only for the ones that are missing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  libsdl2-dev libsdl2-ttf-dev libsdl2-mixer-dev libfluidsynth-dev
  fontconfig fonts-dejavu-core
  libgtest-dev libgmock-dev libbenchmark-dev
  libcairo2-dev
  xvfb xdotool imagemagick sox python3
  desktop-file-utils appstream
  clang
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done

if (( ${#missing[@]} == 0 )); then
  exit 0
fi

echo "Installing missing packages: ${missing[*]}"
sudo=""
if [[ $(id -u) -ne 0 ]]; then
  sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
