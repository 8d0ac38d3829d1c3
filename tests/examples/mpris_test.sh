#!/usr/bin/env bash
# The bridge makes a real media player play, louder, and the next track, and notices players that come
# and go. All of it in a D-Bus session of its own.
# usage: mpris_test.sh SOURCE PREFIX CXX QT
if [ -z "${VORN_EXAMPLE_SESSION:-}" ] && command -v dbus-run-session >/dev/null; then
    VORN_EXAMPLE_SESSION=yes exec dbus-run-session -- "$0" "$@"
fi
# shellcheck source=tests/examples/example.sh
. "$(dirname "${BASH_SOURCE[0]}")/example.sh"
plugin=/etc/mpv/scripts/mpris.so

[ -n "${VORN_EXAMPLE_SESSION:-}" ] || skip "no dbus-run-session here (Debian package dbus-daemon)"
command -v dbus-send >/dev/null || skip "no dbus-send here (Debian package dbus-bin)"
command -v mpv >/dev/null || skip "no mpv here (Debian package mpv)"
[ -e "$plugin" ] || skip "no MPRIS plugin of mpv here (Debian package mpv-mpris)"
build_example mpris
run true

player=() driver=()
trap 'kill "${player[@]}" "${driver[@]}" 2>/dev/null || true; wait; rm -rf "$folder"' EXIT

# property NAME: of the player, as text.
property() {
    dbus-send --session --print-reply=literal --dest=org.mpris.MediaPlayer2.mpv \
        /org/mpris/MediaPlayer2 org.freedesktop.DBus.Properties.Get \
        string:org.mpris.MediaPlayer2.Player "string:$1" 2>&1 | tr -s ' \n' ' '
}

# wait_until COMMAND…: for half a minute.
wait_until() {
    local end=$((SECONDS + 30))
    until "$@"; do
        if [ "$SECONDS" -ge "$end" ]; then
            failed "still not: $*; $(property PlaybackStatus), $(property Volume), $(property Metadata)"
            return
        fi
        sleep 0.02
    done
}

is() { [[ $(property "$1") =~ $2 ]]; }

# lines COUNT TEXT: the bridge has printed it so often.
lines() { [ "$(grep -c -F "mpris: $2" printed)" -eq "$1" ]; }

start_player() {
    mpv --no-config --no-terminal --ao=null --vo=null --idle --pause --volume=50 \
        --script="$plugin" "$folder"/track*.wav >player.log 2>&1 &
    player=($!)
}

stop_player() {
    kill "${player[0]}"
    wait "${player[0]}" || true
    player=()
}

python3 - "$folder" <<'END'
import sys, wave
for number in (1, 2, 3):
    with wave.open(f"{sys.argv[1]}/track{number}.wav", "wb") as track:
        track.setparams((1, 1, 8000, 0, "NONE", ""))
        track.writeframes(b"\x80" * 8000 * 120)
END

description='the bridge with a player'
start_player
wait_until is PlaybackStatus Paused
wait_until is Metadata track1
wait_until is Volume 'double 0\.5 '
run "$workbench" drive keys.scenario -- build/mpris
expect_status 0
expect_printed 'controls org.mpris.MediaPlayer2.mpv'
wait_until is PlaybackStatus Playing
wait_until is Metadata track2
# A press alone makes 0.55 of it.
wait_until is Volume 'double 0\.([6-9]|5[6-9])'
stop_player

description='the bridge without a player'
run "$workbench" drive keys.scenario -- build/mpris
expect_status 0
expect_printed 'mpris: no media player on the bus'

description='the bridge while players come and go'
echo 'wait 10min' >waiting.scenario
: >printed
"$workbench" drive waiting.scenario -- build/mpris >out 2>printed &
driver=($!)
wait_until lines 1 'no media player on the bus; waiting for one'
start_player
wait_until lines 1 'controls org.mpris.MediaPlayer2.mpv'
stop_player
wait_until lines 2 'no media player on the bus; waiting for one'
start_player
wait_until lines 2 'controls org.mpris.MediaPlayer2.mpv'
kill -INT "${driver[0]}"
wait "${driver[0]}" || true
driver=()
! grep -q -E 'failed|log4cplus:' printed || failed "expected no errors: $(cat printed)"

finish
