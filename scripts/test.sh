#!/usr/bin/env bash
# Builds the project and runs its tests, the way CI does.
set -euo pipefail

usage='usage: test.sh [--quick] [--vm] [--werror] [--help]

Installs missing packages (with sudo unless run as root), builds, and runs the tests:

  dev        Debug build: unit, integration and package tests
  valgrind   the unit tests of that build under memcheck
  release    the optimised build: the same tests, and what a key costs
  fuzz       the Debug build with clang, AddressSanitizer and UndefinedBehaviorSanitizer: the same
             tests, then ten seconds of fuzzing for each file format
  qt6        a Debug build with Qt 6 and clang: unit and integration tests
  tsan       tests that start threads, with clang and ThreadSanitizer

With --vm also:

  armhf      the optimised build for 32-bit ARM: unit tests under emulation
  vm         tests on real kernel devices, in a virtual machine of each architecture

The tests of one build run while the next one is built. Prints the seconds that each stage took and
ends with a line "N passed, N failed, N skipped"; the status is 0 if none failed. Logs are kept in
build/logs.

--quick    Only the unit tests of the Debug build, for use after each edit. Installs packages only
           when there is no build yet.
--vm       Also what needs an emulator. The first run downloads kernels and an ARM system and keeps
           them in ~/.cache/vorn_input.
--werror   Make the first build in the default configuration, with warnings as errors.
--help     Print this text.'

quick=no
vm=no
dev=dev
for option in "$@"; do
    case $option in
    --quick) quick=yes ;;
    --vm) vm=yes ;;
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
# CMake looks for presets in the current directory.
cd "$root"
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh

# Jobs in the background ignore Ctrl-C.
trap 'kill 0' INT

# own_temporary_folder: what programs leave behind that are killed, or that end by an assertion, as some
# tests demand, goes with this run. Other users write there, too, as some tests are run by them.
own_temporary_folder() {
    TMPDIR=$(mktemp -d)
    chmod 1777 "$TMPDIR"
    export TMPDIR
    trap 'rm -rf "$TMPDIR"' EXIT
}

logs=build/logs
mkdir -p "$logs"
passed=0 failed=0 skipped=0

# took STAGE [START]: prints the seconds of a stage that began at the second START of this run.
took() { echo "$1: $((SECONDS - ${2:-0})) s"; }

# build PRESET [OPTION…]: configures and builds, the latter with the options; prints the output only
# on failure.
build() {
    local preset=$1 start=$SECONDS settings=() compiler=${CXX-}
    shift
    # The first build is the one in which people go on to edit.
    [ "$preset" = "$dev" ] || settings=(-DVORN_INPUT_UNITY=ON)
    case $preset in
    qt6 | tsan)
        # Takes two thirds of GCC's time, and nothing here is what ships.
        settings+=(-DCMAKE_CXX_FLAGS_DEBUG=-g1)
        compiler=clang++
        ;;
    esac
    # Lower priority than the tests that run meanwhile: some of them play devices in real time.
    if ! { { is_current "$preset" || CXX=$compiler cmake --preset "$preset" "${settings[@]}"; } &&
        nice cmake --build --preset "$preset" "$@"; } >"$logs/$preset-build.log" 2>&1; then
        tail -n 60 "$logs/$preset-build.log"
        echo "test.sh: the $preset build failed, see $logs/$preset-build.log" >&2
        wait
        exit 1
    fi
    # Not those of the profiles that the tests compile, some of which are about warnings.
    grep 'warning:' "$logs/$preset-build.log" | grep -v '\.toml:' || true
    took "$preset build" "$start"
}

# is_current PRESET: the quick loop need not configure what Ninja can update.
is_current() { [ "$quick" = yes ] && [ "build/$1/build.ninja" -nt CMakePresets.json ]; }

# run NAME PRESET [CTEST-OPTION…]: runs the tests of a build, without output.
run() {
    local name=$1 preset=$2 start=$SECONDS status=0
    shift 2
    rm -f "$logs/$name.xml"
    touch "$logs/$name.start"
    ctest --preset "$preset" --output-junit "$root/$logs/$name.xml" "$@" >"$logs/$name-test.log" \
        2>&1 || status=$?
    echo "$status $preset" >"$logs/$name.status"
    took "$name tests" "$start"
}

# report NAME: adds up the results of a run and shows the output of the tests that failed, and why
# others were skipped.
report() {
    local name=$1 log=$logs/$1-test.log status preset results
    read -r status preset <"$logs/$name.status"
    if ! results=$(scripts/lib/count_cases.py "$logs/$name.xml" "build/$preset/Testing/suites" \
        "$logs/$name.start"); then
        tail -n 40 "$log"
        echo "test.sh: the $name tests did not run, see $log" >&2
        wait
        exit 1
    fi
    local passes failures skips
    read -r passes failures skips <<<"$results"
    # A run without tests, or one that ctest itself could not finish, is a failure as well.
    if [ $((passes + failures + skips)) -eq 0 ] || { [ "$status" -ne 0 ] && [ "$failures" -eq 0 ]; }
    then
        failures=$((failures + 1))
        tail -n 20 "$log"
    fi
    echo "$name tests: $passes passed, $failures failed, $skips skipped"
    [ "$status" -eq 0 ] || sed -n '/\*\*\*/,/^$/p' "$log" | head -n 200 || true
    tail -n +2 <<<"$results"
    passed=$((passed + passes))
    failed=$((failed + failures))
    skipped=$((skipped + skips))
}

# finish: the last lines and the exit status.
finish() {
    took "all of test.sh"
    echo "$passed passed, $failed failed, $skipped skipped"
    [ "$failed" -eq 0 ] || exit 1
    exit 0
}

if [ "$quick" = yes ]; then
    is_current "$dev" || scripts/install-packages.sh "${build_packages[@]}"
    own_temporary_folder
    build "$dev"
    run quick "$dev" -C Quick -L unit
    report quick
    finish
fi

scripts/install-packages.sh "${test_packages[@]}"
if [ "$vm" = yes ]; then
    scripts/install-packages.sh "${vm_packages[@]}"
    # shellcheck source=scripts/lib/debian-packages.sh
    . scripts/lib/debian-packages.sh
    VORN_INPUT_CACHE=$(cache_folder)
    export VORN_INPUT_CACHE
    scripts/make-sysroot.sh >/dev/null
fi

own_temporary_folder
build "$dev"
{
    # What plays devices in real time runs in the two builds that follow.
    run dev "$dev" -LE 'valgrind|vm|realtime'
    run valgrind "$dev" -L valgrind
} &
build release
wait
report dev
report valgrind

{
    run release release -LE vm
    [ "$vm" = no ] || run vm-x86_64 release -L vm
} &
if [ "$vm" = yes ]; then
    build armhf
    wait
    report release
    report vm-x86_64
    # A guest leaves much of a core idle, so it goes beside the longest build.
    {
        run armhf armhf -LE vm
        run vm-armhf armhf -L vm
    } &
fi
build fuzz
wait
if [ "$vm" = yes ]; then
    report armhf
    report vm-armhf
else
    report release
fi

run fuzz fuzz -LE vm &
build qt6
wait
report fuzz
run qt6 qt6 -LE 'valgrind|vm|realtime' &
build tsan --target vorn_thread_tests
wait
report qt6
run tsan tsan -L threads
report tsan
finish
