#!/bin/sh
# Writes the ioctl file of a made-up evdev device: what the node answers when it is asked for its
# identity, its name, its event types, and the keys and switches that are down.
set -eu

usage='usage: make-ioctl.sh NAME BUS TYPE…

  NAME  the kernel name, e.g. front-panel
  BUS   the Linux bus type in decimal: 25 host, 24 I2C, 6 virtual …
  TYPE  the event types: key, switch

Example: make-ioctl.sh front-panel 25 key >front-panel.ioctl'

if [ "${1:-}" = --help ]; then
    echo "$usage"
    exit 0
fi
if [ $# -lt 3 ]; then
    echo "$usage" >&2
    exit 2
fi
name=$1
bus=$2
shift 2

types=1 # EV_SYN, which every device has
for type in "$@"; do
    case $type in
    key) types=$((types | 1 << 1)) ;;
    switch) types=$((types | 1 << 5)) ;;
    *)
        echo "make-ioctl.sh: unknown event type '$type'" >&2
        exit 2
        ;;
    esac
done

# padded BYTES HEX: fills up with zeros to so many bytes.
padded() {
    printf '%s' "$2"
    printf "%0$(($1 * 2 - ${#2}))d" 0
}

name_hex=$(printf '%s' "$name" | od -An -v -tx1 | tr -d ' \n')
# An answer is found by the exact size that is asked for. The name is asked for with 255 bytes when
# the nodes are listed, and with 256 when one is opened.
echo "EVIOCGID 0 $(printf '%02x' "$bus")00010001000001"
echo "EVIOCGNAME(0) $((${#name} + 1)) $(padded 255 "$name_hex")"
echo "EVIOCGNAME(0) $((${#name} + 1)) $(padded 256 "$name_hex")"
echo "EVIOCGBIT(0) 8 $(padded 31 "$(printf '%02x' "$types")")"
echo "EVIOCGKEY(0) 4 00000000"
echo "EVIOCGSW(0) 4 00000000"
