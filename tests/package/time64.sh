#!/usr/bin/env bash
# Compiles everything but the tests for a 32-bit system with 64-bit time_t, without warnings, and runs
# a small product there. With --tests, which takes minutes, also the simulator's and the library's
# tests.
# usage: time64.sh SOURCE_FOLDER TOOLCHAIN_FILE [--tests]
set -euo pipefail

source=$1
toolchain=$2
targets=(vorn_time64_run)
if [[ ${3-} == --tests ]]; then
    targets+=(vorn_time64_tests)
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

if ! {
    cmake -S "$source" -B "$folder" -G Ninja --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS="-D_TIME_BITS=64 -D_FILE_OFFSET_BITS=64" \
        -DVORN_INPUT_WERROR=ON -DVORN_INPUT_BUILD_TESTS=OFF -DVORN_INPUT_BUILD_TOOLS=OFF &&
        cmake --build "$folder" &&
        cmake -DVORN_INPUT_BUILD_TESTS=ON "$folder"
} >"$folder/log" 2>&1; then
    cat "$folder/log"
    exit 1
fi
# The C library's name for ioctl() with a 64-bit time_t shows that the flags took effect. Read to the
# end, lest nm fails for want of a reader.
if ! nm -D "$folder/src/lib/libvorn_input.so" | grep ' U __ioctl_time64' >/dev/null; then
    echo "FAILED: time_t still has 32 bits"
    exit 1
fi
for target in "${targets[@]}"; do
    cmake --build "$folder" --target "$target" 2>&1 | tail -n 60
done
