#!/usr/bin/env bash
# Products that crash, hang, end or print anything are told apart, eight of them at a time, and no
# process is left behind, however a run ends.
# usage: workbench_drive_trouble_test.sh SOURCE BUILD
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 build=$2
workbench=$build/src/tools/vorn-input
product=$build/tests/products/product
cd "$folder"
cp "$source/tests/products/product.toml" .
cat >click.scenario <<'END'
profile "product.toml"
device panel
panel press KEY_INFO
expect Info KeyPressed within 60s
panel release KEY_INFO
expect Info KeyReleased within 60s
END

# drive_all OPTION… : each behaviour at the same time, eight of them at most.
drive_all() {
    # shellcheck disable=SC2016 # for the inner shell
    printf '%s\n' crashes hangs never-starts never-runs exits-at-start quits leaves executes forks helper \
        closes prints-binary prints-a-lot stays spins threads plain |
        xargs -P 8 -I NAME timeout 120 bash -c '
            name=$1
            shift
            "$@" -- "$product" "$name" 3 >"$name.out" 2>"$name.err" </dev/null
            echo $? >"$name.status"' bash NAME "$workbench" drive "$@" click.scenario
}

# result NAME STATUS: what became of it, for the checks below.
result() {
    description="drive product $1"
    status=$(cat "$1.status" || echo 99)
    cp "$1.out" "$folder/out"
    cp "$1.err" "$folder/err"
    expect_status "$2"
}

expect_err() { grep -q -E -e "$1" "$folder/err" || failed "expected on stderr: $1"; }
expect_in_out() { grep -q -E -e "$1" "$folder/out" || failed "expected on stdout: $1"; }

# ended NAME WHAT: in the middle of the scenario.
ended() {
    result "$1" 1
    # While the key is pressed, or in the step after it.
    expect_in_out "^click\.scenario:[34]: error: the program $2"
    expect_in_out '^ +[0-9.]+ +Info press +panel  KEY_INFO$'
}

# not_driven NAME WHAT
not_driven() {
    result "$1" 2
    expect_err "^click\.scenario: error: the program $2"
}

# passes NAME
passes() {
    result "$1" 0
    expect_in_out '^click\.scenario: passed, 2 expectations, '
}

check_all() {
    ended crashes 'was killed by SIGSEGV \(Segmentation fault\)'
    ended quits 'exited with status 3'
    ended leaves 'exited with status 3'
    ended executes 'has closed its connection, but goes on'
    ended hangs 'has not answered for 10 s: its event loop hangs or is never idle \(--timeout\)$'
    not_driven never-starts 'has made no QCoreApplication within 10 s \(--timeout\)$'
    not_driven never-runs 'has made no device manager of the library.s, or has not come to its event loop, within 10 s \(--timeout\)$'
    not_driven exits-at-start 'exited with status 3 before it could be driven'
    passes plain
    passes forks
    passes helper
    expect_err '^product\| helper: nothing 0$'
    passes closes
    expect_err '^product\| closing$'
    passes prints-binary
    expect_err '^product\| \\u001b\[31mred\\u0007 .* \\u0000 zero$'
    expect_err '^product\| \\u202e turned$'
    passes prints-a-lot
    expect_err '^product\| enough$'
    [ "$(grep -c '^product| x*$' "$folder/err")" -eq 5000 ] || failed "expected all that it printed"
    passes stays
    expect_err 'did not quit when asked, did not end at SIGTERM, and was killed by SIGKILL'
}

# The processes of the products that run now; each has this folder's name in its environment.
export product VORN_TEST_MARK=$folder
products() {
    local file
    # Those that have ended meanwhile cannot be read.
    grep -l -z -x -F "VORN_TEST_MARK=$folder" /proc/[0-9]*/environ 2>/dev/null | while read -r file; do
        if [[ $(readlink "${file%environ}exe") == */@(product|sleep) ]]; then
            echo "${file//[^0-9]/}"
        fi
    done
}

# none_left: waits until no product is there any more.
none_left() {
    local i left=
    for ((i = 0; i < 200; ++i)); do
        left=$(products) || true
        [ -n "$left" ] || return 0
        sleep 0.1
    done
    failed "expected no process of a product: $left"
}

drive_all --timeout 10s
check_all
passes threads
passes spins
none_left
drive_all --timeout 10s --virtual-time
check_all
# Time stands still while a timer is due.
not_driven spins 'has made no device manager of the library.s, or has not come to its event loop, '
none_left

# interrupt SIGNAL BEHAVIOUR PATTERN: as soon as stderr shows PATTERN.
interrupt() {
    local signal=$1 behaviour=$2 pattern=$3 i
    description="drive, interrupted by SIG$signal: $behaviour" status=0
    : >"$folder/out"
    : >"$folder/err"
    # In the background a shell ignores SIGINT, and so would what it starts.
    setsid bash -c 'trap - INT; exec "$@"' bash "$workbench" drive --timeout 1h --junit results.xml \
        long.scenario click.scenario -- "$product" "$behaviour" >"$folder/out" 2>"$folder/err" </dev/null &
    local driver=$!
    for ((i = 0; i < 300; ++i)); do
        if grep -q -E "$pattern" "$folder/err"; then
            break
        fi
        sleep 0.1
    done
    [ "$i" -lt 300 ] || failed "expected on stderr: $pattern"
    [ -n "$(products)" ] || failed "expected the product to run"
    kill "-$signal" "$driver"
    wait "$driver" || status=$?
    none_left
}
sed 's/^panel release/wait 1h\n&/' click.scenario >long.scenario
for signal in INT TERM HUP; do
    interrupt "$signal" plain '^product\| \[cmd=Info, state=KeyPressed'
    expect_status 2
    expect_err '^click\.scenario: not run, interrupted$'
    grep -q 'skipped="1"' results.xml || failed "expected the scenario that was not run"
done
interrupt INT forks '^product\| \[cmd=Info, state=KeyPressed'
expect_status 2
interrupt INT never-runs '^product\| waiting$'
expect_status 2
interrupt INT hangs '^product\| \[cmd=Info, state=KeyPressed'
expect_status 2
# Nobody can catch it: the system ends the program.
interrupt KILL plain '^product\| \[cmd=Info, state=KeyPressed'
expect_status 137

# The reader of the output goes.
description='drive | head' status=0
printf '%s\n' 'profile "product.toml"' 'device panel' 'panel hold KEY_VOLUMEUP for 1h' >hold.scenario
timeout 60 "$workbench" drive --virtual-time --json hold.scenario -- "$product" 2>"$folder/err" </dev/null |
    head -n 1 >"$folder/out" || status=${PIPESTATUS[0]}
expect_status 2
expect_err 'cannot write to the standard output: Broken pipe'
none_left
finish
