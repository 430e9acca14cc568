#!/usr/bin/env bash
# Tries the README's two commands the way a new player would, on a fresh
# minimal Debian system holding only make, git and ca-certificates:
#
#   sudo scripts/fresh-machine.sh RELEASE [root|user|both]
#
# It makes the system with debootstrap (from the archive this machine's apt
# uses), clones the current commit into it and runs, as root in
# /root/quelvarion and/or as an ordinary user with sudo in their home:
# `make run` until the title shows on an X server of this machine (a
# screenshot is kept), then `make test`. Each step's wall time, the packages
# it installed and their download size go to RESULTS in the output folder.
#
# FRESH_DIR (default /var/tmp/quelvarion-fresh) holds RELEASE-WHO/ (the
# system, made anew each run) and RELEASE-WHO.out/ (logs, screenshots,
# RESULTS). `user` alone is the one run where sudo has packages to install.
set -uo pipefail

release=${1:?usage: fresh-machine.sh RELEASE [root|user|both]}
who=${2:-both}
here=$(cd "$(dirname "$0")/.." && pwd)
base=${FRESH_DIR:-/var/tmp/quelvarion-fresh}
sys=$base/$release-$who
out=$base/$release-$who.out
title_wait=${TITLE_WAIT:-2700}  # seconds `make run` may take to build and show the title
player=player

say() { echo "fresh-machine: $*" >&2; }
die() { say "$*"; exit 1; }

[[ $who =~ ^(root|user|both)$ ]] || die "who tries: root, user or both"
[[ $(id -u) -eq 0 ]] || die "run me as root: debootstrap and chroot need it"
for tool in debootstrap git Xvfb xdotool import; do
  command -v "$tool" > /dev/null || die "$tool is missing"
done

# The Debian archive this machine's apt already uses (one-line or deb822 sources).
mirror() {
  local uri
  uri=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources 2>/dev/null |
    grep -v '^\s*#' | grep -oE '(https?|file)://[^ ]*/debian/?( |$)' | grep -v security | head -1 | tr -d ' ')
  echo "${uri:-http://deb.debian.org/debian}"
}

