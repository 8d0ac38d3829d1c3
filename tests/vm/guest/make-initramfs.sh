#!/usr/bin/env bash
# Builds the file system that a guest boots into.
set -euo pipefail

usage='usage: make-initramfs.sh [--help] KERNEL_FOLDER BUSYBOX FILE

Writes FILE, an initramfs with BUSYBOX, statically linked and of the guest'\''s architecture, the
modules of KERNEL_FOLDER (made by fetch-kernel.sh), and the script "init" of this folder.'

case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
esac
if [ $# -ne 3 ]; then
    echo "$usage" >&2
    exit 2
fi
kernel=$1 busybox=$2 file=$3

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root/bin" "$root/dev" "$root/modules"
cp "$busybox" "$root/bin/busybox"
cp "$kernel/modules" "$kernel"/*.ko "$root/modules"
cp "$(dirname "${BASH_SOURCE[0]}")/init" "$root/init"
chmod 755 "$root" "$root/init" "$root/bin/busybox"
# Not compressed: under software emulation, unpacking takes longer than reading.
(cd "$root" && find . -print0 | LC_ALL=C sort -z |
    cpio --quiet --null --create --format=newc --owner=0:0 --reproducible) >"$file.new"
mv "$file.new" "$file"
