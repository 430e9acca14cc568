#!/usr/bin/env bash
# Makes sure what a group of make targets needs is on this machine:
#
#   scripts/install-deps.sh play [test] [fuzz] [portable] [coverage]
#
#   play      building the game and its data, and playing it (make run, build, install)
#   test      the unit, end-to-end and layering tests and the benchmarks (make test, bench)
#   fuzz      the libFuzzer targets and their crash reports (make fuzz)
#   portable  the clang and arm64 builds that check the kept replays (make test-portable)
#   coverage  the unit tests' line and branch coverage report (make coverage)
#
# Each need is checked the way the build will look for it (a pkg-config
# module, a command, a font), not in a package database, so the check holds
# on any system. Where something is missing and apt exists, the Debian
# packages that bring it are installed: directly as root, through sudo
# otherwise, or the user is told the exact command. Elsewhere the missing
# pieces are named; the build goes on when nothing is missing.
set -euo pipefail

# One need a line: how it is checked, what it is called, the Debian packages
# that bring it (comma-separated). A new group is a new function and a line
# in `groups`.
play_needs() {
  cat <<'EOF'
command cc              gcc
command c++             g++
command cmake           cmake
command pkg-config      pkg-config
pkg     sdl2            libsdl2-dev
pkg     SDL2_ttf        libsdl2-ttf-dev
pkg     SDL2_mixer      libsdl2-mixer-dev
pkg     fluidsynth      libfluidsynth-dev
pkg     fontconfig      libfontconfig-dev
pkg     zlib            zlib1g-dev
pkg     cairo           libcairo2-dev
command fc-list         fontconfig
font    scalable        fonts-dejavu-core
EOF
}

test_needs() {
  cat <<'EOF'
pkg     gtest           libgtest-dev
pkg     gmock           libgmock-dev
pkg     benchmark       libbenchmark-dev
command python3         python3
command Xvfb            xvfb
command xdotool         xdotool
command import          imagemagick
command xprop           x11-utils
file    /usr/share/fonts/X11/misc/fonts.dir xfonts-base
command sox             sox
command desktop-file-validate desktop-file-utils
command appstreamcli    appstream
command man             man-db
command setpriv         util-linux
command weston          weston
command ffmpeg          ffmpeg
EOF
}

fuzz_needs() {
  cat <<'EOF'
command clang++         clang
fuzzer  libFuzzer       libclang-rt-dev
command llvm-symbolizer llvm
EOF
}

# The arm64 libraries are Debian's multiarch packages; JACK 1 goes with them,
# as the native JACK the other packages bring.
portable_needs() {
  cat <<'EOF'
command clang++         clang
command aarch64-linux-gnu-g++ g++-aarch64-linux-gnu
command qemu-aarch64    qemu-user
arm64   sdl2            libsdl2-dev:arm64,libjack0:arm64,libjack-dev:arm64
arm64   SDL2_ttf        libsdl2-ttf-dev:arm64
arm64   SDL2_mixer      libsdl2-mixer-dev:arm64
arm64   fluidsynth      libfluidsynth-dev:arm64
arm64   fontconfig      libfontconfig-dev:arm64
arm64   zlib            zlib1g-dev:arm64
EOF
}

coverage_needs() {
  cat <<'EOF'
command gcovr           gcovr
EOF
}

groups=(play test fuzz portable coverage)

say() { echo "install-deps: $*" >&2; }

present() {
  local kind=$1 name=$2
  case $kind in
    command) command -v "$name" > /dev/null ;;
    pkg) command -v pkg-config > /dev/null && pkg-config --exists "$name" ;;
    arm64) command -v pkg-config > /dev/null &&
      PKG_CONFIG_LIBDIR=/usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig PKG_CONFIG_PATH= \
        pkg-config --exists "$name" ;;
    file) [[ -e $name ]] ;;
    font) command -v fc-list > /dev/null && [[ -n $(fc-list :scalable=true family 2>/dev/null | head -1) ]] ;;
    fuzzer) command -v clang++ > /dev/null &&
      echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' |
        clang++ -x c++ -fsanitize=fuzzer -o /dev/null - 2>/dev/null ;;
  esac
}

(( $# > 0 )) || set -- play
missing_names=() missing_packages=()
for group in "$@"; do
  [[ " ${groups[*]} " == *" $group "* ]] || { say "no group named '$group' (groups: ${groups[*]})"; exit 2; }
  while read -r kind name packages; do
    present "$kind" "$name" && continue
    missing_names+=("$name")
    for package in ${packages//,/ }; do
      [[ " ${missing_packages[*]} " == *" $package "* ]] || missing_packages+=("$package")
    done
  done < <("${group}_needs")
done
(( ${#missing_names[@]} == 0 )) && exit 0

if ! command -v apt-get > /dev/null; then
  say "missing: ${missing_names[*]}"
  say "install them with your system's package manager (README.md names the packages), then run make again"
  exit 1
fi

cannot_install() {
  say "$1"
  say "these Debian packages are missing: ${missing_packages[*]}"
  say "install them as root, then run make again:"
  local arch=""
  [[ " ${missing_packages[*]} " == *":arm64 "* ]] && arch="dpkg --add-architecture arm64 && "
  say "  ${arch}apt-get update && apt-get install --no-install-recommends ${missing_packages[*]}"
  exit 1
}

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo > /dev/null || cannot_install "you are not root and sudo is not installed"
  # Without a terminal sudo can only go on if it needs no password.
  if [[ ! -t 0 ]] && ! sudo -n true 2>/dev/null; then
    cannot_install "sudo needs a password and there is no terminal to ask for it"
  fi
  as_root=(sudo)
fi

# Packages of another architecture come only once dpkg knows it.
if [[ " ${missing_packages[*]} " == *":arm64 "* ]] && ! dpkg --print-foreign-architectures | grep -qx arm64; then
  "${as_root[@]}" dpkg --add-architecture arm64 || cannot_install "dpkg could not add the arm64 architecture"
  say "dpkg now knows the arm64 architecture (dpkg --remove-architecture arm64 undoes it)"
fi
say "installing missing packages: ${missing_packages[*]}"
# A machine just started often has its daily package update holding dpkg's
# lock, and a second make target may be installing too: wait for it.
apt=(env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600)
"${as_root[@]}" "${apt[@]}" update -qq ||
  cannot_install "apt-get update failed"
"${as_root[@]}" "${apt[@]}" install -y -qq --no-install-recommends "${missing_packages[@]}" ||
  cannot_install "apt-get install failed"
