#!/bin/sh
# Writes the ioctl file of a made-up evdev device: what the node answers when it is asked for its
# identity, its name, its event types, the keys and switches that it has, and which of them are
# down.
set -eu

usage='usage: make-ioctl.sh NAME BUS TYPE…

  NAME  the kernel name, e.g. front-panel
  BUS   the Linux bus type in decimal: 25 host, 24 I2C, 6 virtual …
  TYPE  the event types: key, switch; the device has the keys or switches that NAME.evemu, in the
        folder of this script, uses, or those of a list of hexadecimal codes: key=73,166

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

# codes TYPE ARGUMENT: the codes of an event type, in hexadecimal, one a line.
codes() {
    case $2 in
    *=*) echo "${2#*=}" | tr , '\n' ;;
    *) if [ -f "$events" ]; then
        awk -v type="$1" '$1 == "E:" && $3 == type { print $4 }' "$events"
    fi ;;
    esac
}

# bitmap BYTES: of the codes that come in; the lowest is the lowest bit of the first byte.
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

# padded BYTES HEX: fills up with zeros to so many bytes.
padded() {
    printf '%s' "$2"
    printf "%0$(($1 * 2 - ${#2}))d" 0
}

name_hex=$(printf '%s' "$name" | od -An -v -tx1 | tr -d ' \n')
# An answer is found by the exact size that is asked for. The player asks for the name with 255
# bytes when the nodes are listed, and with 256 when one is opened; for the keys and switches that
# are down it asks with 4. "vorn-input devices" asks with 96 for keys, and with 3 for switches.
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
