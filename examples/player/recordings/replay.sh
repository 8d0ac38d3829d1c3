#!/usr/bin/env bash
# Runs a program on the recorded devices, with the recorded session in real time.
set -euo pipefail

usage='usage: replay.sh [--still] PROGRAM [ARGUMENT…]

Runs PROGRAM where /dev/input holds the recorded devices, and plays the recorded session of about
eleven seconds on them. Ends with the status of PROGRAM, which must end by itself.

--still  The devices are there, but nothing is played on them.
--help   Prints this text.

Example: replay.sh build/dev/examples/player/player --duration 12'

still=no
case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
--still)
    still=yes
    shift
    ;;
esac
case ${1:-} in
'' | -*)
    echo "$usage" >&2
    exit 2
    ;;
esac

recordings=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# In the order of the nodes that player.umockdev describes: event0, event1 …
devices=(front-panel ir-receiver hostlink front-panel-jacks)

arguments=(-d "$recordings/player.umockdev")
for i in "${!devices[@]}"; do
    arguments+=(-i "/dev/input/event$i=$recordings/${devices[i]}.ioctl")
    # Without a record to play a node would have no end to read from, and would fail to open.
    if [ "$still" = yes ]; then
        echo 'E: 0.000000 0000 0000 0000' >"$folder/${devices[i]}.evemu"
    fi
    arguments+=(-e "/dev/input/event$i=$folder/${devices[i]}.evemu")
done
if [ "$still" = yes ]; then
    umockdev-run "${arguments[@]}" -- "$@"
    exit
fi

# The records are stamped with the time at which they will be delivered, as a kernel does: how long
# a key is held is measured from its stamp. So nothing slow may come between this and the start.
#
# umockdev reads microseconds with a leading zero as octal, and loses a space at the beginning of a
# record, which is what seconds that end in 0x20 look like. Both are written as an earlier second
# with a million microseconds more, the same moment.
now=$(date +%s.%6N)
for device in "${devices[@]}"; do
    awk -v second="${now%.*}" -v microsecond="${now#*.}" '
        /^E:/ {
            split($2, offset, ".")
            s = second + offset[1]
            us = microsecond + offset[2]
            if (us >= 1000000) {
                ++s
                us -= 1000000
            }
            while (us < 100000 || s % 256 == 32) {
                --s
                us += 1000000
            }
            $2 = sprintf("%d.%d", s, us)
            print
        }' "$recordings/$device.evemu" >"$folder/$device.evemu"
done
umockdev-run "${arguments[@]}" -- "$@"
