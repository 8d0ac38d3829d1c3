#!/usr/bin/env bash
# The player without any device: it says why it waits, and exits on a signal.
# usage: player_waiting_test.sh SOURCE_FOLDER PLAYER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
player=$2
name=$(basename "$player")
need_private_dev

no_directory="$name: There is no /dev/input; waiting for a device\."
no_node="$name: None of /dev/input/event0 to event9 is readable; waiting for a device\."

run in_private_dev -- "$player" --duration 0.1
expect_status 0
expect_out ''
expect_line_on_stderr "$no_directory"

run in_private_dev input/ -- "$player" --duration 0.1
expect_status 0
expect_out ''
expect_line_on_stderr "$no_node"

run in_private_dev input/event0 -- "$player" --duration 0.1
expect_status 0
expect_out ''
expect_line_on_stderr "$no_node"

# end_by SIGNAL: starts the player, waits for its line, which is printed from the event loop, and
# sends the signal.
end_by() {
    local pid line
    coproc PLAYER { exec "$player" 2>&1; }
    pid=$PLAYER_PID
    read -r -t 30 line <&"${PLAYER[0]}" || line="nothing within 30 s"
    echo "$line" >&2
    kill -s "$1" "$pid"
    wait "$pid"
}
export -f end_by
export player
for signal in INT TERM; do
    run in_private_dev -- bash -c "end_by $signal"
    expect_status 0
    expect_line_on_stderr "$no_directory"
done

finish
