#!/usr/bin/env bash
# Shows the input library at work: builds the example player and plays a recorded session on it.
set -euo pipefail

usage='usage: demo.sh [--live | --help]

Without an option: builds the example player, plays a recorded session of eleven seconds on it in
real time (no input device is needed), and prints each event as it happens, with an explanation.
Ends with status 0 when all events came as expected.

--live   Listens to the input devices of this machine, until Ctrl-C. The kernel'\''s auto-repeat of
         these devices is switched off, and stays so until they are plugged in anew; "kbdrate"
         switches a console'\''s keyboard on again.
--help   Prints this text.

Missing packages are installed, with sudo unless it runs as root.'

# fail STATUS MESSAGE: ends with one line on stderr.
fail() {
    echo "demo.sh: $2" >&2
    exit "$1"
}

# Ends unless the player could read at least one input device.
require_live_devices() {
    [ -d /dev/input ] || fail 1 "no /dev/input here, so no input device to listen to; run it on \
a machine with one, or without --live"
    local node
    for node in /dev/input/event[0-9]; do
        [ -r "$node" ] && return
    done
    fail 1 "no readable node /dev/input/event0 to event9; plug a device in, or run it as root or \
as a member of the group 'input', or without --live"
}

# quietly COMMAND…: shows what it said only when it fails.
quietly() {
    if ! "$@" >"$folder/log" 2>&1; then
        cat "$folder/log" >&2
        fail 1 "failed: $*"
    fi
}

build_player() {
    echo "Building the player ..."
    # Presets are looked for in the current directory.
    cd "$root"
    quietly cmake --preset dev
    quietly cmake --build --preset dev --target player
}

list_live_devices() {
    local node name
    for node in /dev/input/event[0-9]; do
        if [ -r "$node" ]; then
            name=$(cat "/sys/class/input/${node##*/}/device/name" 2>/dev/null || echo unknown)
            echo "  $node  $name"
        fi
    done
}

live=no
[ $# -le 1 ] || fail 2 "expected at most one option, not $# (see --help)"
case ${1-} in
'') [ $# -eq 0 ] || fail 2 "expected an option, not an empty word (see --help)" ;;
--live) live=yes ;;
--help)
    echo "$usage"
    exit 0
    ;;
*) fail 2 "unknown option '$1' (see --help)" ;;
esac

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
recordings=$root/examples/player/recordings
player=$root/build/dev/examples/player/player
# shellcheck source=scripts/lib/packages.sh
. "$root/scripts/lib/packages.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

if [ "$live" = yes ]; then
    # First, so that nobody waits for a build in vain.
    require_live_devices
    "$root/scripts/install-packages.sh" "${build_packages[@]}"
    build_player
    echo "Listening until Ctrl-C to"
    list_live_devices
    rm -rf "$folder"
    exec "$player" --timestamps
fi

"$root/scripts/install-packages.sh" "${demo_packages[@]}"
build_player
echo "Playing the recorded session: seconds, event, explanation"
"$recordings/replay.sh" "$player" --duration 12 --timestamps 2>&1 \
    | "$recordings/annotate.sh" "$recordings/session.annotations" \
    || fail 1 "the session went otherwise than expected"
echo "All events came as expected."
