#!/usr/bin/env bash
# Usage: components.sh BUILD_DIR CONSUMERS CXX
#
# A product's test is built against the simulator, with CMake and with pkg-config. Where a component of
# the installation is missing, whoever asks for it is told so, and the rest works.
set -euo pipefail

build=$1 consumers=$2 cxx=$3
# shellcheck source=tests/package/strangers.sh
. "$(dirname "${BASH_SOURCE[0]}")/strangers.sh"

prefix=$scratch/prefix
for component in runtime core development; do
    quietly cmake --install "$build" --prefix "$prefix" --component "$component"
done
build_with_cmake "$consumers/consumer" "$prefix" "$cxx"
quietly "$scratch/with-cmake/consumer"

# refused COMPONENT: by the name that a project asks for.
refused() {
    local project=$scratch/project
    mkdir -p "$project"
    printf '%s\n' 'cmake_minimum_required(VERSION 3.22)' 'project(product CXX)' \
        "find_package(vorn_input 1 REQUIRED COMPONENTS development $1)" >"$project/CMakeLists.txt"
    ! cmake -S "$project" -B "$scratch/refused" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$cxx" >"$scratch/log" 2>&1 || fail "found the component $1"
    tr -s ' \n' ' ' <"$scratch/log" |
        grep -q "There is no component '$1' here; there are runtime, development" ||
        fail "expected to be told that $1 is missing"
}
refused sim
refused tools
refused nonsense

quietly cmake --install "$build" --prefix "$prefix" --component sim
build_with_cmake "$consumers/consumer-sim" "$prefix" "$cxx"
quietly "$scratch/with-cmake/consumer-sim"
build_with_pkg_config "$consumers/consumer-sim/main.cpp" "$prefix" "$cxx" vorn_input vorn_sim --
quietly "$scratch/with-pkg-config"

# The workbench, as a program that a product's build may call.
quietly cmake --install "$build" --prefix "$prefix" --component tools
mkdir "$scratch/tool"
cat >"$scratch/tool/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.22)
project(tool CXX)
find_package(vorn_input 1 REQUIRED COMPONENTS tools)
add_custom_target(version COMMAND vorn::tool --version VERBATIM)
END
quietly cmake -S "$scratch/tool" -B "$scratch/tool/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$cxx"
quietly cmake --build "$scratch/tool/build" --target version
grep -q '^vorn-input [0-9]' "$scratch/log" || fail "expected the program's version"
echo PASSED
