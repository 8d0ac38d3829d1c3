#!/usr/bin/env bash
# vorn-input drive gets from products' own programs what simulate gets from their profiles.
# usage: workbench_drive_test.sh SOURCE BUILD [real]
#   real  in real time, too
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 build=$2 mode=${3:-}
workbench=$build/src/tools/vorn-input
player=$build/examples/player/player
products=$build/tests/products
profile=$source/examples/profiles/player.toml
recording=$source/examples/player/recordings/player.umockdev
cd "$folder"

# Those that use the player's profile, themselves or by the declaration that they share.
mapfile -t scenarios < <(grep -l -E 'player\.toml|parts/front-panel\.steps' "$source"/tests/scenarios/*.scenario)
[ ${#scenarios[@]} -ge 2 ] || failed "the player's scenarios are missing"

# same_as_simulate COMMON… -- OPTION… -- PROGRAM ARGUMENT…
same_as_simulate() {
    local common=()
    while [ "$1" != -- ]; do
        common+=("$1")
        shift
    done
    shift
    "$workbench" simulate "${common[@]}" >simulated || failed "$*: expected that it can be simulated"
    run timeout 60 "$workbench" drive "${common[@]}" "$@"
    expect_status 0
}

without_times() { sed -E 's/^ *[0-9]+\.[0-9]{3} //; s/, [0-9.]+ s$//; s/; [0-9.]+ s$//' "$1"; }

if [ "$mode" = real ]; then
    for scenario in "${scenarios[@]}"; do
        # Not how punctual this machine is, but that everything comes, and in this order.
        same_as_simulate "$scenario" -- --tolerance 30s -- "$player"
        diff <(without_times simulated) <(without_times out) >differences ||
            failed "expected what is simulated: $(cat differences)"
    done
    for arguments in 'product threads' 'graphical_product -platform offscreen'; do
        read -r -a words <<<"$arguments"
        [ -x "$products/${words[0]}" ] || continue
        same_as_simulate "$source/tests/products/product.scenario" -- --tolerance 30s -- \
            "$products/${words[0]}" "${words[@]:1}"
        diff <(without_times simulated) <(without_times out) >differences ||
            failed "expected what is simulated: $(cat differences)"
    done
    finish
    exit
fi

# In virtual time, byte for byte.
for scenario in "${scenarios[@]}"; do
    for options in '' --raw; do
        # shellcheck disable=SC2086 # none or one
        same_as_simulate $options "$scenario" -- --virtual-time -- "$player"
        cmp -s simulated out || failed "expected what is simulated: $(diff simulated out)"
    done
done
same_as_simulate "${scenarios[@]}" -- --virtual-time -- "$player"
cmp -s simulated out || failed "expected the same totals"
same_as_simulate --profile "$profile" "$recording" -- --virtual-time -- "$player"
cmp -s simulated out || failed "expected what is simulated: $(diff simulated out)"
if [ -x "$products/graphical_product" ]; then
    same_as_simulate "$source/tests/products/product.scenario" -- --virtual-time -- \
        "$products/graphical_product" -platform offscreen
    cmp -s simulated out || failed "expected what is simulated: $(diff simulated out)"
else
    echo "SKIPPED: the graphical product, as QtGui is missing"
fi

# The program is found as by a shell, and gets its arguments as they are.
run env PATH="$build/examples/player:$PATH" "$workbench" drive --virtual-time --quiet "${scenarios[0]}" -- player
expect_status 0
run "$workbench" drive --virtual-time "${scenarios[0]}" -- "$player" --config 'no such file'
expect_status 2
grep -q "^player| player: Cannot read the configuration 'no such file'" err ||
    failed "expected what the program says"
grep -q "^${scenarios[0]}: error: the program exited with status 1 before it could be driven" err ||
    failed "expected the program's end"

# What the program prints stays apart from the results, and away with --quiet.
run "$workbench" drive --virtual-time --json "${scenarios[0]}" -- "$player"
expect_status 0
python3 -c 'import json, sys; [json.loads(line) for line in sys.stdin]' <out || failed "expected JSON alone"
grep -q '^player| \[cmd=VolumeUp, state=KeyPressed, bus=LocalUI\]$' err || failed "expected the program's lines"
run "$workbench" drive --virtual-time --quiet "${scenarios[@]}" -- "$player"
expect_status 0
expect_out ''
expect_nothing_on_stderr

# A failed expectation, in the console and as JUnit, and the picture of it.
printf '%s\n' "profile \"$profile\"" 'device panel name="front-panel"' 'ignore events' 'panel click KEY_INFO' \
    'expect Stop KeyPressed' >wrong.scenario
run "$workbench" drive --virtual-time --quiet --junit results.xml -t picture.svg wrong.scenario -- "$player"
expect_status 1
grep -q '^wrong.scenario:5: expected Stop KeyPressed,$' out || failed "expected the place"
grep -q 'found Info KeyPressed LocalUI from "front-panel"' out || failed "expected what came"
grep -q '^wrong.scenario: FAILED at 0.080 s; 0 expectations met, 1 failed$' out || failed "expected the summary"
python3 - results.xml <<'END' || failed "expected these results: $(cat results.xml)"
import sys
import xml.etree.ElementTree
suite = xml.etree.ElementTree.parse(sys.argv[1]).getroot()
case, = suite
assert suite.attrib["name"] == "vorn-input drive" and suite.attrib["failures"] == "1"
assert case.attrib["classname"] == "vorn-input.drive" and case.attrib["name"] == "wrong.scenario"
assert case.find("failure").attrib["message"].startswith("wrong.scenario:5: expected Stop KeyPressed")
# What the program printed comes with it.
assert "[cmd=Info, state=KeyPressed, bus=LocalUI]" in case.find("system-out").text
END
grep -q 'drawn by vorn-input' picture.svg || failed "expected a picture"
# Its own results are replaced, others are not.
run "$workbench" drive --virtual-time --quiet --junit results.xml "${scenarios[@]}" -- "$player"
expect_status 0
echo mine >mine.xml
run "$workbench" drive --virtual-time --quiet --junit mine.xml "${scenarios[@]}" -- "$player"
expect_status 2
grep -qx mine mine.xml || failed "expected the file to be kept"

# refuse PATTERN ARGUMENT…: status 2, one line on stderr, and nothing else.
refuse() {
    local pattern=$1
    shift
    run timeout 60 "$workbench" drive "$@"
    expect_status 2
    expect_out ''
    expect_line_on_stderr "$pattern"
}
scenario=${scenarios[0]}
printf '#!/bin/sh\nexec %s\n' "$player" >start.sh
chmod +x start.sh
head -c 2000 "$player" >short
echo text >text
chmod +x short text
head -c 64 "$player" | sed 's/^\(.ELF\)\(.\)/\1\x07/' >class
chmod +x class
refuse 'error: no program given; .*' "$scenario"
refuse 'error: ./missing cannot be started: No such file or directory; .*' "$scenario" -- ./missing
refuse 'error: missing is in no folder of PATH; .*' "$scenario" -- missing
refuse 'error: \. is in no folder of PATH; .*' "$scenario" -- .
refuse 'error: / is a folder; .*' "$scenario" -- /
refuse 'error: ./start.sh is a script, run by /bin/sh; .*' "$scenario" -- ./start.sh
refuse "error: $profile may not be executed; .*" "$scenario" -- "$profile"
refuse 'error: ./text is not a program: .*' "$scenario" -- ./text
refuse 'error: ./short (is damaged|cannot be driven): .*' "$scenario" -- ./short
refuse 'error: ./class is for .*' "$scenario" -- ./class
refuse 'error: /.*/true does not link libvorn_input(-qt6)?.so, .*' "$scenario" -- true
refuse "error: .*/libvorn_input(-qt6)?.so is .*" "$scenario" -- "$build"/src/lib/libvorn_input*.so
refuse "error: --timeout takes a duration .*" --timeout nonsense "$scenario" -- "$player"
refuse "error: --tolerance takes a duration .*" --tolerance -1s "$scenario" -- "$player"
refuse 'missing.scenario: error: cannot be read.*' --virtual-time --quiet missing.scenario -- "$player"
# From another folder it does not find its libraries.
mkdir moved
cp "$player" moved/player
refuse 'error: moved/player cannot be driven: it cannot be loaded \(libvorn_[a-z0-9-]*.so.*' "$scenario" -- moved/player
run env LD_LIBRARY_PATH="$build/src/lib:$build/src/api" "$workbench" drive --virtual-time --quiet \
    "$scenario" -- moved/player --config "$build/examples/player/player.properties"
expect_status 0
finish
