#!/usr/bin/env bash
# Runs a program on the recorded devices and plays the recorded session in real time.
set -euo pipefail

usage='usage: replay.sh [--still] PROGRAM [ARGUMENT…]

Runs PROGRAM where /dev/input holds the recorded devices, and plays the recorded session of about
eleven seconds on them. PROGRAM must end by itself; its exit status is passed on.

--still  Provides the devices but plays nothing on them.
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

# The same files under the names that they have in a recording of the workbench, which brings a
# script that replays it.
script=$recordings/../../../src/tools/workbench/live/replay-recording.sh
if [ ! -f "$script" ]; then
    echo "replay.sh: works in the library's tree only; elsewhere, use the one that is installed in" \
        "share/vorn-input/examples/recording" >&2
    exit 1
fi
ln -s "$script" "$folder/replay.sh"
ln -s "$recordings/player.umockdev" "$folder/session.umockdev"
# In the order of the nodes that player.umockdev describes: event0, event1 …
devices=(front-panel ir-receiver hostlink front-panel-jacks)
for i in "${!devices[@]}"; do
    ln -s "$recordings/${devices[i]}.ioctl" "$folder/event$i.ioctl"
    if [ "$still" = yes ]; then
        # A node without records has no stream to read from, so opening it would fail.
        echo 'E: 0.000000 0000 0000 0000' >"$folder/event$i.evemu"
    else
        ln -s "$recordings/${devices[i]}.evemu" "$folder/event$i.evemu"
    fi
done
"$folder/replay.sh" "$@"
