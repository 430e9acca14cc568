#!/usr/bin/env bash
# Runs each fuzz target for a bounded time from its regression inputs, and
# prints what it did: executions, coverage, and whether it found anything.
set -uo pipefail
build=$(cd "$1" && pwd)
seconds=$2
root=$(cd "$(dirname "$0")/.." && pwd)
status=0
for target in "$build"/fuzz_*; do
    [[ -x "$target" ]] || continue
    name=$(basename "$target")
    short=${name#fuzz_}
    corpus="$build/corpus/$short"
    findings="$build/findings/$short"
    mkdir -p "$corpus" "$findings"
    seeds="$root/fuzz/regressions/$short"
    log="$build/$name.log"
    (cd "$build" && SDL_VIDEODRIVER=dummy SDL_AUDIODRIVER=dummy SDL_SOUNDFONTS="$build/game/background.sf2" "$target" \
        -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$findings/" \
        "$corpus" "$seeds") > "$log" 2>&1
    rc=$?
    execs=$(grep -E '^stat::number_of_executed_units' "$log" | awk '{print $2}' | tail -1)
    cov=$(grep -E '#[0-9]+.*cov:' "$log" | tail -1 | sed -E 's/.*cov: ([0-9]+).*ft: ([0-9]+).*/cov \1, features \2/')
    printf '%-18s %s executions, %s, exit %s\n' "$name" "${execs:-?}" "${cov:-no coverage line}" "$rc"
    [[ $rc -eq 0 ]] || status=1
done
exit $status
