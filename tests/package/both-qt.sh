#!/usr/bin/env bash
# Usage: both-qt.sh SOURCE BUILD_DIR CONSUMER CXX
#
# Installs the library built with Qt 5, and into the same prefix BUILD_DIR, which is built with Qt 6.
# Neither replaces a file of the other by a different one, and products of both Qt find theirs.
set -euo pipefail

source=$1 build=$2 consumer=$3 cxx=$4
# shellcheck source=tests/package/strangers.sh
. "$(dirname "${BASH_SOURCE[0]}")/strangers.sh"

# Of the Qt 5 build only the library itself: the rest takes long to build.
install_library "$scratch" -DVORN_INPUT_QT=5 -DCMAKE_CXX_COMPILER="$cxx" \
    -DVORN_INPUT_BUILD_SIM=OFF -DVORN_INPUT_BUILD_PROFILE=OFF
prefix=$scratch/prefix
sums() { (cd "$1" && find . -type f -exec sha256sum {} + | sed 's| \./| |'); }
sums "$prefix" >"$scratch/five"
quietly cmake --install "$build" --prefix "$prefix"
(cd "$prefix" && sha256sum --check --quiet "$scratch/five") >"$scratch/log" 2>&1 ||
    fail "the installation for Qt 6 changes files of that for Qt 5"

# What is left has a name of its own, or is what a Qt 5 build of everything would install: copied from
# the sources, or made when it is configured.
quietly cmake -S "$source" -B "$scratch/all" -G Ninja -DVORN_INPUT_QT=5 -DCMAKE_CXX_COMPILER="$cxx" \
    -DVORN_INPUT_BUILD_TESTS=OFF -DVORN_INPUT_BUILD_EXAMPLES=OFF
[ ! -e "$build/vorn-input.1" ] || quietly cmake --build "$scratch/all" --target vorn_input_manual
for folder in "$source"/{src,share,packaging,examples,tests,docs} "$scratch/all"; do
    sums "$folder"
done | cut -d' ' -f1 | sort -u >"$scratch/same"
sums "$prefix" >"$scratch/both"
count=0
while read -r sum file; do
    case $file in *-qt6*) continue ;; esac
    grep -q -F -x "$sum  $file" "$scratch/five" || grep -q -F -x "$sum" "$scratch/same" ||
        fail "a Qt 5 build may have another $file"
    count=$((count + 1))
done <"$scratch/both"
[ "$count" -gt 10 ] || fail "expected the headers, which both have"

for package in vorn_input vorn_input-qt6; do
    build_with_cmake "$consumer" "$prefix" "$cxx" -DVORN_PACKAGE="$package"
    build_with_pkg_config "$consumer/main.cpp" "$prefix" "$cxx" "$package" --
    for program in "$scratch/with-cmake/consumer" "$scratch/with-pkg-config"; do
        quietly "$program"
        ldd "$program" >"$scratch/log"
        [[ $package == *-qt6 ]] && other=libQt5 || other=libQt6
        ! grep -q "$other\|not found" "$scratch/log" || fail "$package: expected no $other"
        grep -q "lib$package\.so\.1 => $prefix/" "$scratch/log" || fail "expected lib$package"
    done
done
echo PASSED
