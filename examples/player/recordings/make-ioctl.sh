#!/bin/sh
# Writes the ioctl file of a synthetic evdev device: how the node answers queries for its identity,
# name, event types, keys and switches, and for which of these are down or on.
set -eu

usage='usage: make-ioctl.sh NAME BUS TYPE…

  NAME  the kernel name, e.g. front-panel
  BUS   the Linux bus type in decimal: 25 host, 24 I2C, 6 virtual …
  TYPE  an event type, key or switch: the device has those keys or switches that occur in
        NAME.evemu, in the folder of this script, or those listed by hexadecimal code: key=73,166

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
events=$(dirname "$0")/$name.evemu

# codes TYPE ARGUMENT: prints the codes of an event type, in hexadecimal, one per line.
codes() {
    case $2 in
    *=*) echo "${2#*=}" | tr , '\n' ;;
    *) if [ -f "$events" ]; then
        awk -v type="$1" '$1 == "E:" && $3 == type { print $4 }' "$events"
    fi ;;
    esac
}

# bitmap BYTES: prints a bitmap of the codes on stdin; code 0 is the lowest bit of the first byte.
bitmap() {
    while read -r code; do
        echo "$((0x$code))"
    done | awk -v bytes="$1" '
        $1 < 8 * bytes { set[$1] = 1 }
        END {
            for (i = 0; i < bytes; ++i) {
                byte = 0
                for (bit = 7; bit >= 0; --bit)
                    byte = 2 * byte + ((8 * i + bit) in set)
                printf "%02x", byte
            }
        }'
}

types=1 # EV_SYN, which every device has
keys='' switches=''
for type in "$@"; do
    case $type in
    key | key=*)
        types=$((types | 1 << 1))
        keys=$(codes 0001 "$type")
        ;;
    switch | switch=*)
        types=$((types | 1 << 5))
        switches=$(codes 0005 "$type")
        ;;
    *)
        echo "make-ioctl.sh: unknown event type '$type'" >&2
        exit 2
        ;;
    esac
done

# padded BYTES HEX: pads HEX with zeros to this many bytes.
padded() {
    printf '%s' "$2"
    printf "%0$(($1 * 2 - ${#2}))d" 0
}

name_hex=$(printf '%s' "$name" | od -An -v -tx1 | tr -d ' \n')
# umockdev finds an answer by the exact buffer size of the query. The player uses 255 bytes for the
# name when it lists the nodes and 256 when it opens one, and 4 for the state of keys and switches.
# "vorn-input devices" uses 96 for the state of keys and 3 for that of switches.
echo "EVIOCGID 0 $(printf '%02x' "$bus")00010001000001"
echo "EVIOCGNAME(0) $((${#name} + 1)) $(padded 255 "$name_hex")"
echo "EVIOCGNAME(0) $((${#name} + 1)) $(padded 256 "$name_hex")"
echo "EVIOCGPROP(0) 8 $(padded 8 00)"
echo "EVIOCGBIT(0) 8 $(padded 31 "$(printf '%02x' "$types")")"
echo "EVIOCGBIT(1) 96 $(printf '%s' "$keys${keys:+
}" | bitmap 96)"
echo "EVIOCGBIT(5) 3 $(printf '%s' "$switches${switches:+
}" | bitmap 3)"
echo "EVIOCGKEY(0) 4 $(padded 4 00)"
echo "EVIOCGKEY(0) 96 $(padded 96 00)"
echo "EVIOCGSW(0) 3 $(padded 3 00)"
echo "EVIOCGSW(0) 4 $(padded 4 00)"
