#!/usr/bin/env bash
# Usage: static.sh SOURCE_DIR CONSUMERS CXX [CXX]
#
# Builds the libraries as archives and links products with them, with CMake and with pkg-config, with
# the same compiler and with another one, and runs them.
set -euo pipefail

source=$1 consumers=$2 cxx=$3 other=${4:-$3}
# shellcheck source=tests/package/strangers.sh
. "$(dirname "${BASH_SOURCE[0]}")/strangers.sh"

# Little is optimised except for the library, which says itself how.
install_library "$scratch" -DBUILD_SHARED_LIBS=OFF -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_CXX_FLAGS_RELEASE=-O0
prefix=$scratch/prefix
shared=$(find "$prefix" -name '*.so*')
[ -z "$shared" ] || fail "not archives: $shared"

printf '[[device]]\n[device.handler.keys]\nKEY_MUTE = { command = "Mute", immediate = true }\n' \
    >"$scratch/panel.toml"
for compiler in "$cxx" "$other"; do
    build_with_cmake "$consumers/consumer" "$prefix" "$compiler"
    quietly "$scratch/with-cmake/consumer"
    build_with_pkg_config "$consumers/consumer/main.cpp" "$prefix" "$compiler" vorn_input --
    quietly "$scratch/with-pkg-config"
    build_with_cmake "$consumers/consumer-profile" "$prefix" "$compiler"
    quietly "$scratch/with-cmake/consumer-profile" "$scratch/panel.toml"
    build_with_pkg_config "$consumers/consumer-profile/main.cpp" "$prefix" "$compiler" \
        vorn_profile --
    quietly "$scratch/with-pkg-config" "$scratch/panel.toml"
done
build_with_cmake "$consumers/consumer-sim" "$prefix" "$cxx"
quietly "$scratch/with-cmake/consumer-sim"
echo PASSED
