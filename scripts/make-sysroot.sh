#!/usr/bin/env bash
# Makes the sysroot of the armhf preset: Debian 12 for 32-bit ARM.
set -euo pipefail

# shellcheck disable=SC2016
usage='usage: make-sysroot.sh [--help]

Makes the sysroot of the "armhf" preset from Debian packages, unless it exists already, and prints
its folder. The packages are unpacked, not installed: no architecture is added to this machine. The
folder is kept in $VORN_INPUT_CACHE, by default ~/.cache/vorn_input, for all checkouts; remove it to
get the newest packages.

Installs the package mmdebstrap if it is missing, with sudo unless run as root.'

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

# What the programs need at run time, with all dependencies.
runtime_packages='evemu-tools libc6-dev libevdev2 liblog4cplus-2.0.5 libqt5core5a libqt5test5 zlib1g'
# What building them needs, without the graphics libraries that Qt's package depends on.
development_packages='busybox-static libcli11-dev libevdev-dev libgmock-dev libgtest-dev
    liblog4cplus-dev libtomlplusplus-dev qt5-qmake qtbase5-dev zlib1g-dev'

fill() {
    local sysroot=$1
    echo "Making the armhf sysroot, which takes a minute ..." >&2
    unpack armhf "$sysroot" "$runtime_packages" "$development_packages"

    # Absolute paths would lead out of the sysroot.
    # shellcheck disable=SC2016
    find "$sysroot/usr/lib/arm-linux-gnueabihf/cmake" -name '*Targets.cmake' \
        -exec sed -i -E 's#([";])(/usr/lib/)#\1${CMAKE_SYSROOT}\2#g' {} +
    local link
    while read -r link; do
        ln -sfn "$(realpath -m --relative-to "$(dirname "$link")" "$sysroot$(readlink "$link")")" \
            "$link"
    done < <(find "$sysroot" -type l -lname '/*')

    # Qt's CMake packages look for Qt's tools in the sysroot, but these must run on this machine.
    local tools=/usr/lib/qt5/bin
    rm -rf "$sysroot$tools" "$sysroot/usr/lib/arm-linux-gnueabihf/qt5/bin"
    mkdir -p "$sysroot/usr/lib/qt5" "$sysroot/usr/lib/arm-linux-gnueabihf/qt5/bin"
    ln -s "$tools" "$sysroot$tools"
    ln -s "$tools/qmake" "$sysroot/usr/lib/arm-linux-gnueabihf/qt5/bin/qmake"
}

sysroot=$(cache_folder)/armhf-sysroot
make_cached "$sysroot" "$runtime_packages $development_packages" fill
echo "$sysroot"
