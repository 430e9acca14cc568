#!/usr/bin/env bash
# Runs each fuzz target for a bounded time from its regression inputs, and
# prints what it did: executions, coverage, and whether it found anything.
# Fails when any target leaves a finding: a crash, a leak, a slow unit, a
# timeout or running out of memory, each kept in findings/<target>/.
set -uo pipefail
build=$(cd "$1" && pwd)
seconds=$2
root=$(cd "$(dirname "$0")/.." && pwd)
# One input may take this long before it counts as slow, or as a timeout.
slow_seconds=${FUZZ_SLOW_SECONDS:-5}
timeout_seconds=${FUZZ_TIMEOUT_SECONDS:-25}
# Crash reports name functions and lines only with the symbolizer.
symbolizer=$(command -v llvm-symbolizer || ls /usr/bin/llvm-symbolizer-* 2>/dev/null | sort -V | tail -1)
if [[ -n $symbolizer ]]; then
    export ASAN_SYMBOLIZER_PATH=$symbolizer UBSAN_SYMBOLIZER_PATH=$symbolizer
else
    echo "llvm-symbolizer not found: crash reports will show addresses only (install llvm)" >&2
fi
# Findings of earlier runs stay for reading; only this run's count.
started=$(mktemp)
trap 'rm -f "$started"' EXIT
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
        -report_slow_units="$slow_seconds" -timeout="$timeout_seconds" \
        "$corpus" "$seeds") > "$log" 2>&1
    rc=$?
    execs=$(grep -E '^stat::number_of_executed_units' "$log" | awk '{print $2}' | tail -1)
    cov=$(grep -E '#[0-9]+.*cov:' "$log" | tail -1 | sed -E 's/.*cov: ([0-9]+).*ft: ([0-9]+).*/cov \1, features \2/')
    found=$(find "$findings" -type f -newer "$started" | wc -l)
    printf '%-18s %s executions, %s, exit %s, %s finding(s)\n' "$name" "${execs:-?}" "${cov:-no coverage line}" "$rc" "$found"
    if (( rc != 0 || found > 0 )); then
        status=1
        find "$findings" -type f -newer "$started" -printf '  %p\n'
        echo "  log: $log"
    fi
done
(( status == 0 )) || echo "fuzzing left findings: fix them, then keep each input in fuzz/regressions" >&2
exit $status
