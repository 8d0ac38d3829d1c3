#!/usr/bin/env bash
# Builds the Debian packages of the project.
set -euo pipefail

usage='usage: make-packages.sh [--arch armhf] [--check] FOLDER

Builds the Debian 12 packages of what is checked out into FOLDER, and checks them with lintian. Prints
the names of the packages. Needs no privileges, except to install packages that are missing, with sudo
unless run as root. The log is kept in build/packages.

--arch armhf   Cross-build for 32-bit ARM, with the sysroot of scripts/make-sysroot.sh, and try the
               program under emulation. Without it, build for this machine, with the source package.
--check        Also build and run the unit tests, which takes minutes.
--help         Print this text.'

fail() {
    echo "make-packages.sh: $2" >&2
    exit "$1"
}

arch='' check=no results=''
while [ $# -gt 0 ]; do
    case $1 in
    --help)
        echo "$usage"
        exit 0
        ;;
    --arch)
        [ "${2-}" = armhf ] || fail 2 "--arch takes armhf (see --help)"
        arch=$2
        shift
        ;;
    --check) check=yes ;;
    -*) fail 2 "unknown option '$1' (see --help)" ;;
    *)
        [ -z "$results" ] || fail 2 "expected one folder (see --help)"
        results=$1
        ;;
    esac
    shift
done
[ -n "$results" ] || fail 2 "expected a folder (see --help)"
[ "$arch$check" != armhfyes ] || fail 2 "the tests do not run for another processor (see --help)"

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/lib/packages.sh
. "$root/scripts/lib/packages.sh"
# shellcheck source=scripts/lib/debian-packages.sh
. "$root/scripts/lib/debian-packages.sh"
# shellcheck source=scripts/lib/package-database.sh
. "$root/scripts/lib/package-database.sh"

mkdir -p "$results" || fail 1 "cannot make the folder $results"
results=$(cd "$results" && pwd)
[ -w "$results" ] || fail 1 "cannot write into $results"
"$root/scripts/install-packages.sh" "${package_packages[@]}"
[ -z "$arch" ] || "$root/scripts/install-packages.sh" "${cross_package_packages[@]}"

work=$root/build/packages/${arch:-native}
log=$root/build/packages/${arch:-native}.log
mkdir -p "$work"
: >"$log"
# quietly COMMAND…: appends the output to the log, and shows its end only if the command fails.
quietly() {
    if ! "$@" >>"$log" 2>&1; then
        tail -n 60 "$log" >&2
        fail 1 "failed: $1, see $log"
    fi
}
progress() { [ ! -t 2 ] || echo "$1" >&2; }

changelog=$root/packaging/debian/changelog
package_version=$(dpkg-parsechangelog -l "$changelog" -S Version)
version=${package_version%-*}
grep -q "VERSION $version\$" "$root/CMakeLists.txt" ||
    fail 1 "packaging/debian/changelog has version $version, and CMakeLists.txt another one"
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l "$changelog" -S Timestamp)
export SOURCE_DATE_EPOCH

# What is in the checkout, with its changes, but nothing that was built in it.
sources() {
    if [ -e "$root/.git" ]; then
        git -C "$root" ls-files -z --cached --others --exclude-standard
    else
        (cd "$root" && find . -path ./build -prune -o -type f -print0)
    fi
}

# The same bytes from the same files, whoever packs them.
make_source() {
    local tree=$work/vorn-input-$version
    rm -rf "${work:?}"/*
    sources | tar -C "$root" --null --files-from=- --ignore-failed-read --sort=name --format=gnu \
        --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner --mode=u=rwX,go=rX \
        --transform="s#^\(\./\)\?#vorn-input-$version/#" -c |
        gzip -9n >"$work/vorn-input_$version.orig.tar.gz"
    tar -C "$work" -xzf "$work/vorn-input_$version.orig.tar.gz"
    cp -R "$tree/packaging/debian" "$tree/debian"
}

# try_emulated: runs the program of the packages here, with the libraries of the sysroot and the packages.
try_emulated() {
    local package unpacked=$work/unpacked
    for package in ./*.deb; do
        dpkg-deb -x "$package" "$unpacked"
    done
    qemu-arm -L "$sysroot" -E "LD_LIBRARY_PATH=$unpacked/usr/lib/arm-linux-gnueabihf" \
        "$unpacked/usr/bin/vorn-input" simulate "$unpacked"/usr/share/vorn-input/examples/*.scenario
}

options=()
if [ -n "$arch" ]; then
    sysroot=$("$root/scripts/make-sysroot.sh")
    progress "Looking up what packages for 32-bit ARM depend on ..."
    make_cached "$sysroot-packages" "$sysroot ${database_packages[*]}" \
        fill_package_database "$sysroot" "${database_packages[*]}"
    VORN_TOOLCHAIN=$root/cmake/armhf-toolchain.cmake
    VORN_SHLIBDEPS="-l$sysroot/usr/lib/arm-linux-gnueabihf:$sysroot/lib/arm-linux-gnueabihf \
        -- --admindir=$sysroot-packages"
    # Assertions of Qt's headers name these as they are installed.
    DEB_CXXFLAGS_APPEND="-ffile-prefix-map=$sysroot="
    export VORN_TOOLCHAIN VORN_SHLIBDEPS DEB_CXXFLAGS_APPEND
    # The build dependencies are in the sysroot, of which dpkg knows nothing.
    options=(--host-arch armhf --build=any --no-check-builddeps)
fi
if [ "$check" = no ]; then
    export DEB_BUILD_OPTIONS=nocheck DEB_BUILD_PROFILES=nocheck
fi
DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS-} parallel=$(nproc)"
# Found from here, since debhelper gives the build another home folder.
VORN_INPUT_CACHE=$(cache_folder)
export VORN_INPUT_CACHE
if [ -d /usr/lib/ccache ]; then
    PATH=/usr/lib/ccache:$PATH
    CCACHE_DIR=$(ccache --get-config cache_dir)
    export CCACHE_DIR
fi

make_source
cd "$work/vorn-input-$version"
progress "Building the packages, which takes minutes ..."
# No signature: whoever publishes the packages signs them.
quietly dpkg-buildpackage --no-sign "${options[@]}"
progress "Checking them ..."
# Nobody need be another user to look into packages.
quietly lintian --allow-root --no-cfg --fail-on error --tag-display-limit 0 ../*.changes
cd ..
[ -z "$arch" ] || quietly try_emulated
mv ./*.deb ./*.changes ./*.buildinfo "$results"
[ -n "$arch" ] || mv ./*.dsc ./*.orig.tar.gz ./*.debian.tar.xz "$results"
cd "$results"
printf '%s\n' ./*_"${package_version}_${arch:-$(dpkg --print-architecture)}".deb | sed 's#^\./##'
