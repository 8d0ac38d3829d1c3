#!/usr/bin/env bash
# The demo's command line, and its errors on a machine without input devices.
# usage: demo_options_test.sh SOURCE_FOLDER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
demo=$1/scripts/demo.sh

run "$demo" --help
expect_status 0
expect_out 'usage: demo\.sh.*--live.*'
expect_nothing_on_stderr

for option in --frobnicate -x live; do
    run "$demo" "$option"
    expect_status 2
    expect_out ''
    expect_line_on_stderr "demo\.sh: unknown option '$option' \(see --help\)"
done

run "$demo" ''
expect_status 2
expect_out ''
expect_line_on_stderr 'demo\.sh: expected an option, not an empty string \(see --help\)'

run "$demo" --live --live
expect_status 2
expect_out ''
expect_line_on_stderr 'demo\.sh: expected at most one option, not 2 \(see --help\)'

need_private_dev

run in_private_dev -- "$demo" --live
expect_status 1
expect_out ''
expect_line_on_stderr 'demo\.sh: no /dev/input here, .*'

for content in input/ input/event0 input/event10; do
    run in_private_dev "$content" -- "$demo" --live
    expect_status 1
    expect_out ''
    expect_line_on_stderr 'demo\.sh: none of /dev/input/event0 to event9 is readable; .*'
done

finish
