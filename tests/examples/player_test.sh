#!/usr/bin/env bash
# The player, with its own scenario and with the recorded session.
# usage: player_test.sh SOURCE PREFIX CXX QT
# shellcheck source=tests/examples/example.sh
. "$(dirname "${BASH_SOURCE[0]}")/example.sh"

build_example player
drive front-panel.scenario -- build/player
expect_printed '[cmd=VolumeUp, state=KeyLongPress, bus=LocalUI]'
drive --profile "$source/examples/profiles/player.toml" recordings/player.umockdev -- build/player

# What replays the recordings in real time is elsewhere in the tree, and in the installation.
run recordings/replay.sh build/player
expect_status 1
expect_line_on_stderr "replay\.sh: .* installed in share/vorn-input/examples/recording"
[ -x "$prefix/share/vorn-input/examples/recording/replay.sh" ] || failed 'expected that it is there'

finish
