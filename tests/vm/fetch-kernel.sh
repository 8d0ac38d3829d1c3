#!/usr/bin/env bash
# Fetches the kernel of a guest, with the modules that its devices need.
set -euo pipefail

# shellcheck disable=SC2016
usage='usage: fetch-kernel.sh [--help] ARCHITECTURE

Fetches Debian 12'\''s kernel for ARCHITECTURE (x86_64 or armhf), unless that was done before, and
prints the folder that holds

  kernel     the image to boot
  release    its version, as "uname -r" prints it
  modules    the names of the loadable modules that the tests need, in the order of loading
  *.ko       these modules

Nothing is installed. The folder is kept in $VORN_INPUT_CACHE, or else in ~/.cache/vorn_input, for
all checkouts; remove it to have the newest kernel fetched.'

fail() {
    echo "fetch-kernel.sh: $*" >&2
    exit "${status:-1}"
}

case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
x86_64 | armhf) architecture=$1 ;;
*) status=2 fail "expected x86_64 or armhf (see --help)" ;;
esac

# shellcheck source=scripts/lib/debian-packages.sh
. "$(dirname "${BASH_SOURCE[0]}")/../../scripts/lib/debian-packages.sh"

# Those that are not built in are loaded when the guest starts, in this order.
modules=(evdev uinput hid uhid usbhid hid-generic xhci-pci virtio_pci virtio_console 9p 9pnet_virtio)
case $architecture in
x86_64)
    debian=amd64
    package=linux-image-amd64
    modules+=(button gpio_keys)
    ;;
armhf)
    debian=armhf
    package=linux-image-armmp
    modules+=(virtio_mmio gpio_keys)
    ;;
esac

# The image that an x86-64 kernel unpacks itself from. Software emulation is slow at that.
unpack_kernel() {
    python3 - "$1" "$2" <<'PYTHON'
import lzma, sys
data = open(sys.argv[1], "rb").read()
start = data.index(b"\xfd7zXZ\x00")
open(sys.argv[2], "wb").write(lzma.LZMADecompressor().decompress(data[start:]))
PYTHON
}

# with_dependencies ROOT RELEASE MODULE…: the modules' files in the order of loading.
with_dependencies() {
    local root=$1 release=$2 module
    shift 2
    busybox depmod -b "$root" "$release" || return
    for module in "$@"; do
        module=${module//-/_}
        # "path/a.ko: path/b.ko path/c.ko": a needs b, and b needs c.
        awk -v name="$module" '{
            base = $1
            sub(/.*\//, "", base)
            sub(/\.ko.*/, "", base)
            gsub(/-/, "_", base)
            if (base != name)
                next
            for (i = NF; i > 1; --i)
                print $i
            sub(/:$/, "", $1)
            print $1
        }' "$root/lib/modules/$release/modules.dep"
    done | awk '!seen[$0]++'
}

fill() {
    local folder=$1 work log image release
    work=$(mktemp -d)
    log=$(mktemp)
    echo "Fetching the $architecture kernel ..." >&2
    if ! {
        open_packages "$work" "$debian" &&
            image=$(closure "$work" "$debian" "$package" | grep '^linux-image-[0-9]') &&
            unpack "$work" "$debian" "$work/root" "$image"
    } >"$log" 2>&1; then
        cat "$log" >&2
        fail "the kernel could not be fetched"
    fi
    rm -f "$log"
    release=${image#linux-image-}
    release=${release%-unsigned}
    if [ "$architecture" = x86_64 ]; then
        unpack_kernel "$work/root/boot/vmlinuz-$release" "$folder/kernel"
    else
        cp "$work/root/boot/vmlinuz-$release" "$folder/kernel"
    fi
    echo "$release" >"$folder/release"
    local module
    with_dependencies "$work/root" "$release" "${modules[@]}" | while read -r module; do
        cp "$work/root/lib/modules/$release/$module" "$folder"
        basename "$module"
    done >"$folder/modules"
    rm -rf "$work"
}

folder=$(cache_folder)/kernel-$architecture
make_cached "$folder" "$package ${modules[*]}" fill
echo "$folder"
