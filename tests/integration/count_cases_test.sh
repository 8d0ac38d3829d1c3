#!/usr/bin/env bash
# The cases of a test run are counted one by one, and what did not run is never counted as passed.
# usage: count_cases_test.sh SOURCE_FOLDER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
count=$1/scripts/lib/count_cases.py
reports=$folder/reports
mkdir "$reports"
touch -d '1 hour ago' "$folder/since"

# junit NAME STATUS [OUTPUT]: adds a test to ctest's report.
junit() { echo "<testcase name='$1' status='$2'><system-out>${3:-}</system-out></testcase>"; }

# report NAME CASE…: what GoogleTest reports of a suite.
report() {
    local name=$1
    shift
    echo "<testsuites><testsuite name='$name'>$*</testsuite></testsuites>" \
        >"$reports/${name//\//_}.xml"
}
good="<testcase name='Good' status='run' result='completed'/>"
bad="<testcase name='Bad' status='run' result='completed'><failure message='no'/></testcase>"
skipped="<testcase name='Odd' status='run' result='skipped'><skipped message='no device'/></testcase>"
disabled="<testcase name='Off' status='notrun' result='suppressed'/>"

# expect_counts COUNTS TEST…: what is printed for these tests of ctest.
expect_counts() {
    local expected=$1
    shift
    echo "<testsuite>$*</testsuite>" >"$folder/junit.xml"
    run "$count" "$folder/junit.xml" "$reports" "$folder/since"
    expect_status 0
    expect_nothing_on_stderr
    expect_out "$expected"
}

report Suite "$good" "$good"
expect_counts '2 0 0' "$(junit Suite run)"
expect_counts '3 1 0.FAILED script' "$(junit Suite run)" "$(junit plain run)" "$(junit script fail)"

report Prefix/Suite/0 "$good" "$bad"
expect_counts '1 1 0.FAILED Prefix/Suite/0\.Bad.no' "$(junit Prefix/Suite/0 fail)"

report Skips "$good" "$skipped" "$disabled"
expect_counts '1 0 2.SKIPPED Skips\.Odd: no device.SKIPPED Skips\.Off: disabled' \
    "$(junit Skips run)"
expect_counts '0 0 2.SKIPPED script: no umockdev-run.SKIPPED other: not run' \
    "$(junit script notrun 'SKIPPED: no umockdev-run')" "$(junit other notrun)"

# It crashed, so there is no report, or one of an earlier run.
expect_counts '0 1 0.FAILED Crashes' "$(junit Crashes fail)"
report Old "$good"
touch -d '2 hours ago' "$reports/Old.xml"
expect_counts '0 1 0.FAILED Old' "$(junit Old fail)"

# Every case passed, and then a leak was found.
expect_counts '2 1 0.FAILED Suite: after its last case' "$(junit Suite fail)"

expect_counts '0 0 0'

# ctest itself did not run.
rm "$folder/junit.xml"
run "$count" "$folder/junit.xml" "$reports" "$folder/since"
expect_status 1
finish
