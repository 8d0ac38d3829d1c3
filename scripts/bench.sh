#!/usr/bin/env bash
# Measures the library and its peers, and makes tables and plots of the results.
set -euo pipefail

usage='usage: bench.sh [--quick] [--guests] [--output FOLDER] [--help]

Installs missing packages, builds the release preset, and measures the whole path from a node to an
application, next to other evdev readers; its growth; the parts by themselves; the device scan; and
the size of the binaries. Writes results.csv, results.md and plots (SVG) to FOLDER, and prints which
targets are met. Takes about 12 minutes on an otherwise idle machine.

--quick          Two runs of each measurement instead of ten, to see whether everything works.
--guests         Also measure what needs kernel devices: latency, silence, start and memory, in an
                 x86-64 and a 32-bit ARM guest. Software emulation takes another 25 minutes.
--output FOLDER  Where the results go (default: build/bench).
--help           Print this text.'

runs=10
guests=no
output=build/bench
while [ "$#" -gt 0 ]; do
    case $1 in
    --quick) runs=2 ;;
    --guests) guests=yes ;;
    --output)
        [ "$#" -ge 2 ] || {
            echo "bench.sh: --output needs a folder (see --help)" >&2
            exit 2
        }
        output=$2
        shift
        ;;
    --help)
        echo "$usage"
        exit 0
        ;;
    *)
        echo "bench.sh: unknown option '$1' (see --help)" >&2
        exit 2
        ;;
    esac
    shift
done

mkdir -p "$output"
output=$(realpath "$output")
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh
# shellcheck source=scripts/lib/debian-packages.sh
. scripts/lib/debian-packages.sh
scripts/install-packages.sh "${bench_packages[@]}"

# Unpacked, not installed: an installed daemon would react to this machine's keys.
fill_peers() {
    local work
    work=$(mktemp -d)
    if ! {
        open_packages "$work" "$(dpkg --print-architecture)" &&
            unpack "$work" "$(dpkg --print-architecture)" "$1" triggerhappy interception-tools
    } >"$work/log" 2>&1; then
        cat "$work/log" >&2
        echo "bench.sh: cannot fetch the peers" >&2
        return 1
    fi
    rm -rf "$work"
}
peers=$(cache_folder)/peers
make_cached "$peers" "triggerhappy interception-tools" fill_peers

step() { echo "== $*" >&2; }

logs=build/logs
mkdir -p "$logs"
# build PRESET: shows its output only on failure.
build() {
    step "building $1"
    if ! { cmake --preset "$1" && cmake --build --preset "$1"; } >"$logs/$1-bench.log" 2>&1; then
        tail -n 40 "$logs/$1-bench.log"
        exit 1
    fi
}
build release
results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT

step "whole path"
bench/path/run.py --build build/release --peers "$peers" --runs "$runs" "$results/path.csv"
step "parts"
build/release/bench/parts/vorn_bench_parts --benchmark_format=json \
    --benchmark_repetitions="$runs" --benchmark_enable_random_interleaving=true \
    >"$results/parts.json" 2>"$logs/bench-parts.log"
bench/parts/to_csv.py "$results/parts.json" >"$results/parts.csv"
step "device scan"
bench/parts/scan_calls.py build/release/bench/parts/vorn_scan_calls >"$results/scan.csv"
builds=(build/release)
if [ "$guests" = yes ]; then
    scripts/install-packages.sh "${vm_packages[@]}"
    scripts/make-sysroot.sh >/dev/null
    build armhf
    builds+=(build/armhf)
    for architecture in x86_64 armhf; do
        step "guest of $architecture"
        bench/guest/run.sh "$architecture" >"$results/guest-$architecture.csv"
    done
    bench/guest/run.sh --instructions >"$results/guest-instructions.csv"
fi
step "size"
scripts/footprint.sh "${builds[@]}" >"$results/footprint.csv"

# One table with one header.
{
    head -n 1 "$results/path.csv"
    grep -h -v '^group,' "$results"/*.csv
} >"$output/results.csv.new"
mv "$output/results.csv.new" "$output/results.csv"
bench/report/report.py "$output/results.csv" -o "$output"
echo "The results are in $output"
