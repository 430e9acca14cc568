#!/usr/bin/env bash
# Installs what `make test-portable` needs beside the ordinary build: clang,
# the arm64 cross compiler, Debian's arm64 multiarch libraries the game links
# (arm64 is added to dpkg's architectures if missing) and qemu-user to run
# them. Asks apt only for what is missing; needs root or sudo without a password.
set -euo pipefail

packages=(
  clang
  g++-aarch64-linux-gnu qemu-user
  # JACK 1, as the native libjack-dev the other packages may have brought
  libjack0:arm64 libjack-dev:arm64
  libsdl2-dev:arm64 libsdl2-ttf-dev:arm64 libsdl2-mixer-dev:arm64 libfluidsynth-dev:arm64 libfontconfig-dev:arm64
  zlib1g-dev:arm64 # the screenshots' PNG files
)

say() { echo "install-portable-deps: $*" >&2; }

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  if ! sudo -n true 2>/dev/null; then
    say "run as root, or with sudo that needs no password"
    exit 1
  fi
  as_root=(sudo -n)
fi

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
(( ${#missing[@]} == 0 )) && exit 0

added=false
if ! dpkg --print-foreign-architectures | grep -qx arm64; then
  "${as_root[@]}" dpkg --add-architecture arm64
  added=true
fi
say "installing missing packages: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=900 update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=900 install -y -qq \
  --no-install-recommends "${missing[@]}" || {
  say "apt-get install failed"
  $added && say "dpkg now knows the arm64 architecture (dpkg --remove-architecture arm64 undoes it)"
  exit 1
}
