#!/usr/bin/env bash
# Usage: install-and-use.sh BUILD_DIR CONSUMER_SOURCE CXX [SANITIZERS]
#
# Installs the build into a scratch prefix, builds a product against it with find_package and again
# with pkg-config, and runs both.
set -euo pipefail

build=$1 consumer=$2 cxx=$3 sanitize=${4:-}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
flags=()
[ -z "$sanitize" ] || flags=("-fsanitize=$sanitize")

cmake --install "$build" --prefix "$prefix" >/dev/null
# It has a suffix in builds with another Qt than Qt 5.
package=$(basename "$(find "$prefix" -name 'vorn_input*Config.cmake')" Config.cmake)
tool=vorn-input${package#vorn_input}
for header in input/Input.h input/LinuxInputListener.h input/BasicInputHandler.h \
    input/KeyProcessing.h core/vorn.h core/Profiler.h core/dbglog.h; do
    [ -f "$prefix/include/vorn/$header" ] || { echo "not installed: vorn/$header"; exit 1; }
done

cmake -S "$consumer" -B "$scratch/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="${flags[*]:-}" -DVORN_PACKAGE="$package" \
    >"$scratch/log" 2>&1 ||
    { cat "$scratch/log"; exit 1; }
cmake --build "$scratch/cmake" >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
"$scratch/cmake/consumer"

if [ -x "$build/src/tools/$tool" ]; then
    for file in "bin/$tool" share/vorn-input/profile.schema.json \
        share/bash-completion/completions/vorn-input share/zsh/site-functions/_vorn-input; do
        [ -f "$prefix/$file" ] || { echo "not installed: $file"; exit 1; }
    done
    # It must find the libraries installed with it.
    "$prefix/bin/$tool" --version
fi

pc=$(dirname "$(find "$prefix" -name "$package.pc")")
read -ra options < <(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs "$package")
"$cxx" -std=c++17 -fPIC "${flags[@]}" "$consumer/main.cpp" "${options[@]}" -o "$scratch/consumer"
LD_LIBRARY_PATH=$(dirname "$pc") "$scratch/consumer"
[ "$(PKG_CONFIG_PATH=$pc pkg-config --modversion "$package")" = \
    "$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")/\1/p' "$prefix"/lib*/cmake/"$package"/*Version.cmake \
        "$prefix"/lib/*/cmake/"$package"/*Version.cmake 2>/dev/null | head -n 1)" ] ||
    { echo "pkg-config and CMake disagree on the version"; exit 1; }
