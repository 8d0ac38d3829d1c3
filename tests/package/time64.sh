#!/usr/bin/env bash
# Compiles everything but the tests for a 32-bit system with 64-bit time_t, without warnings.
# usage: time64.sh SOURCE_FOLDER TOOLCHAIN_FILE
set -euo pipefail

source=$1
toolchain=$2

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

if ! {
    cmake -S "$source" -B "$folder" -G Ninja --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS="-D_TIME_BITS=64 -D_FILE_OFFSET_BITS=64" \
        -DVORN_INPUT_WERROR=ON -DVORN_INPUT_BUILD_TESTS=OFF -DVORN_INPUT_BUILD_TOOLS=OFF &&
        cmake --build "$folder"
} >"$folder/log" 2>&1; then
    cat "$folder/log"
    exit 1
fi
# The C library's name for ioctl() with a 64-bit time_t shows that the flags took effect.
if ! nm -D "$folder/src/lib/libvorn_input.so" | grep -q ' U __ioctl_time64'; then
    echo "FAILED: time_t still has 32 bits"
    exit 1
fi
