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
    zeros=$(($1 * 2 - ${#2}))
    [ "$zeros" -eq 0 ] || printf "%0${zeros}d" 0
}

# answers CALL HEX SIZE…: the same bitmap for requests of each size.
answers() {
    call=$1 hex=$2
    shift 2
    for size in "$@"; do
        echo "$call $size $(padded "$size" "$hex")"
    done
}

name_hex=$(printf '%s' "$name" | od -An -v -tx1 | tr -d ' \n')
types_hex=$(printf '%02x' "$types")
keys_hex=$(printf '%s' "$keys${keys:+
}" | bitmap 96)
switches_hex=$(printf '%s' "$switches${switches:+
}" | bitmap 3)
# A request is answered only if a line has its exact size. The player asks for the name with 255
# bytes when it lists the nodes, and with 256 when it opens one; for the event types with 31, and
# for the keys and switches that are down with 4. "vorn-input devices" also asks whatever libevdev
# does, whose bitmaps are of words of 8 bytes, or of 4 on a 32-bit machine.
echo "EVIOCGVERSION 0 01000100"
echo "EVIOCGID 0 $(printf '%02x' "$bus")00010001000001"
echo "EVIOCGNAME(0) $((${#name} + 1)) $(padded 255 "$name_hex")"
echo "EVIOCGNAME(0) $((${#name} + 1)) $(padded 256 "$name_hex")"
answers 'EVIOCGPROP(0)' 00 4 8
answers 'EVIOCGBIT(0)' "$types_hex" 4 8
echo "EVIOCGBIT(0) 8 $(padded 31 "$types_hex")"
answers 'EVIOCGBIT(1)' "$keys_hex" 96
answers 'EVIOCGBIT(5)' "$switches_hex" 4 8
# Types that the device does not have: relative and absolute axes, others, lights, sounds, forces.
for type in 2 3 4 17 18; do
    answers "EVIOCGBIT($type)" 00 4 8
done
answers 'EVIOCGBIT(21)' 00 16
answers 'EVIOCGKEY(0)' 00 4 96
for state in EVIOCGSW EVIOCGLED; do
    answers "$state(0)" 00 4 8
done
