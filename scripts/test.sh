#!/usr/bin/env bash
# Builds the project and runs its tests, the way CI does.
set -euo pipefail

usage='usage: test.sh [--quick] [--vm] [--werror] [--help]

Installs what is missing (with sudo unless it runs as root), builds, and runs all tests:

  dev        Debug build: unit, integration and package tests
  release    the same on the optimised build; its assertions must be as fatal
  asan       the same under AddressSanitizer and UndefinedBehaviorSanitizer
  valgrind   the unit tests of the Debug build under memcheck
  fuzz       everything that reads files, with inputs that a fuzzer makes up for ten seconds each

and with --vm also

  armhf      the optimised build for 32-bit ARM: unit tests under emulation
  vm         tests on real kernel devices, in a virtual machine of each architecture

Ends with a line "N passed, N failed, N skipped", and with status 0 when none failed. Logs are kept
in build/logs.

--quick    Of the first five the dev tests alone.
--vm       Also what needs an emulator. The first time, kernels and an ARM system are fetched and kept
           in ~/.cache/vorn_input.
--werror   Compiler warnings are errors.
--help     Prints this text.'

quick=no
vm=no
dev=dev
for option in "$@"; do
    case $option in
    --quick) quick=yes ;;
    --vm) vm=yes ;;
    # The same build with warnings as errors.
    --werror) dev=ci ;;
    --help)
        echo "$usage"
        exit 0
        ;;
    *)
        echo "test.sh: unknown option '$option' (see --help)" >&2
        exit 2
        ;;
    esac
done

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# Presets are looked for in the current directory.
cd "$root"
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh
scripts/install-packages.sh "${test_packages[@]}"
if [ "$vm" = yes ]; then
    scripts/install-packages.sh "${vm_packages[@]}"
    # shellcheck source=scripts/lib/debian-packages.sh
    . scripts/lib/debian-packages.sh
    VORN_INPUT_CACHE=$(cache_folder)
    export VORN_INPUT_CACHE
fi

logs=build/logs
mkdir -p "$logs"
passed=0 failed=0 skipped=0

# build PRESET: shows what was printed only when it fails.
build() {
    echo "== $1: building"
    if ! { cmake --preset "$1" && cmake --build --preset "$1"; } >"$logs/$1-build.log" 2>&1; then
        tail -n 60 "$logs/$1-build.log"
        echo "test.sh: the $1 build failed, see $logs/$1-build.log" >&2
        exit 1
    fi
    grep -E 'warning:' "$logs/$1-build.log" || true
}

# run NAME PRESET [CTEST-OPTION…]: runs the tests of a build and reports on them.
run() {
    echo "== $1: testing"
    execute "$@"
    report "$1"
}

# execute NAME PRESET [CTEST-OPTION…]: runs the tests of a build, in silence.
execute() {
    local name=$1 preset=$2 status=0
    shift 2
    rm -f "$logs/$name.xml"
    ctest --preset "$preset" --output-junit "$root/$logs/$name.xml" "$@" >"$logs/$name-test.log" \
        2>&1 || status=$?
    echo "$status" >"$logs/$name.status"
}

# report NAME: adds the results of a run up, and tells of the tests that failed or were skipped, with
# what they printed.
report() {
    local name=$1
    local junit=$logs/$name.xml log=$logs/$name-test.log status
    status=$(cat "$logs/$name.status")
    local counts
    if ! counts=$(sed -n '/<testsuite/,/>/p' "$junit" 2>/dev/null); then
        tail -n 40 "$log"
        echo "test.sh: the $name tests did not run, see $log" >&2
        exit 1
    fi
    count() { sed -nE "s/.*[^a-z]$1=\"([0-9]+)\".*/\\1/p" <<<"$counts" | head -n 1; }
    local tests failures skips disabled
    tests=$(count tests) failures=$(count failures) skips=$(count skipped)
    disabled=$(count disabled)
    skips=$((skips + disabled))
    passed=$((passed + tests - failures - skips))
    failed=$((failed + failures))
    skipped=$((skipped + skips))
    if [ "$status" -ne 0 ] || [ "$skips" -ne 0 ]; then
        sed -n '/\*\*\*/,/^$/p' "$log" | head -n 200
        # ctest keeps the reason of a skip to itself.
        grep -E -A 1 'SKIPPED: |: Skipped$' "$junit" | sed -E 's/.*(SKIPPED: )/\1/; s/<.*//' || true
    fi
    grep -E '^[0-9]+% tests passed|^Total Test time' "$log" || true
    # A run without a test, or one that ctest itself could not do, is a failure as well.
    if [ "$tests" -eq 0 ] || { [ "$status" -ne 0 ] && [ "$failures" -eq 0 ]; }; then
        failed=$((failed + 1))
        tail -n 20 "$log"
    fi
}

build "$dev"
run dev "$dev" -LE 'valgrind|vm'
if [ "$quick" = no ]; then
    run valgrind "$dev" -L valgrind
    build release
    run release release -LE 'valgrind|vm'
    build asan
    run asan asan -LE 'valgrind|vm'
    build fuzz
    run fuzz fuzz
fi
if [ "$vm" = yes ]; then
    scripts/make-sysroot.sh >/dev/null
    build armhf
    run armhf armhf -LE vm
    build release
    # Side by side: a guest waits most of the time, and each has a machine of its own.
    echo "== vm: testing in a guest of x86-64 and in one of 32-bit ARM"
    execute vm-x86_64 release -L vm &
    execute vm-armhf armhf -L vm
    wait
    report vm-x86_64
    report vm-armhf
fi

echo "$passed passed, $failed failed, $skipped skipped"
[ "$failed" -eq 0 ]
