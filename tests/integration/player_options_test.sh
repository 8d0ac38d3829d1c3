#!/usr/bin/env bash
# The player's command line and exit statuses.
# usage: player_options_test.sh SOURCE_FOLDER PLAYER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
player=$2
name=$(basename "$player")

run "$player" --help
expect_status 0
expect_out '.*--config.*--duration.*--timestamps.*'
expect_nothing_on_stderr

run "$player" --version
expect_status 0
expect_out "$name "'[0-9]+\.[0-9]+\.[0-9]+'
expect_nothing_on_stderr

run "$player" --frobnicate
expect_status 2
expect_out ''
expect_line_on_stderr "$name: Unknown option 'frobnicate'\. \(see --help\)"

run "$player" /dev/input/event0
expect_status 2
expect_out ''
expect_line_on_stderr "$name: Unexpected argument '/dev/input/event0'\. \(see --help\)"

for value in '' 0 -1 nan inf 1e9 soon; do
    run "$player" "--duration=$value"
    expect_status 2
    expect_out ''
    expect_line_on_stderr "$name: --duration takes .* seconds, not '$value'\. \(see --help\)"
done

run "$player" --config "$folder/missing.properties" --duration 1
expect_status 1
expect_out ''
expect_line_on_stderr "$name: Cannot read the configuration '.*/missing\.properties': No such .*"

run "$player" --config "$folder" --duration 1
expect_status 1
expect_out ''
expect_line_on_stderr "$name: Cannot read the configuration '.*': .*directory.*"

# --config selects another configuration.
cat >"$folder/chatty.properties" <<'END'
log4cplus.rootLogger=TRACE, OUT
log4cplus.appender.OUT=log4cplus::ConsoleAppender
log4cplus.appender.OUT.layout=log4cplus::PatternLayout
log4cplus.appender.OUT.layout.ConversionPattern=%p %c%n
END
run "$player" --config "$folder/chatty.properties" --duration 0.1
expect_status 0
expect_out 'TRACE BasicInputHandler.*'

finish