mounts=()
xvfb=
# Whatever runs inside the system (a game, a test's X server) is ours; a game
# may have left make's process group.
end_processes_inside() {
  local link pid
  for link in /proc/[0-9]*/root; do
    [[ $(readlink "$link" 2>/dev/null) == "$sys" ]] || continue
    pid=${link#/proc/}; pid=${pid%/root}
    kill -9 "$pid" 2>/dev/null
  done
}

cleanup() {
  end_processes_inside
  [[ -n $xvfb ]] && kill "$xvfb" 2>/dev/null
  local i
  for (( i=${#mounts[@]}-1; i>=0; i-- )); do
    umount "${mounts[i]}" 2>/dev/null || umount -l "${mounts[i]}" 2>/dev/null || say "could not unmount ${mounts[i]}"
  done
  mounts=()
}
trap cleanup EXIT
trap 'exit 130' INT TERM

mount_in() {  # mount_in TARGET mount-arguments...
  local target=$sys$1; shift
  mkdir -p "$target"
  mount "$@" "$target" || die "cannot mount $target"
  mounts+=("$target")
}

inside() {  # inside USER COMMAND: a login-like shell in the fresh system, no terminal
  local user=$1 home=/root; shift
  [[ $user == root ]] || home=/home/$user
  chroot --userspec="$user:$user" "$sys" /usr/bin/env -i HOME="$home" USER="$user" LANG=C.UTF-8 TERM=dumb \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin /bin/bash -c "cd && $*" < /dev/null
}

record() { echo "$*" | tee -a "$out/RESULTS" >&2; }

# Counts what a step installed: packages, and the archives apt downloaded for it.
package_count() { chroot "$sys" dpkg-query -W -f='${Status}\n' | grep -c 'install ok installed'; }
downloaded_mb() { du -cm "$sys"/var/cache/apt/archives/*.deb 2>/dev/null | tail -1 | cut -f1; }

step() {  # step USER NAME COMMAND: runs and records one step
  local user=$1 name=$2 command=$3 before start rc
  before=$(package_count); start=$(date +%s)
  inside "$user" "$command" > "$out/$user-$name.log" 2>&1
  rc=$?
  record "$user: $name: exit $rc, $(( $(date +%s) - start )) s, $(( $(package_count) - before )) packages installed, $(downloaded_mb) MB downloaded"
  chroot "$sys" apt-get clean
  return $rc
}

# `make run` on an X server of this machine (the system shares its network,
# so X's abstract socket reaches it): waits for the window, lets the title
# settle, keeps a screenshot and ends the game.
run_to_title() {
  local user=$1 fd display start before rc=1 pid
  exec {fd}<> <(:)
  Xvfb -displayfd "$fd" -screen 0 1024x768x24 -nolisten tcp > "$out/$user-xvfb.log" 2>&1 &
  xvfb=$!
  read -r -t 30 display <&"$fd" || die "the X server did not start"
  before=$(package_count); start=$(date +%s)
  setsid bash -c "$(declare -f inside); sys='$sys'; inside $user 'cd quelvarion && DISPLAY=:$display make run'" > "$out/$user-make-run.log" 2>&1 &
  pid=$!
  while kill -0 "$pid" 2>/dev/null && (( $(date +%s) - start < title_wait )); do
    if DISPLAY=:$display xdotool search --name Quelvarion > /dev/null 2>&1; then
      sleep 5
      DISPLAY=:$display import -window root "$out/$user-title.png" && rc=0
      break
    fi
    sleep 2
  done
  record "$user: make run: $([[ $rc -eq 0 ]] && echo "title shown" || echo "NO TITLE"), $(( $(date +%s) - start )) s, $(( $(package_count) - before )) packages installed, $(downloaded_mb) MB downloaded"
  kill -- -"$pid" 2>/dev/null; end_processes_inside; wait "$pid" 2>/dev/null
  kill "$xvfb" 2>/dev/null; wait "$xvfb" 2>/dev/null; xvfb=
  chroot "$sys" apt-get clean
  return $rc
}

try_as() {  # try_as USER: the two commands in a fresh clone in USER's home
  local user=$1 home=/root
  [[ $user == root ]] || home=/home/$user
  git clone -q "$here" "$sys$home/quelvarion" && git -C "$sys$home/quelvarion" checkout -q "$commit" || die "cannot clone"
  chroot "$sys" chown -R "$user:$user" "$home/quelvarion"
  run_to_title "$user"; local a=$?
  step "$user" make-test "cd quelvarion && make test"; local b=$?
  return $(( a || b ))
}

commit=$(git -C "$here" rev-parse HEAD)
[[ -z $(git -C "$here" status --porcelain --untracked-files=no) ]] || say "uncommitted changes are left out: trying $commit"
rm -rf "$sys" "$out"; mkdir -p "$sys" "$out"
record "$release, commit $commit, started $(date -u +%FT%TZ)"
begin=$(date +%s)

start=$(date +%s)
debootstrap --variant=minbase --include=make,git,ca-certificates "$release" "$sys" "$(mirror)" \
  > "$out/debootstrap.log" 2>&1 || die "debootstrap failed (see $out/debootstrap.log)"
record "debootstrap: $(( $(date +%s) - start )) s, $(package_count) packages"
chroot "$sys" apt-get clean

mount_in /proc -t proc proc
mount_in /dev --bind /dev
mount_in /dev/pts --bind /dev/pts
mount_in /dev/shm -t tmpfs shm
cp /etc/resolv.conf "$sys/etc/resolv.conf"

status=0
if [[ $who == root || $who == both ]]; then
  try_as root || status=1
fi
if [[ $who == user || $who == both ]]; then
  # An ordinary user who may use sudo without a password (there is no terminal to type one).
  inside root "apt-get install -y -qq sudo && apt-get clean" > "$out/sudo.log" 2>&1 || die "cannot install sudo"
  chroot "$sys" useradd -m -s /bin/bash "$player"
  echo "$player ALL=(ALL) NOPASSWD: ALL" > "$sys/etc/sudoers.d/$player"
  try_as "$player" || status=1
fi
record "all: $(( $(date +%s) - begin )) s, $([[ $status -eq 0 ]] && echo passed || echo FAILED)"
exit $status
