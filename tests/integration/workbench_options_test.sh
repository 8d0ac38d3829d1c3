#!/usr/bin/env bash
# vorn-input refuses what it cannot do in one clear line, with status 2, and leaves nothing behind.
# usage: workbench_options_test.sh SOURCE PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 program=$2
cd "$folder"
player=$source/examples/profiles/player.toml
echo 'this is not TOML' >broken.toml
echo '{"devices": []}' >old.json
printf '# mine\n' | cat - "$player" >edited.toml
echo 'panel press' >broken.scenario
echo 'wait 1s' >wait.scenario
echo 'E: what' >broken.evemu
echo '[]' >broken.jsonl
touch existing.toml empty.jsonl

for command in devices monitor learn check compile simulate drive timeline explain; do
    run "$program" "$command" --help
    expect_status 0
    expect_nothing_on_stderr
    grep -q '^Examples:' "$folder/out" || failed "expected examples in the help"
    case $command in
    check | simulate | explain) required=(broken.toml) ;;
    compile) required=(broken.toml -o new.cpp) ;;
    learn) required=(-o new.toml) ;;
    timeline) required=(broken.jsonl -o new.svg) ;;
    *) required=() ;;
    esac
    run "$program" "$command" "${required[@]}" --nonsense
    expect_status 2
    [ ! -s "$folder/out" ] || failed "expected nothing on stdout"
    grep -q -e --nonsense "$folder/err" || failed "expected the option's name"
done

# The same text in both ways.
for command in '' devices monitor learn check compile simulate drive timeline explain help; do
    # shellcheck disable=SC2086 # none or one
    "$program" $command --help >help
    # shellcheck disable=SC2086
    run "$program" help $command
    expect_status 0
    expect_nothing_on_stderr
    cmp -s help "$folder/out" || failed "expected what --help prints"
done
run "$program" --version
expect_status 0
expect_out 'vorn-input [0-9]+\.[0-9]+\.[0-9]+'
run "$program" --help
expect_status 0
run "$program" --log nonsense devices
expect_status 2
run "$program" --color nonsense devices
expect_status 2

# refuse PATTERN ARGUMENT…: status 2, and one line on stderr.
refuse() {
    local pattern=$1
    shift
    run "$program" "$@"
    expect_status 2
    [ ! -s "$folder/out" ] || failed "expected nothing on stdout"
    grep -q -E -e "$pattern" "$folder/err" || failed "expected on stderr: $pattern"
}

refuse 'a command is required: devices, monitor, learn, check, compile, simulate, drive, timeline, explain'
refuse "unknown command 'chek', did you mean 'check'\?" chek x.toml
refuse "unknown command 'nonsense' \(" nonsense
refuse "^vorn-input: unknown command 'simulat', did you mean 'simulate'\? \(see --help\)" help simulat
refuse "^vorn-input: unknown command 'nonsense' \(see --help\)" help nonsense
refuse "unexpected argument 'devices'" help simulate devices
refuse "unknown option '--verson', did you mean '--version'\?" --verson
refuse "unknown option '--profil', did you mean '--profile'\?" monitor --profil x.toml
refuse "unknown option '--titel=x', did you mean '--title'\?" timeline --titel=x x.jsonl -o x.svg
refuse "unexpected argument 'x'" devices x
for command in check simulate; do
    run "$program" "$command"
    expect_status 2
done
run "$program" check missing.toml
expect_status 2
run "$program" check broken.toml
expect_status 1
expect_nothing_on_stderr
run "$program" check "$player"
expect_status 0
run "$program" check broken.toml "$player" missing.toml
expect_status 2

# What check accepts, the others read, too.
head -c 1100000 /dev/zero | tr '\0' '#' >large.toml
for arguments in "check large.toml" "monitor -p large.toml" "simulate -p large.toml wait.scenario"; do
    # shellcheck disable=SC2086 # words
    refuse 'large.toml: error: cannot be read: it is larger than 1 MiB' $arguments
