#!/usr/bin/env bash
# Tries the project as somebody would who has only a bare Debian 12.
set -euo pipefail

usage='usage: try-in-bare-root.sh [--help] packages FOLDER | clone

Tries the project in a bare Debian 12 root file system, and prints what a newcomer would see.

packages FOLDER   Installs the packages of FOLDER, which scripts/make-packages.sh filled, with apt; runs
                  vorn-input on what is installed with it; builds products against the library with
                  CMake and pkg-config, and drives one; puts a core library of the maker in the place of
                  the stand-in; upgrades, removes and purges, which leaves nothing.
clone             Clones the last commit and runs the two commands of the README there, scripts/demo.sh
                  and scripts/test.sh --quick.

Needs root, for mounting and chroot; what it mounts and starts ends with it. The root file system and
downloaded packages are kept in the cache of scripts/make-sysroot.sh (~/.cache/vorn_input), the root
itself unchanged. The first run downloads 100 MB for it, and each kind 300 MB of packages. Installs
mmdebstrap if it is missing.'

fail() {
    echo "try-in-bare-root.sh: $2" >&2
    exit "$1"
}

case ${1-} in
--help)
    echo "$usage"
    exit 0
    ;;
packages)
    [ $# -eq 2 ] || fail 2 "expected a folder (see --help)"
    packages=$(cd "$2" 2>/dev/null && pwd) || fail 2 "there is no folder $2"
    compgen -G "$packages/libvorn-input1_*.deb" >/dev/null ||
        fail 2 "no packages in $packages; scripts/make-packages.sh makes them"
    ;;
clone)
    [ $# -eq 1 ] || fail 2 "expected nothing after clone (see --help)"
    packages=''
    ;;
*) fail 2 "expected 'packages FOLDER' or 'clone' (see --help)" ;;
esac
mode=$1
[ "$(id -u)" -eq 0 ] || fail 1 "needs root, for mounting and chroot; try sudo"

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/lib/debian-packages.sh
. "$project/scripts/lib/debian-packages.sh"
"$project/scripts/install-packages.sh" mmdebstrap

# fill FOLDER: what the installer of Debian calls the minimum, and what apt needs to get packages from
# where this machine gets them.
fill() {
    local log
    # shellcheck disable=SC2016 # for the inner shell
    if ! log=$(mmdebstrap --variant=minbase --mode=root --skip=update,cleanup/apt --setup-hook='
            export APT_CONFIG=$MMDEBSTRAP_APT_CONFIG
            echo "Dir::Etc \"/etc/apt\"; APT::Install-Recommends \"false\";" >>"$APT_CONFIG"
            apt-get update || { sleep 5 && apt-get update; } || echo "Some lists are missing."' \
        '' "$1" - </dev/null 2>&1); then
        echo "$log" >&2
        fail 1 "the bare root could not be made"
    fi
    cp -R /etc/apt/. "$1/etc/apt/"
    rm -rf "$1/etc/apt/apt.conf.d"/docker-*
    mkdir -p "$1/usr/share/keyrings" && cp -R /usr/share/keyrings/. "$1/usr/share/keyrings/"
    chroot "$1" useradd --create-home visitor
}

cache=$(cache_folder)
[ -t 2 ] && [ ! -e "$cache/bare-root" ] && echo "Making the bare root, which takes a minute ..." >&2
make_cached "$cache/bare-root" 'Debian 12 minbase, visitor' fill
# One for each, so that both can run at once.
archives=$cache/bare-root-$mode
mkdir -p "$archives/partial"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$project/scripts/lib/bare-root-$mode.sh" "$work/inside.sh"
if [ "$mode" = packages ]; then
    mkdir "$work/sources" "$work/packages"
    cp -R "$project/packaging" "$project/examples" "$work/sources"
    mkdir "$work/sources/tests" && cp -R "$project/tests/package" "$work/sources/tests"
    mv "$work/sources/packaging/debian" "$work/sources/debian"
    cp "$project/src/api/core/"* "$work/sources"
    find "$packages" -maxdepth 1 -name '*.deb' ! -name '*-dbgsym_*' -exec cp {} "$work/packages" \;
else
    git clone -q --no-local "$project" "$work/repository"
fi
chmod -R a+rX "$work"

# What is written goes into a folder of its own, over the root that stays as it is.
export LOWER=$cache/bare-root WORK=$work ARCHIVES=$archives
# shellcheck disable=SC2016 # for the inner shell
exec unshare --mount --pid --fork --kill-child --propagation private bash -euc '
    trap "umount -R -l $WORK/root; rm -rf $WORK" EXIT
    mkdir "$WORK/upper" "$WORK/over" "$WORK/root"
    mount -t overlay overlay \
        -o "lowerdir=$LOWER,upperdir=$WORK/upper,workdir=$WORK/over" "$WORK/root"
    root=$WORK/root
    mount -t proc proc "$root/proc"
    mount --rbind /sys "$root/sys"
    mount -t tmpfs tmpfs "$root/dev"
    for node in null zero full random urandom tty; do
        mknod -m 666 "$root/dev/$node" c \
            "$((0x$(stat -c %t "/dev/$node")))" "$((0x$(stat -c %T "/dev/$node")))"
    done
    ln -s /proc/self/fd "$root/dev/fd"
    mkdir "$root/dev/shm" "$root/dev/pts"
    mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
    mount -t devpts -o newinstance,ptmxmode=666,gid=5,mode=620 devpts "$root/dev/pts"
    ln -s pts/ptmx "$root/dev/ptmx"
    mount --bind "$ARCHIVES" "$root/var/cache/apt/archives"
    mkdir "$root/mnt/try"
    mount --bind "$WORK" "$root/mnt/try"
    cp /etc/resolv.conf "$root/etc/resolv.conf"
    env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        chroot "$root" bash /mnt/try/inside.sh </dev/null'
