#!/usr/bin/env bash
# The player with a profile: the one that is compiled in, and one that it reads.
# usage: player_profile_test.sh SOURCE PREFIX CXX QT
# shellcheck source=tests/examples/example.sh
. "$(dirname "${BASH_SOURCE[0]}")/example.sh"

build_example player-profile
drive remote.scenario -- build/player-profile
expect_printed '[cmd=Number2, state=KeyPressed, bus=I2C]'

sed -i '/^KEY_2/s/"CursorUp"/"CursorDown"/' player.toml
run "$workbench" drive --virtual-time remote.scenario -- build/player-profile --profile player.toml
expect_status 1
sed -i '/^expect/s/CursorUp/CursorDown/' remote.scenario
drive remote.scenario -- build/player-profile --profile player.toml

# The folder has a key map of its own, so that it can be copied; it is the player's.
run cmp "$source/examples/player-profile/player.toml" "$source/examples/profiles/player.toml"
expect_status 0

finish
