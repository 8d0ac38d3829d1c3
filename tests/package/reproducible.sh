#!/usr/bin/env bash
# Usage: reproducible.sh SOURCE_DIR LIBVORN_API CXX
#
# Builds the release library from two copies of the sources in different folders and compares the
# results byte for byte; then builds it again with an existing core library instead of the stand-in.
set -euo pipefail

source=$1 api=$2 cxx=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

build() { # FOLDER CMAKE-OPTION…
    local folder=$1
    shift
    mkdir -p "$scratch/$folder"
    cp -R "$source/CMakeLists.txt" "$source/cmake" "$source/abi" "$source/docs" \
        "$source/src" "$scratch/$folder"
    {
        cmake -S "$scratch/$folder" -B "$scratch/$folder/build" -G Ninja \
            -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER="$cxx" \
            -DVORN_INPUT_BUILD_PROFILE=OFF -DVORN_INPUT_BUILD_SIM=OFF \
            -DVORN_INPUT_BUILD_TESTS=OFF -DVORN_INPUT_BUILD_TOOLS=OFF \
            -DVORN_INPUT_BUILD_EXAMPLES=OFF "$@" &&
            cmake --build "$scratch/$folder/build" &&
            cmake --install "$scratch/$folder/build" --prefix "$scratch/$folder/prefix" --strip
    } >"$scratch/log" 2>&1 || { cat "$scratch/log" >&2; exit 1; }
    find "$scratch/$folder/prefix" -name 'libvorn_input.so.*.*.*'
}

first=$(build here)
second=$(build a/much/longer/folder)
cmp "$first" "$second" || { echo "the library depends on where it is built"; exit 1; }
if grep -qF "$scratch" "$first"; then
    echo "the library contains the path of its build folder"
    exit 1
fi
if ! grep -qF "src/lib/input/Input.cpp" "$first"; then
    echo "the library's log locations are not relative to the project"
    exit 1
fi

third=$(build maker -DVORN_INPUT_API_LIBRARY="$api")
if find "$scratch/maker/prefix" -name 'libvorn_api*' | grep -q .; then
    echo "the stand-in is built and installed although a core library was given"
    exit 1
fi
needed=$(readelf -d "$third")
if ! grep -qF libvorn_api.so.1 <<<"$needed"; then
    echo "the library does not link the given core library"
    exit 1
fi
