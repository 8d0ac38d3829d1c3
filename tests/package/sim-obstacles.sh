#!/usr/bin/env bash
# Usage: sim-obstacles.sh SOURCE_DIR CXX
#
# Where the simulator cannot work it is left out, together with what is made of it, and whoever asks
# for it is told why. Other C libraries are played by a header that has the last word on features.h.
set -euo pipefail

source=$1 cxx=$2
# shellcheck source=tests/package/strangers.sh
. "$(dirname "${BASH_SOURCE[0]}")/strangers.sh"

# c_library NAME TEXT: a folder for -isystem.
c_library() {
    mkdir -p "$scratch/$1"
    printf '#include_next <features.h>\n%s\n' "$2" >"$scratch/$1/features.h"
}
c_library old $'#undef __GLIBC_MINOR__\n#define __GLIBC_MINOR__ 17'
c_library other '#undef __GLIBC__'

# configure CMAKE-OPTION…
configure() {
    rm -rf "$scratch/build"
    cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" "$@" \
        >"$scratch/log" 2>&1
}

# refused_for OBSTACLE CMAKE-OPTION…
refused_for() {
    local obstacle=$1
    shift
    configure "$@" || fail "cannot be configured with $*"
    grep -q "Without simulator, workbench and tests: $obstacle" "$scratch/log" ||
        fail "expected to be told: $obstacle"
    for part in SIM TOOLS TESTS; do
        grep -q "^VORN_INPUT_BUILD_$part:BOOL=OFF" "$scratch/build/CMakeCache.txt" ||
            fail "$part is on although $obstacle"
    done
    for part in SIM TOOLS TESTS; do
        ! configure "$@" "-DVORN_INPUT_BUILD_$part=ON" || fail "$part is built although $obstacle"
        tr -s ' \n' ' ' <"$scratch/log" |
            grep -q "The simulator cannot work here: $obstacle. .*-DVORN_INPUT_BUILD_SIM=OFF" ||
            fail "expected to be told what to do: $obstacle"
    done
}
refused_for 'this glibc is older than 2.28' "-DCMAKE_CXX_FLAGS=-isystem $scratch/old"
refused_for 'this C library is not glibc' "-DCMAKE_CXX_FLAGS=-isystem $scratch/other"
refused_for 'programs are linked statically' -DCMAKE_EXE_LINKER_FLAGS=-static

# What the library itself needs is told in the same way.
! configure -DCMAKE_CXX_STANDARD=14 || fail "configured as C++14"
grep -q 'vorn_input needs 17 or later' "$scratch/log" || fail "expected the reason"
echo PASSED
