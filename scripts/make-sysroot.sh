#!/usr/bin/env bash
# Makes the folder that the preset armhf compiles against: a Debian 12 for 32-bit ARM.
set -euo pipefail

# shellcheck disable=SC2016
usage='usage: make-sysroot.sh [--help]

Makes the sysroot of the preset "armhf" from Debian packages, unless it is there already, and prints
its folder. The packages are unpacked, not installed: no architecture is added to this machine. The
folder is kept in $VORN_INPUT_CACHE, or else in ~/.cache/vorn_input, for all checkouts; remove it to
have it made anew with the newest packages.'

case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
'') ;;
*)
    echo "make-sysroot.sh: unknown option '$1' (see --help)" >&2
    exit 2
    ;;
esac

# shellcheck source=scripts/lib/debian-packages.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib/debian-packages.sh"

# What the programs need when they run, with all that it depends on.
runtime_packages=(evemu-tools libc6-dev libevdev2 liblog4cplus-2.0.5 libqt5core5a libqt5test5)
# What is needed to build them, without the graphics libraries that it depends on.
development_packages=(busybox-static libcli11-dev libevdev-dev libgmock-dev libgtest-dev
    liblog4cplus-dev qt5-qmake qtbase5-dev)

fill() {
    local sysroot=$1 state log
    state=$(mktemp -d)
    log=$(mktemp)
    echo "Making the armhf sysroot, which takes a minute ..." >&2
    local packages=()
    if ! {
        open_packages "$state" armhf &&
            mapfile -t packages < <(closure "$state" armhf "${runtime_packages[@]}") &&
            [ "${#packages[@]}" -gt 0 ] &&
            unpack "$state" armhf "$sysroot" "${packages[@]}" "${development_packages[@]}"
    } >"$log" 2>&1; then
        cat "$log" >&2
        echo "make-sysroot.sh: the packages could not be fetched" >&2
        return 1
    fi
    rm -rf "$state" "$log"

    # What begins at the root would lead out of the sysroot.
    # shellcheck disable=SC2016
    find "$sysroot/usr/lib/arm-linux-gnueabihf/cmake" -name '*Targets.cmake' \
        -exec sed -i -E 's#([";])(/usr/lib/)#\1${CMAKE_SYSROOT}\2#g' {} +
    local link
    while read -r link; do
        ln -sfn "$(realpath -m --relative-to "$(dirname "$link")" "$sysroot$(readlink "$link")")" \
            "$link"
    done < <(find "$sysroot" -type l -lname '/*')

    # Qt's packages for CMake look for its tools in here. They have to run on this machine.
    local tools=/usr/lib/qt5/bin
    rm -rf "$sysroot$tools" "$sysroot/usr/lib/arm-linux-gnueabihf/qt5/bin"
    mkdir -p "$sysroot/usr/lib/qt5" "$sysroot/usr/lib/arm-linux-gnueabihf/qt5/bin"
    ln -s "$tools" "$sysroot$tools"
    ln -s "$tools/qmake" "$sysroot/usr/lib/arm-linux-gnueabihf/qt5/bin/qmake"
}

sysroot=$(cache_folder)/armhf-sysroot
make_cached "$sysroot" "${runtime_packages[*]} ${development_packages[*]}" fill
echo "$sysroot"
