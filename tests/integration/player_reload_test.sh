#!/usr/bin/env bash
# The player that reads its key map from a file: at the start, and again on SIGHUP.
# usage: player_reload_test.sh SOURCE_FOLDER PLAYER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
player=$2
name=$(basename "$player")
cd "$folder"

printf '[[device]]\n[device.handler.keys]\nKEY_STOP = "Stopp"\n' >broken.toml
run "$player" --profile broken.toml --duration 1
expect_status 1
expect_out ''
expect_line_on_stderr "broken\.toml:3:12: error: unknown command 'Stopp', did you mean 'Stop'\?"

run "$player" --profile missing.toml --duration 1
expect_status 1
expect_out ''
expect_line_on_stderr 'missing\.toml: error: cannot be read: No such file or directory'

run "$player" --profile= --duration 1
expect_status 2
expect_line_on_stderr "$name: --profile takes the name of a file\. \(see --help\)"

# The library's trace tells which identifier is selected.
cat >chatty.properties <<'END'
log4cplus.rootLogger=TRACE, OUT
log4cplus.appender.OUT=log4cplus::ConsoleAppender
log4cplus.appender.OUT.logToStdErr=true
log4cplus.appender.OUT.layout=log4cplus::PatternLayout
log4cplus.appender.OUT.layout.ConversionPattern=%m%n
END

# profile_selecting IDENTIFIER
profile_selecting() {
    printf 'initial = "%s"\n[[device]]\n[device.handler]\nidentifiers = ["%s"]\n' "$1" "$1"
    printf 'keys = { KEY_STOP = "Stop" }\n'
}

# wait_for PATTERN: reads what the player prints until a line contains it.
wait_for() {
    local line
    while IFS= read -r -t 30 line <&"${PLAYER[0]}"; do
        echo "$line" >>out
        [[ $line =~ $1 ]] && return
    done
    failed "expected a line with: $1"
}

# start ARGUMENT…
start() {
    description="$player $*" status=0
    : >out
    : >err
    coproc PLAYER { exec "$player" --config chatty.properties "$@" 2>&1; }
    pid=$PLAYER_PID
}

# end: by a signal that the player handles.
end() {
    kill -s TERM "$pid"
    wait "$pid" || status=$?
    expect_status 0
}

profile_selecting first >panel.toml
start --profile panel.toml
wait_for 'selectHandler.*first'
cp broken.toml panel.toml
kill -s HUP "$pid"
wait_for '^panel\.toml:3:12: error: unknown command'
wait_for "^$name: The key map that was read before stays in use\.$"
profile_selecting second >panel.toml
kill -s HUP "$pid"
wait_for 'selectHandler.*second'
end

start
wait_for 'selectHandler.*browse'
kill -s HUP "$pid"
wait_for "^$name: The key map is the one compiled in; there is none to read again\.$"
end

finish
