#!/usr/bin/env bash
# Builds the project and runs its tests, the way CI does.
set -euo pipefail

usage='usage: test.sh [--quick] [--werror] [--help]

Installs what is missing (with sudo unless it runs as root), builds, and runs all tests:

  dev        Debug build: unit, integration and package tests
  release    the same on the optimised build; its assertions must be as fatal
  asan       the same under AddressSanitizer and UndefinedBehaviorSanitizer
  valgrind   the unit tests of the Debug build under memcheck

Ends with a line "N passed, N failed, N skipped", and with status 0 when none failed. Logs are kept
in build/logs.

--quick    The dev tests alone.
--werror   Compiler warnings are errors.
--help     Prints this text.'

quick=no
dev=dev
for option in "$@"; do
    case $option in
    --quick) quick=yes ;;
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
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${test_packages[@]}"

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

# run NAME PRESET [CTEST-OPTION…]: runs the tests of a build and adds them up. Tells of those that
# failed or were skipped, with what they printed.
run() {
    local name=$1 preset=$2
    shift 2
    echo "== $name: testing"
    local junit=$logs/$name.xml log=$logs/$name-test.log status=0
    rm -f "$junit"
    ctest --preset "$preset" --output-junit "$root/$junit" "$@" >"$log" 2>&1 || status=$?
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
run dev "$dev" -LE valgrind
if [ "$quick" = no ]; then
    run valgrind "$dev" -L valgrind
    build release
    run release release -LE valgrind
    build asan
    run asan asan -LE valgrind
fi

echo "$passed passed, $failed failed, $skipped skipped"
[ "$failed" -eq 0 ]
