#!/usr/bin/env bash
# Usage: subproject.sh SOURCE_DIR CONSUMERS CXX
#
# Takes the project into a larger one as a sub-directory: it adds two libraries to what is built,
# nothing to what is installed, and no setting. Headers are included as they are installed.
set -euo pipefail

source=$1 consumers=$2 cxx=$3
# shellcheck source=tests/package/strangers.sh
. "$(dirname "${BASH_SOURCE[0]}")/strangers.sh"

quietly cmake -S "$consumers/parent" -B "$scratch/build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" \
    -DVORN_INPUT_SOURCE="$source" -DCONSUMERS="$consumers" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
grep -q -- '-std=c++23\|-std=c++2b' "$scratch/build/compile_commands.json" ||
    fail "the parent's C++ standard is not respected"
quietly cmake --build "$scratch/build"
built=$(cd "$scratch/build/vorn_input" &&
    find . -name CMakeFiles -prune -o -name '*.so' -printf '%f\n' -o -name '*.a' -printf '%f\n' |
    sort | xargs)
[ "$built" = "libvorn_api.so libvorn_input.so" ] || fail "it adds to what is built: $built"
quietly "$scratch/build/consumer"
quietly cmake --install "$scratch/build" --prefix "$scratch/prefix"
installed=$(cd "$scratch/prefix" && find . -type f | sort | xargs)
[ "$installed" = ./bin/consumer ] || fail "it adds to what is installed: $installed"

# What is asked for is built.
quietly cmake --build "$scratch/build" --target consumer-sim
quietly "$scratch/build/consumer-sim"
echo PASSED
