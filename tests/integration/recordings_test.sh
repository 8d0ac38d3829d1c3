#!/usr/bin/env bash
# The files of the recorded session agree with each other, and annotate.sh notices every difference
# from the expected session.
# usage: recordings_test.sh SOURCE_FOLDER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
recordings=$1/examples/player/recordings
expected=$1/tests/integration/session.expected
annotations=$recordings/session.annotations

# expect_made NAME ARGUMENT…: make-ioctl.sh writes the ioctl file of the device.
expect_made() {
    run "$recordings/make-ioctl.sh" "$@"
    expect_status 0
    expect_nothing_on_stderr
    cmp -s "$folder/out" "$recordings/$1.ioctl" || failed "expected the content of $1.ioctl"
}
expect_made front-panel 25 key
expect_made ir-receiver 24 key
expect_made hostlink 6 key
expect_made front-panel-jacks 25 switch

run "$recordings/make-ioctl.sh" mouse 3 wheel
expect_status 2
expect_line_on_stderr "make-ioctl\.sh: unknown event type 'wheel'"

# annotate FILE: explains its lines.
annotate() {
    # shellcheck disable=SC2016 # for the inner shell
    run sh -c '"$1" "$2" <"$3"' sh "$recordings/annotate.sh" "$annotations" "$1"
}

annotate "$expected"
expect_status 0
expect_nothing_on_stderr
grep -q 'SwitchDisabled, bus=LocalUI\]  *switch: its position at the start' "$folder/out" \
    || failed 'expected an explanation beside the event'

sed 's/^\[/   1.234 [/' "$expected" >"$folder/timed"
annotate "$folder/timed"
expect_status 0

sed '$d' "$expected" >"$folder/short"
annotate "$folder/short"
expect_status 1
grep -q 'expected but missing' "$folder/out" || failed 'expected the missing line'

sed '5s/Info/Mute/' "$expected" >"$folder/changed"
annotate "$folder/changed"
expect_status 1
grep -q 'cmd=Mute.*not expected here' "$folder/out" || failed 'expected the unexpected line'

{ cat "$expected" && echo '[cmd=Mute, state=KeyPressed]'; } >"$folder/long"
annotate "$folder/long"
expect_status 1
grep -q 'cmd=Mute.*not expected here' "$folder/out" || failed 'expected the unexpected line'

: >"$folder/empty"
annotate "$folder/empty"
expect_status 1

# expect_stamps NOW: every record of a replay that starts at NOW is stamped with NOW plus its time
# in the session, in a form that umockdev reads correctly.
expect_stamps() {
    NOW=$1 KEEP=$folder PATH=$folder/bin:$PATH run "$recordings/replay.sh" player
    expect_status 0
    local devices=(front-panel ir-receiver hostlink front-panel-jacks) i
    for i in "${!devices[@]}"; do
        grep '^E:' "$recordings/${devices[i]}.evemu" | paste -d ' ' - "$folder/event$i.evemu" \
            | awk -v now="$1" '
                function microseconds(stamp, part) {
                    split(stamp, part, ".")
                    return (part[1] - 1795000000) * 1000000 + part[2]
                }
                {
                    split($7, stamp, ".")
                    offset = microseconds($2) - microseconds("0.000000")
                    if (microseconds($7) != microseconds(now) + offset)
                        wrong = wrong " " $7 " for " $2
                    if (stamp[1] % 256 == 32 || stamp[2] ~ /^0/)
                        wrong = wrong " " $7
                }
                END {
                    if (NR < 3)
                        wrong = wrong " few records"
                    if (wrong) {
                        print wrong
                        exit 1
                    }
                }' || failed "expected other stamps in ${devices[i]}.evemu"
    done
}
mkdir "$folder/bin"
cat >"$folder/bin/date" <<'END'
#!/bin/sh
echo "$NOW"
END
cat >"$folder/bin/umockdev-run" <<'END'
#!/bin/sh
while [ "$1" != -- ]; do
    case $1 in
    *.evemu) cp "${1#*=}" "$KEEP" ;;
    esac
    shift
done
END
chmod +x "$folder/bin/date" "$folder/bin/umockdev-run"
# 1795246880 is a second that ends in 0x20.
for now in 1795246800.500000 1795246800.000000 1795246800.099999 1795246800.950000 \
    1795246870.300000 1795246875.999999 1795246880.050000 1795246881.000001; do
    expect_stamps "$now"
done

run "$recordings/replay.sh"
expect_status 2
expect_out ''

finish