done

refuse 'missing.scenario: error: cannot be read' simulate missing.scenario
refuse 'error: --junit needs a file' simulate --junit - wait.scenario
refuse 'broken.scenario:1:[0-9]+: error: ' simulate broken.scenario
refuse 'broken.evemu:1.*: error: ' simulate broken.evemu
refuse 'broken.toml:1:[0-9]+: error: ' simulate --profile broken.toml wait.scenario
refuse 'broken.toml:1:[0-9]+: error: ' monitor --profile broken.toml
refuse 'missing.toml: error: cannot be read' monitor --profile missing.toml
refuse "the profile has no identifier 'txt', did you mean 'text'\?" monitor -p "$player" --id txt
refuse '^vorn-input monitor: --id selects' monitor --id text
refuse 'duration' monitor --duration 0
refuse 'duration' monitor --duration x
for arguments in 'simulate --profile' 'simulate --expectations' 'simulate --timeline' \
    'explain --profile' 'monitor --profile' 'monitor --duration 20 --record' 'learn --patience 20 -o' 'timeline session.jsonl -o'; do
    read -r -a words <<<"$arguments"
    refuse "${words[-1]#-}.*: the name is empty" "${words[@]}" ''
done
refuse 'FILE: the name is empty' simulate --profile "$player" ''
refuse 'FILE: the name is empty' simulate --profile "$player" wait.scenario ''
refuse 'FILE: the name is empty' check ''
refuse 'FILE: the name is empty' explain ''
refuse 'FILE: the name is empty' timeline '' -o new.svg
# An identifier may be empty.
sed -e '/^initial/s/"[^"]*"/"browse"/' -e 's/"text"/""/' "$player" >unnamed.toml
run "$program" monitor --profile unnamed.toml --id '' --duration 0.1
expect_status 0
grep -q "identifier ''" "$folder/out" || failed "expected the empty identifier to be selected"

refuse 'existing.toml exists' learn -o existing.toml
refuse "edited.toml is not as 'learn' wrote it" learn --force -o edited.toml
head -n 1 edited.toml | grep -qx '# mine' || failed "expected the author's comment to be kept"
refuse 'old.json:1:1: error: this is JSON, and profiles are TOML' monitor --profile old.json
refuse "unknown command 'VolumUp', did you mean 'VolumeUp'" learn -o new.toml -c VolumUp
refuse 'output' learn
refuse 'missing.jsonl: error: cannot be read' timeline missing.jsonl -o new.svg
refuse 'broken.jsonl:1.*: error: ' timeline broken.jsonl -o new.svg
refuse 'empty.jsonl' timeline empty.jsonl -o new.svg
refuse 'output' timeline broken.jsonl

mkdir "$folder/full"
touch "$folder/full/session.umockdev"
refuse 'full' monitor --record full

# A slip of the shell: what was meant as another scenario is taken for the output.
"$program" simulate --profile "$player" --json wait.scenario >session.jsonl
echo 'wait 2s' >other.scenario
ln -s wait.scenario link.svg
refuse 'error: other.scenario exists, and vorn-input did not write it' \
    simulate --profile "$player" -t other.scenario wait.scenario
grep -qx 'wait 2s' other.scenario || failed "expected the scenario to be kept"
refuse 'error: link.svg is one of the files that were read' \
    simulate --profile "$player" --force -t link.svg wait.scenario
cp "$player" copy.toml
refuse 'error: copy.toml is one of the files that were read' \
    simulate --profile copy.toml --force -t copy.toml wait.scenario
grep -qx 'wait 1s' wait.scenario || failed "expected the scenario to be kept"
refuse 'error: edited.toml exists' timeline session.jsonl -o edited.toml
refuse 'error: session.jsonl is one of the files' timeline session.jsonl --force -o session.jsonl
run bash -c '"$1" timeline --force - -o session.jsonl <session.jsonl' bash "$program"
expect_status 2
grep -q "session.jsonl is one of the files" "$folder/err" || failed "expected the reason"
refuse 'error: missing/new.svg cannot be written: No such file' \
    simulate --profile "$player" -t missing/new.svg wait.scenario
