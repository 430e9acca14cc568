#!/usr/bin/env bash
# Installs the Debian packages the game needs to be built, run, tested
# (make test, make test-asan) and fuzzed (make fuzz), asking apt only for the
# ones that are missing. Works as root, through sudo, or tells an ordinary
# user without sudo exactly what to ask for.
set -euo pipefail

packages=(
  # building and running
  build-essential cmake pkg-config
  libsdl2-dev libsdl2-ttf-dev libsdl2-mixer-dev libfluidsynth-dev
  fontconfig fonts-dejavu-core
  libcairo2-dev
  # the unit tests and the benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # the end-to-end tests: an X server, keys, screenshots, window properties,
  # the fonts the error box is drawn with, sound checks, desktop file checks
  xvfb xdotool imagemagick x11-utils xfonts-base sox python3
  desktop-file-utils appstream
  # make fuzz: clang with its sanitizer and libFuzzer runtimes
  clang libclang-rt-dev
)

say() { echo "install-deps: $*" >&2; }

if ! command -v dpkg-query > /dev/null || ! command -v apt-get > /dev/null; then
  say "this is not a Debian system; install the equivalents of: ${packages[*]}"
  exit 1
fi

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
(( ${#missing[@]} == 0 )) && exit 0

cannot_install() {
  say "$1"
  say "these Debian packages are missing: ${missing[*]}"
  say "install them as root, then run make again:"
  say "  apt-get update && apt-get install --no-install-recommends ${missing[*]}"
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

say "installing missing packages: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq ||
  cannot_install "apt-get update failed"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" ||
  cannot_install "apt-get install failed"
