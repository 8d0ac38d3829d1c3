#!/usr/bin/env bash
# Shows the input library at work: builds the example player and replays a recorded session.
set -euo pipefail

usage='usage: demo.sh [--live | --help]

Builds the example player, replays a recorded session of eleven seconds in real time (no input
device is needed), and prints each event as it happens, with an explanation. Exits with status 0 if
all events arrived as expected.

--live   Listens to the input devices of this machine until Ctrl-C. This switches the kernel'\''s
         auto-repeat for these devices off until they are plugged in again; for a console keyboard,
         "kbdrate" switches it back on.
--help   Prints this text.

Missing packages are installed, with sudo unless run as root.'

# fail STATUS MESSAGE: exits with one line on stderr.
fail() {
    echo "demo.sh: $2" >&2
    exit "$1"
}

# Fails unless at least one input device is readable.
require_live_devices() {
    [ -d /dev/input ] || fail 1 "no /dev/input here, so there is no input device to listen to; \
use a machine with one, or omit --live"
    local node
    for node in /dev/input/event[0-9]; do
        [ -r "$node" ] && return
    done
    fail 1 "none of /dev/input/event0 to event9 is readable; plug in a device, run this as root or \
as a member of the group 'input', or omit --live"
}

# quietly COMMAND…: shows the output only if it fails.
quietly() {
    if ! "$@" >"$folder/log" 2>&1; then
        cat "$folder/log" >&2
        fail 1 "failed: $*"
    fi
}

build_player() {
    echo "Building the player ..."
    # CMake looks for presets in the current directory.
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
'') [ $# -eq 0 ] || fail 2 "expected an option, not an empty string (see --help)" ;;
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
    # First, so that nobody waits for a pointless build.
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
    || fail 1 "the session differs from what was expected"
echo "All events arrived as expected."
