#!/usr/bin/env bash
# Whatever vorn-input cannot write is told in one line, with status 2, and costs no file that was there.
# usage: workbench_output_test.sh SOURCE PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 program=$2
checks=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/checks.sh
cd "$folder"
player=$source/examples/profiles/player.toml
printf 'device front-panel keys=KEY_INFO\nfront-panel click KEY_INFO\nwait 1s\n' >click.scenario
"$program" simulate --profile "$player" click.scenario --json >session.jsonl

# without_output REDIRECTION REASON ARGUMENT…
without_output() {
    local redirection=$1 reason=$2
    shift 2
    # shellcheck disable=SC2016 # for the inner shell
    run bash -c 'exec "$@" '"$redirection" bash "$program" "$@"
    description="$description $redirection"
    expect_status 2
    grep -q -x "vorn-input: cannot write to the standard output: $reason" "$folder/err" ||
        failed "expected the reason"
}

printing=(--help --version 'devices --help' help 'help simulate' 'monitor --duration 20'
    "check $player" "simulate --profile $player click.scenario"
    "simulate --profile $player click.scenario --json"
    "explain --profile $player click.scenario" 'explain --json session.jsonl')
for arguments in "${printing[@]}"; do
    read -r -a words <<<"$arguments"
    without_output '>/dev/full' 'No space left on device' "${words[@]}"
    without_output '>&-' 'Bad file descriptor' "${words[@]}"
done
if command -v umockdev-run >/dev/null; then
    for format in '' --json; do
        # shellcheck disable=SC2016,SC2086 # for the inner shell; none or one
        run bash -c 'exec "$@" >/dev/full' bash "$source/examples/player/recordings/replay.sh" \
            --still "$program" devices $format
        expect_status 2
        expect_line_on_stderr 'vorn-input: cannot write to the standard output: No space left on device'
    done
else
    echo "SKIPPED: devices, as umockdev-run is missing"
fi
for redirection in '>/dev/full' '>&-'; do
    run bash -c 'exec "$@" '"$redirection" bash "$program" timeline session.jsonl -o -
    description="$description $redirection"
    expect_status 2
    expect_line_on_stderr 'error: the standard output cannot be written: .*'
done
for redirection in '>/dev/full' '>&-'; do
    run bash -c 'exec "$@" '"$redirection" bash "$program" compile "$player" -o -
    description="$description $redirection"
    expect_status 2
    expect_line_on_stderr 'error: the standard output cannot be written: .*'
done
# What does not print anything needs no output.
run bash -c 'exec "$@" >&-' bash "$program" timeline session.jsonl -o picture.svg
expect_status 0
grep -q '^</svg>$' picture.svg || failed "expected the picture, and nothing else in its file"

# without_reader COMMAND…: runs it into a pipe whose reader takes one line and goes.
without_reader() {
    description="$* | head -n 1" status=0
    # shellcheck disable=SC2016 # for the inner shell
    timeout 30 bash -c '"$@" 2>err </dev/null | head -n 1 >out; exit "${PIPESTATUS[0]}"' \
        bash "$@" || status=$?
    expect_status 2
    [ "$(wc -l <out)" -eq 1 ] || failed "expected the first line"
    grep -q 'cannot write to the standard output: Broken pipe' err || failed "expected the reason"
}
# Nothing more happens on the devices, and no duration ends it.
without_reader "$program" monitor --json
printf 'device front-panel keys=KEY_VOLUMEUP\nfront-panel press KEY_VOLUMEUP\nwait 1h\n' >hold.scenario
without_reader "$program" simulate --profile "$player" --json hold.scenario

# On a disk of a few blocks.
if unshare -rm mount -t tmpfs none /mnt 2>/dev/null; then
    # shellcheck disable=SC2016 # for the inner shell
    unshare -rm bash -euc '
        program=$1 player=$2 checks=$3
        mkdir disk
        mount -t tmpfs -o size=16k none disk
        . "$checks"
        echo "<!-- drawn by vorn-input -->" >disk/picture.svg
        chmod 640 disk/picture.svg
        head -c 8k /dev/zero >disk/more
        dd if=/dev/zero of=disk/rest 2>/dev/null || :
        reason="No space left on device"
        run "$program" timeline session.jsonl -o disk/picture.svg
        expect_status 2
        expect_line_on_stderr "error: disk/picture.svg cannot be written: $reason"
        run "$program" compile "$player" -o disk/player.cpp --header player.h
        expect_status 2
        expect_line_on_stderr "error: disk/player.cpp cannot be written: $reason"
        [ ! -e player.h ] || failed "expected no header without its source"
        run "$program" simulate --profile "$player" click.scenario -t disk/picture.svg
        expect_status 2
        grep -q "error: disk/picture.svg cannot be written: $reason" "$folder/err" ||
            failed "expected the reason"
        [ "$(cat disk/picture.svg)" = "<!-- drawn by vorn-input -->" ] || failed "expected the old file as it was"
        run "$program" monitor --duration 20 --record disk/session
        expect_status 2
        grep -q "$reason" "$folder/err" || failed "expected the reason"
        [ ! -e disk/session ] || failed "expected nothing to be left"
        [ "$(ls disk)" = "more
picture.svg
rest" ] || failed "expected no other file"
        # Found out before anybody presses a key.
        mkdir fixed
        mount -t tmpfs -o ro none fixed
        run timeout 10 "$program" learn -o fixed/new.toml
        expect_status 2
        expect_line_on_stderr "vorn-input learn: fixed/new.toml cannot be written: Read-only file system; .*"
        run timeout 10 "$program" monitor --record fixed/session
        expect_status 2
        expect_line_on_stderr \
            "vorn-input monitor: cannot create the folder .fixed/session.: Read-only file system"
        finish' bash "$program" "$player" "$checks" >inner 2>&1 || {
        cat inner
        failures=$((failures + 1))
    }
else
    echo "SKIPPED: the full disk, as no file system can be mounted here"
fi
finish
