#!/usr/bin/env bash
# vorn-input monitor reloads an edited profile, keeps the previous one when the new one has errors, and
# ends cleanly when it is interrupted or its time is up, with everything recorded until then, and at
# once when that cannot be recorded.
# usage: workbench_monitor_test.sh SOURCE PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 program=$2
command -v umockdev-run >/dev/null || skip "umockdev-run is missing"
cd "$folder"
cp "$source/examples/profiles/player.toml" profile.toml

# wait_for PATTERN FILE
wait_for() {
    local i
    for ((i = 0; i < 200; ++i)); do
        if grep -q -E "$1" "$2" 2>/dev/null; then
            return
        fi
        sleep 0.1
    done
    failed "expected in $2: $1"
    finish
}

description='monitor, interrupted' status=0
touch out err
# In the background a shell ignores SIGINT, and so would what it starts.
setsid bash -c 'trap - INT; exec "$@"' bash \
    "$source/examples/player/recordings/replay.sh" bash -c 'echo $$ >pid; exec "$@"' bash \
    "$program" monitor --profile profile.toml --record session --json >out 2>err &
replay=$!
wait_for '"KeyLongPress"' out

sed 's/"VolumeUp"/"VolumUp"/' "$source/examples/profiles/player.toml" >profile.toml
wait_for "profile.toml has errors; keeping the previous profile" out
wait_for "profile.toml:[0-9]+:[0-9]+: error: unknown command 'VolumUp'" err
wait_for '"FactoryReset"' out
sed 's/"FactoryReset"/"Power"/' "$source/examples/profiles/player.toml" >new.toml
mv new.toml profile.toml
wait_for "profile.toml reloaded" out

kill -INT "$(cat pid)"
wait "$replay" || status=$?
expect_status 0
grep -q '"KeyLongPress"' session/session.jsonl || failed "expected the long press to be recorded"
grep -q "recorded in 'session'; [0-9]* typed keys are blanked; keys recorded as they are: KEY_" err ||
    failed "expected the keys that are readable"
grep -q 'KeyLongPress' session/session.expect || failed "expected the long press to be expected"
[ "$(grep -c '"change":"added"' out)" -eq 4 ] || failed "expected each device to be shown once"
jq -e . out >json 2>&1 || failed "expected JSON, one object per line"

description='monitor on a disk that becomes full' status=0
# Blocks of a kilobyte: enough for all of it but the session.
"$source/examples/player/recordings/replay.sh" bash -c 'ulimit -f 8; exec "$@"' bash \
    "$program" monitor --profile profile.toml --record short >out 2>err </dev/null || status=$?
expect_status 2
wait_for "cannot write 'short/session.jsonl': File too large; the recording ends here" err
[ "$(wc -l <err)" -eq 2 ] || failed "expected one line on stderr, and what is recorded"
jq -e . short/session.jsonl >json 2>&1 || failed "expected whole lines only"

description='monitor with a duration, and a profile that changes' status=0
# The job in the background may take its time to truncate what the part before has left.
: >"$folder/out"
timeout 30 "$program" monitor --profile profile.toml --json --duration 6 >"$folder/out" \
    2>"$folder/err" </dev/null &
monitor=$!
wait_for '"identifier"' "$folder/out"
cp "$source/examples/profiles/player.toml" profile.toml
wait_for "profile.toml reloaded" "$folder/out"
mv profile.toml away.toml
wait_for "profile.toml is gone; keeping the previous profile" "$folder/out"
mv away.toml profile.toml
wait_for "profile.toml is back" "$folder/out"
wait "$monitor" || status=$?
expect_status 0
finish
