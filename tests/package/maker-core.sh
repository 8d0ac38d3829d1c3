#!/usr/bin/env bash
# Usage: maker-core.sh SOURCE_DIR CONSUMER LIBVORN_API CXX
#
# Builds the library against an existing core library, as products with the maker's do: with the given
# compiler, in a newer C++, and with a log4cplus that only pkg-config knows. What it exports is the
# same as ever, and products link it with CMake and with pkg-config.
set -euo pipefail

source=$1 consumer=$2 api=$3 cxx=$4
# shellcheck source=tests/package/strangers.sh
. "$(dirname "${BASH_SOURCE[0]}")/strangers.sh"

maker=$scratch/maker/lib
mkdir -p "$maker"
cp -L "$api" "$maker/libvorn_api.so.1"
ln -s libvorn_api.so.1 "$maker/libvorn_api.so"
install_library "$scratch" -DVORN_INPUT_API_LIBRARY="$maker/libvorn_api.so" \
    -DVORN_INPUT_BUILD_PROFILE=OFF -DVORN_INPUT_BUILD_SIM=OFF \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_STANDARD=20 -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
    "-DCMAKE_IGNORE_PATH=$(find /lib/ /usr/lib/ -name log4cplusConfig.cmake -printf '%h;')"
prefix=$scratch/prefix
grep -q -- '-std=c++20' "$scratch/build/compile_commands.json" || fail "not built as C++20"
grep -q 'VORN_LOG4CPLUS_FOUND:INTERNAL=1' "$scratch/build/CMakeCache.txt" ||
    fail "log4cplus was not found by pkg-config"
library=$(find "$prefix" -name 'libvorn_input.so.*.*.*')
exports_what_is_listed "$source/abi/vorn_input.map" "$library"
readelf -d "$library" | grep -q 'NEEDED.*libvorn_api.so.1' || fail "it does not need the core library"

build_with_cmake "$consumer" "$prefix" "$cxx"
quietly "$scratch/with-cmake/consumer"
build_with_pkg_config "$consumer/main.cpp" "$prefix" "$cxx" vorn_input -- "-Wl,-rpath,$maker"
quietly "$scratch/with-pkg-config"

# A core library that has moved is named, and can be told.
mv "$scratch/maker" "$scratch/moved"
! cmake -S "$consumer" -B "$scratch/refused" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    >"$scratch/log" 2>&1 || fail "configured without the core library"
tr -s ' \n' ' ' <"$scratch/log" |
    grep -q "The core library is not at $maker/libvorn_api.so; set VORN_INPUT_API_LIBRARY" ||
    fail "expected to be told what is missing"
build_with_cmake "$consumer" "$prefix" "$cxx" \
    -DVORN_INPUT_API_LIBRARY="$scratch/moved/lib/libvorn_api.so"
quietly "$scratch/with-cmake/consumer"
echo PASSED
