#!/usr/bin/env bash
# vorn-input explain says in one line for each record what became of it.
# usage: workbench_explain_test.sh SOURCE PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 program=$2
cd "$folder"
player=$source/examples/profiles/player.toml
cat >silent.scenario <<END
device panel name="front-panel" bus=LocalUI
device wheel name="front-panle" bus=LocalUI keys=KEY_INFO
panel press KEY_STOP
wait 300ms
panel press KEY_PLAY
wait 100ms
panel click KEY_INFO
panel release KEY_PLAY
panel click KEY_INFO
panel release KEY_STOP
wheel click KEY_INFO
END

# has PATTERN: a line of the output matches.
has() {
    grep -Eq -- "$1" "$folder/out" || failed "expected a line that matches: $1"
}

run "$program" explain --profile "$player" silent.scenario
expect_status 0
expect_nothing_on_stderr
has '^    0\.000  front-panel  KEY_STOP press: held back until the release; first key of a chord, withdrawn at 0\.300 s$'
has '^    0\.300  front-panel  KEY_PLAY press: published FactoryReset KeyPressed$'
has '^    0\.400  front-panel  KEY_INFO press: dropped, since KEY_STOP \+ KEY_PLAY are down since 0\.300 s$'
has '^    0\.480  front-panel  KEY_PLAY release: KEY_STOP \+ KEY_PLAY are a pair until both are up$'
has '^    0\.480  front-panel  KEY_INFO press: dropped, since KEY_STOP of the chord KEY_STOP \+ KEY_PLAY, begun at 0\.300 s, is still down$'
has '^    0\.560  front-panel  KEY_STOP release: published FactoryReset KeyReleased$'
has "^    0\.560  front-panle  KEY_INFO press: not mapped under identifier 'browse'"
[ "$(wc -l <"$folder/out")" -eq 10 ] || failed "expected 10 lines"

run "$program" explain --profile "$player" --silent silent.scenario
expect_status 0
if grep -q 'published FactoryReset' "$folder/out"; then failed "expected only what was silent"; fi
has 'KEY_INFO press: dropped'

# The same from the session itself, in a pipe and from a file.
"$program" explain --profile "$player" --json silent.scenario >direct.jsonl
"$program" simulate --profile "$player" --json silent.scenario >session.jsonl
run "$program" explain --json session.jsonl
expect_status 0
cmp -s direct.jsonl "$folder/out" || failed "expected the same from a session"
"$program" explain --json - <session.jsonl >piped.jsonl || failed "a pipe"
cmp -s direct.jsonl piped.jsonl || failed "expected the same from a pipe"
python3 -c 'import json, sys; [json.loads(line) for line in open(sys.argv[1])]' direct.jsonl ||
    failed "expected JSON"

# A session that does not say it is not explained as if nothing had been published.
grep -v '"kind":"outcome"' session.jsonl >old.jsonl
run "$program" explain old.jsonl
expect_status 2
expect_line_on_stderr '.*does not say what became of its records.*'

printf 'panel click KEY_STOP\nexpect Mute KeyPressed\npanel click KEY_STOP\n' |
    cat <(head -n 1 silent.scenario) - >failing.scenario
run "$program" explain --profile "$player" failing.scenario
expect_status 1
expect_line_on_stderr '.*an expectation failed.*'
run "$program" explain missing.umockdev
expect_status 2
run "$program" explain missing.jsonl
expect_status 2
run "$program" explain --profile "$player" session.jsonl
expect_status 2
exit $((failures > 0))
