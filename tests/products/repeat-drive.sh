#!/usr/bin/env bash
# Drives the example player and a small product again and again, in real and in virtual time, and
# prints how many of the runs passed. Run by hand: what fails once in many times shows only here.
#
# usage: repeat-drive.sh TIMES [--busy] [BUILD]
#   --busy  with two busy loops for each processor beside it
#   BUILD   folder of the build; build/dev
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
times=${1:-}
[[ $times =~ ^[1-9][0-9]*$ ]] || {
    sed -n 's/^# usage: /usage: /p' "$0" >&2
    exit 2
}
shift
busy=0
if [ "${1:-}" = --busy ]; then
    busy=$((2 * $(nproc)))
    shift
fi
build=${1:-$root/build/dev}
workbench=$build/src/tools/vorn-input
player=$build/examples/player/player
product=$build/tests/products/product
for program in "$workbench" "$player" "$product"; do
    [ -x "$program" ] || {
        echo "$program is missing; build it, or name the folder of another build" >&2
        exit 2
    }
done

folder=$(mktemp -d)
loops=()
finish() {
    [ ${#loops[@]} -eq 0 ] || kill "${loops[@]}"
    rm -rf "$folder"
}
trap finish EXIT
for ((i = 0; i < busy; ++i)); do
    (while :; do :; done) &
    loops+=($!)
done

# repeat OPTION…: all scenarios, TIMES times.
passed=0 failed=0
repeat() {
    local begin=$EPOCHREALTIME these=0 runs=0
    for ((i = 0; i < times; ++i)); do
        for scenario in "$root"/tests/scenarios/player-*.scenario "$root/tests/products/product.scenario"; do
            local program=$player
            runs=$((runs + 1))
            [[ $scenario != */product.scenario ]] || program=$product
            if timeout 120 "$workbench" drive "$@" --quiet "$scenario" -- "$program" \
                >"$folder/out" 2>&1 </dev/null; then
                these=$((these + 1))
            else
                failed=$((failed + 1))
                echo "FAILED with status $?: drive $* $scenario"
                sed 's/^/    /' "$folder/out"
            fi
        done
    done
    passed=$((passed + these))
    awk -v passed="$these" -v runs="$runs" -v begin="$begin" -v end="$EPOCHREALTIME" \
        -v mode="${*:-real time}" 'BEGIN {
        printf "%s: %d of %d passed, %.1f s, %.0f ms each\n", mode, passed, runs, end - begin,
            1000 * (end - begin) / runs }'
}

repeat
repeat --virtual-time
echo "$passed of $((passed + failed)) passed, with $busy busy loops on $(nproc) processors"
[ "$failed" -eq 0 ]
