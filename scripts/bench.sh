#!/usr/bin/env bash
# Measures the library beside its peers, and makes tables and plots of it.
set -euo pipefail

usage='usage: bench.sh [--quick] [--guests] [--output FOLDER] [--help]

Installs what is missing, builds the preset release, and measures: the whole path from a node to an
application beside other readers of evdev, its growth, the parts by themselves, the scan of devices,
and the size of the binaries. Writes results.csv, results.md and plots (SVG) into FOLDER, and says
which targets are met. Takes about 12 minutes; the machine should have nothing else to do.

--quick          Two runs of each in place of ten, to see whether all of it works.
--guests         Also what needs a kernel with devices: latency, silence, start and memory, in a
                 guest of x86-64 and in one of 32-bit ARM. Software emulation takes another 25 minutes.
--output FOLDER  Where the results go (build/bench).
--help           Prints this text.'

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

# The daemon would react to this machine's keys if it were installed, so it is only unpacked.
fill_peers() {
    local work
    work=$(mktemp -d)
    if ! {
        open_packages "$work" "$(dpkg --print-architecture)" &&
            unpack "$work" "$(dpkg --print-architecture)" "$1" triggerhappy interception-tools
    } >"$work/log" 2>&1; then
        cat "$work/log" >&2
        echo "bench.sh: the peers could not be fetched" >&2
        return 1
    fi
    rm -rf "$work"
}
peers=$(cache_folder)/peers
make_cached "$peers" "triggerhappy interception-tools" fill_peers

step() { echo "== $*" >&2; }

logs=build/logs
mkdir -p "$logs"
# build PRESET: shows what was printed only when it fails.
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

# One table of all, with one head.
{
    head -n 1 "$results/path.csv"
    grep -h -v '^group,' "$results"/*.csv
} >"$output/results.csv.new"
mv "$output/results.csv.new" "$output/results.csv"
bench/report/report.py "$output/results.csv" -o "$output"
echo "The results are in $output"
