#!/bin/sh
# Runs a program where /dev/input holds the recorded devices, and plays the session on them.
# usage: replay.sh PROGRAM [ARGUMENT...]
set -eu
if [ $# -eq 0 ]; then
    echo 'usage: replay.sh PROGRAM [ARGUMENT...]' >&2
    exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# Ctrl-C is for the program, whose exit status counts. Without a trap some shells would end with 130.
trap : INT

# Records are stamped with the time at which they will be delivered, as a kernel would stamp them:
# how long a key is held is measured from its stamp. So nothing slow may come between this and the
# start of the program.
#
# umockdev reads microseconds with a leading zero as octal, and loses the first byte of a record if
# that is a space, as with seconds that end in 0x20. Such a stamp is written as an earlier second
# with a million microseconds more, which is the same moment.
now=$(date +%s.%6N)
set -- -- "$@"
for events in "$here"/event*.evemu; do
    [ -f "$events" ] || continue
    node=$(basename "$events" .evemu)
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
        }' "$events" >"$folder/$node.evemu"
    set -- -i "/dev/input/$node=$here/$node.ioctl" -e "/dev/input/$node=$folder/$node.evemu" "$@"
done
# Ctrl-C reaches the program as well, which ends as it likes; its exit status is this script's.
trap : INT
umockdev-run -d "$here/session.umockdev" "$@"
