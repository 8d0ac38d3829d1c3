#!/usr/bin/env bash
# Measures the library in virtual machines, on devices of their kernels.
set -euo pipefail

usage='usage: run.sh [--quick] [--instructions] [ARCHITECTURE ...]

Boots a guest for each ARCHITECTURE, x86_64 or armhf (default: both), runs all of vorn_guest_bench in
it, and prints CSV rows without a header. The column "parameter" begins with the architecture.
Progress and errors go to stderr. Takes about nine minutes per guest, on an otherwise idle machine.

Needs the target vorn_guest_bench, built in build/release for x86_64 and in build/armhf for armhf.

--instructions  Only count the instructions, of the kernel and of the program, for latency and scan
                on armhf. They hardly depend on the machine and its load. Takes two minutes.
--quick         A trial run of about a minute per guest; its figures are meaningless.
--help          Print this text.'

latency=() silence=() scan=() start=()
architectures=()
instructions=
for argument in "$@"; do
    case $argument in
    --help)
        echo "$usage"
        exit 0
        ;;
    --quick)
        latency=(--records 50 --runs 2)
        silence=(--seconds 2)
        scan=(--passes 2)
        start=(--starts 2)
        ;;
    --instructions) instructions=yes ;;
    x86_64 | armhf) architectures+=("$argument") ;;
    *)
        echo "run.sh: expected x86_64 or armhf, not '$argument' (see --help)" >&2
        exit 2
        ;;
    esac
done
if [ -n "$instructions" ]; then
    if [ "${architectures[*]:-armhf}" != armhf ]; then
        echo "run.sh: instructions can only be counted on armhf" >&2
        exit 2
    fi
    architectures=(armhf)
    # Makes a nanosecond in the guest one instruction.
    export VORN_VM_COUNT_INSTRUCTIONS=yes
fi
[ ${#architectures[@]} -gt 0 ] || architectures=(x86_64 armhf)

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
guest=$root/tests/vm/guest.py
declare -A builds=([x86_64]=$root/build/release [armhf]=$root/build/armhf)
for architecture in "${architectures[@]}"; do
    program=${builds[$architecture]}/bench/guest/vorn_guest_bench
    if [ ! -x "$program" ]; then
        echo "run.sh: $program is missing; build it first (see --help)" >&2
        exit 1
    fi
done

# A run of all readers takes far longer than a test.
export VORN_VM_COMMAND_LIMIT=600
folder=
trap '[ -z "$folder" ] || "$guest" stop "$folder" >&2' EXIT

# measure ARCHITECTURE ARGUMENT...: rows go to stdout, all other output to stderr.
measure() {
    local architecture=$1 build=${builds[$1]} output=$folder/output status=0
    shift
    echo "run.sh: $architecture: $*" >&2
    "$guest" run "$folder" "$build/bench/guest/vorn_guest_bench" "$@" >"$output" || status=$?
    awk -F, -v OFS=, -v architecture="$architecture" -v instructions="$instructions" '
        instructions && $7 == "us" {
            $6 = ($6 == "time" ? "" : $6 " ") "instructions"
            $7 = $1 == "latency" ? "1/record" : "1/pass"
            for (i = 8; i <= 10; ++i)
                $i *= 1000
        }
        instructions && $7 == "ratio" { sub(/ to /, " instructions to ", $6) }
        NF == 11 { $5 = architecture ($5 == "" ? "" : " ") $5; print; next }
        { print >"/dev/stderr" }' "$output"
    return "$status"
}

# measureAll ARCHITECTURE
measureAll() {
    local architecture=$1 build=${builds[$1]} expedite dispatcher
    measure "$architecture" memory --player "$build/examples/player/player"
    for expedite in '' --expedite; do
        measure "$architecture" start ${expedite:+"$expedite"} "${start[@]}"
        measure "$architecture" scan ${expedite:+"$expedite"} "${scan[@]}"
    done
    for dispatcher in glib unix; do
        measure "$architecture" silence --dispatcher "$dispatcher" "${silence[@]}"
        measure "$architecture" latency --dispatcher "$dispatcher" "${latency[@]}"
    done
}

for architecture in "${architectures[@]}"; do
    build=${builds[$architecture]}
    folder=$build/bench/guest/machine
    "$guest" start "$architecture" "$folder" "$root" "$build" >&2
    if [ -n "$instructions" ]; then
        for dispatcher in glib unix; do
            measure "$architecture" latency --dispatcher "$dispatcher" "${latency[@]}"
        done
        measure "$architecture" scan --expedite "${scan[@]}"
    else
        measureAll "$architecture"
    fi
    "$guest" stop "$folder" >&2
    folder=
done
