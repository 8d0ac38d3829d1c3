#!/usr/bin/env bash
# Describes the hardware of the ARM guest.
set -euo pipefail

usage='usage: make-device-tree.sh [--help] FILE

Writes FILE, the device tree of the board that QEMU emulates, with a set of GPIO keys in addition
to the power button. Its name has 255 characters, the longest that can be read; nobody presses its
key.'

case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
'' | -*)
    echo "$usage" >&2
    exit 2
    ;;
esac
file=$1

qemu-system-arm -M "virt,highmem=off,dumpdtb=$file.new" -cpu cortex-a7 -smp 1 -m 256 -nodefaults \
    -display none 2>/dev/null
controller=$(fdtget -t u "$file.new" /pl061@9030000 phandle)
name=$(printf 'n%.0s' {1..255})
keys=/gpio-keys-named
fdtput -p -t s "$file.new" "$keys" compatible gpio-keys
fdtput -t s "$file.new" "$keys" label "$name"
fdtput -p -t u "$file.new" "$keys/ok" linux,code 352
fdtput -t u "$file.new" "$keys/ok" gpios "$controller" 4 0
mv "$file.new" "$file"