mkdir folder
refuse 'folder is a folder; name a file' timeline session.jsonl -o folder
refuse 'missing/new.toml cannot be written: No such file' learn -o missing/new.toml --patience 20
refuse 'folder is a folder; name a file' learn --force -o folder --patience 20

if [ -e new.toml ] || [ -e new.svg ]; then
    failed "expected no file to be written"
fi

# A serial console shows ASCII; what is not for people is UTF-8 everywhere.
printf 'device panel name="K\303\244se" keys=KEY_INFO\npanel click KEY_INFO\nwait 1s\n' >umlaut.scenario
printf '[[device]]\n[device.handler.keys]\nKEY_INFO = "Info"\n' >any.toml
for characters in C C.UTF-8; do
    for format in --raw --json; do
        run env LC_ALL="$characters" "$program" simulate --profile any.toml $format umlaut.scenario
        expect_status 0
        cp out "$characters$format"
    done
done
cmp -s C--json C.UTF-8--json || failed "expected the same JSON"
! LC_ALL=C grep -q '[^ -~]' C--raw || failed "expected ASCII"
grep -q -F '+ event0 K\u00e4se' C--raw || failed "expected the name"
grep -q -F '+ event0 Käse' C.UTF-8--raw || failed "expected the name"
run env LC_ALL=C "$program" check "$(printf 'K\303\244se')"
expect_status 2
! LC_ALL=C grep -q '[^ -~]' err || failed "expected ASCII"

# Names of files are no formats.
mkdir '%1%2%3%L1'
cd '%1%2%3%L1'
cp "$player" '%2.toml'
printf 'device front-panel keys=KEY_INFO\nfront-panel click KEY_INFO\nexpect Info KeyLongPress\n' >'%1%3.scenario'
run "$program" simulate --profile '%2.toml' '%1%3.scenario' -t '%4.svg'
expect_status 1
grep -q -F '%1%3.scenario:3: expected Info KeyLongPress,' "$folder/out" ||
    failed "expected the line of the scenario"
grep -q -F '%1%3.scenario:3: failed: expect Info KeyLongPress' '%4.svg' ||
    failed "expected the line of the scenario in the picture"
printf 'profile "%%2.toml"\nprofile "x"\n' >'%2.scenario'
refuse '%2.scenario:2:1: error: the scenario already has a profile, see %2.scenario, line 1' simulate '%2.scenario'
printf 'device a\ndevice a\n' >'%3.scenario'
refuse '%3.scenario:2:[0-9]+: error: a is already declared in %3.scenario, line 1' simulate '%3.scenario'
printf 'P: /a\nN: input/event0\nE: NAME="a"\n\nP: /b\nN: input/event1\nE: NAME="b"\n' >'%2.umockdev'
printf 'device a\nplay "%%2.umockdev" on a\n' >'%4.scenario'
refuse "%4.scenario:2.*: error: '%2.umockdev' contains 2 devices" simulate -p '%2.toml' '%4.scenario'
run "$program" monitor --duration 0.1 --record '%1%2'
expect_status 0
grep -q -F "recorded in '%1%2'; 0 typed" "$folder/err" || failed "expected the folder's name"
refuse "'%1%2' already holds a recording" monitor --duration 20 --record '%1%2'
cd ..

# What it drew itself is drawn again.
for _ in 1 2; do
    run "$program" simulate --quiet --profile "$player" -t drawn.svg wait.scenario
    expect_status 0
    run "$program" timeline session.jsonl -o drawn.svg
    expect_status 0
done
run "$program" timeline session.jsonl --force -o other.scenario
expect_status 0
grep -q '<svg' other.scenario || failed "expected the picture"
finish
