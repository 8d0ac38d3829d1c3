#!/usr/bin/env bash
# vorn-input explain and timeline take a product's log.
# usage: workbench_field_test.sh SOURCE BUILD PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 build=$2 program=$3
log=$source/docs/field/player.log

# The document's walk; it speaks of the release build.
# shellcheck disable=SC2016
sed "s#\$PWD/build/release#$build#" "$source/docs/field.md" >"$folder/field.md"
grep -q -F "$build/src/tools" "$folder/field.md"
TMPDIR=$folder python3 "$source/tests/integration/walk.py" "$folder/field.md" "$source"
cd "$folder"

# The same from a pipe, compressed, and with its pattern.
run "$program" explain "$log"
expect_status 0
cp out expected
"$program" explain - <"$log" >redirected || failed "standard input"
cmp -s expected redirected || failed "expected the same from the standard input"
# shellcheck disable=SC2002
cat "$log" | "$program" explain - >piped || failed "a pipe"
cmp -s expected piped || failed "expected the same from a pipe"
gzip -c "$log" >player.log.gz
"$program" explain player.log.gz >unpacked || failed "a compressed log"
cmp -s expected unpacked || failed "expected the same from a compressed log"
run "$program" explain --pattern '%D{%Y-%m-%d %H:%M:%S,%q} %p %c: %m%n' "$log"
expect_status 0
run "$program" explain --json "$log"
expect_status 0
python3 -c 'import json, sys; [json.loads(line) for line in open(sys.argv[1])]' out ||
    failed "expected JSON"
grep -q '"kind":"remark"' out || failed "expected what the log does not say"

# A name that says nothing; the first lines do.
cp "$log" messages
run "$program" explain messages
expect_status 0

# What is missing is told first.
grep -E ' (INFO|WARN|ERROR) | Input: ' "$log" >quiet.log
run "$program" explain quiet.log
expect_status 0
grep -q 'no records: the log has no line of logger LinuxInputListener at DEBUG' out ||
    failed "expected what is missing"
grep -q 'published VolumeUp KeyPressed; the log does not say what caused it' out ||
    failed "expected the events"

# With the levels for the field, records that both listeners read are no lost releases.
grep -v -E ' TRACE | BasicInputHandler: key:| BasicInputHandler:  --->' "$log" >field.log
run "$program" explain field.log
expect_status 0
[ "$(grep -c 'the release in between was lost' out)" -eq 1 ] || failed "expected one lost release"
if grep -q 'no key handler took it' out; then failed "expected that all records are taken"; fi

# Two starts are two sessions.
cat "$log" "$log" >twice.log
run "$program" timeline twice.log -o twice.svg
expect_status 2
grep -q 'contains 2 sessions; choose one with --session' err || failed "expected a choice"
run "$program" timeline --session 2 twice.log -o twice.svg
expect_status 0

# Bad input is told in one line, and what was read stays.
head -c 9000 "$log" >half.log
run "$program" explain half.log
expect_status 0
grep -q 'VolumeUp KeyPressed' out || failed "expected the first half"
echo 'nothing of the library' >other.log
run "$program" explain other.log
expect_status 2
expect_line_on_stderr '.*no log of the library.*'
: >empty.log
run "$program" explain empty.log
expect_status 2
head -c 100000 /dev/urandom >rubbish.log
run "$program" explain rubbish.log
expect_status 2
run "$program" explain --pattern '%m %Y' "$log"
expect_status 2
run "$program" explain --profile "$source/examples/profiles/player.toml" "$log"
expect_status 2
expect_line_on_stderr '.*--profile is for recordings and scenarios; a log says itself.*'
run "$program" explain missing.log
expect_status 2
exit $((failures > 0))
