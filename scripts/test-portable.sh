#!/usr/bin/env bash
# Builds the game program three more ways -- clang, gcc for x86-64-v3 (fused
# multiply-adds at hand), gcc for arm64 run under qemu-user -- and checks that
# each plays every kept replay exactly as it was recorded.
# Usage: test-portable.sh NATIVE_BUILD OUT_FOLDER JOBS
set -uo pipefail
native=$(realpath "$1")
out=$2
jobs=${3:-2}
source=$(cd "$(dirname "$0")/.." && pwd)
replays=("$source"/tests/replay/golden/*.qvr)
icon=$native/icon/WindowIcon.cpp
failures=0

build() {
  local name=$1
  shift
  cmake -S "$source" -B "$out/$name" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQV_GAME_ONLY=ON \
    -DQV_WINDOW_ICON_FROM="$icon" "$@" > /dev/null &&
    cmake --build "$out/$name" -j "$jobs" --target quelvarion > "$out/$name.log" 2>&1 ||
    { echo "test-portable: the $name build failed; see $out/$name.log" >&2; return 1; }
}

verify_all() {
  local name=$1 passed=0
  shift
  for replay in "${replays[@]}"; do
    if SDL_VIDEODRIVER=dummy SDL_AUDIODRIVER=dummy "$@" "$out/$name/quelvarion" --verify "$replay" \
      > /dev/null 2> "$out/$name.verify"; then
      passed=$((passed + 1))
    else
      echo "test-portable: $name: $(grep -v '^ALSA\|recorded by version' "$out/$name.verify" | head -1)" >&2
    fi
  done
  echo "test-portable: $name plays $passed of ${#replays[@]} replays as recorded"
  ((passed == ${#replays[@]}))
}

run() {
  local name=$1 flags=$2
  shift 2
  # shellcheck disable=SC2086
  if build "$name" $flags; then
    verify_all "$name" "$@" || failures=$((failures + 1))
  else
    failures=$((failures + 1))
  fi
}

mkdir -p "$out"
[[ -f $icon ]] || { echo "test-portable: build the game natively first ($icon is missing)" >&2; exit 1; }
run clang "-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++"
# A processor without x86-64-v3 (AVX2, FMA) cannot run that build: it is
# still built, so it keeps compiling, but its replays are left unchecked.
if grep -qw avx2 /proc/cpuinfo && grep -qw fma /proc/cpuinfo; then
  run gcc-x86-64-v3 "-DCMAKE_C_FLAGS=-march=x86-64-v3 -DCMAKE_CXX_FLAGS=-march=x86-64-v3"
else
  build gcc-x86-64-v3 -DCMAKE_C_FLAGS=-march=x86-64-v3 -DCMAKE_CXX_FLAGS=-march=x86-64-v3 || failures=$((failures + 1))
  echo "test-portable: gcc-x86-64-v3 built; this processor cannot run it, so its replays are not checked"
fi
arm64=(qemu-aarch64 -L /usr/aarch64-linux-gnu)
if build arm64 "-DCMAKE_TOOLCHAIN_FILE=$source/cmake/aarch64-linux-gnu.cmake"; then
  verify_all arm64 "${arm64[@]}" || failures=$((failures + 1))
else
  failures=$((failures + 1))
fi
exit $((failures > 0))
