#!/usr/bin/env bash
# Fetches a guest's kernel and the modules that its devices need.
set -euo pipefail

# shellcheck disable=SC2016
usage='usage: fetch-kernel.sh [--help] ARCHITECTURE

Fetches Debian 12'\''s kernel for ARCHITECTURE (x86_64 or armhf), unless it is cached, and prints
the folder, which holds

  kernel     the image to boot
  release    its version, as printed by "uname -r"
  modules    the names of the loadable modules that the tests need, in load order
  *.ko       the modules

The folder is kept in $VORN_INPUT_CACHE, by default ~/.cache/vorn_input, for all checkouts; remove
it to get the newest kernel. Installs the package mmdebstrap if it is missing, with sudo unless run
as root.'

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
. "$(dirname "${BASH_SOURCE[0]}")/../../../scripts/lib/debian-packages.sh"

# Loaded in this order when the guest starts, unless built in.
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

# unpack_kernel IMAGE FILE: unpacks an x86-64 kernel, which is slow at that under emulation.
unpack_kernel() {
    python3 - "$1" "$2" <<'PYTHON'
import lzma, sys
data = open(sys.argv[1], "rb").read()
start = data.index(b"\xfd7zXZ\x00")
open(sys.argv[2], "wb").write(lzma.LZMADecompressor().decompress(data[start:]))
PYTHON
}

# with_dependencies ROOT RELEASE MODULE…: prints the modules' files in load order.
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
    local folder=$1 root=$1/root release module
    echo "Fetching the $architecture kernel ..." >&2
    unpack "$debian" "$root" "$package"
    release=$(basename "$root"/lib/modules/*)
    if [ "$architecture" = x86_64 ]; then
        unpack_kernel "$root/boot/vmlinuz-$release" "$folder/kernel"
    else
        cp "$root/boot/vmlinuz-$release" "$folder/kernel"
    fi
    echo "$release" >"$folder/release"
    with_dependencies "$root" "$release" "${modules[@]}" | while read -r module; do
        cp "$root/lib/modules/$release/$module" "$folder"
        basename "$module"
    done >"$folder/modules"
    rm -rf "$root"
}

folder=$(cache_folder)/kernel-$architecture
make_cached "$folder" "$package ${modules[*]}" fill
echo "$folder"
