#!/usr/bin/env bash
# The site is written without a warning, which an undocumented parameter would be, and its links lead
# somewhere.
# usage: site_test.sh SOURCE BUILD
# shellcheck source=tests/integration/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../integration/checks.sh"

source=$1 build=$2
[ -f "$build/docs/Doxyfile" ] || skip "there is no target docs: it needs doxygen, mandoc, python3 and scdoc"
{
    cat "$build/docs/Doxyfile"
    echo "OUTPUT_DIRECTORY = \"$folder\""
} >"${folder:?}/Doxyfile"
run doxygen "$folder/Doxyfile"
expect_status 0
expect_nothing_on_stderr
run "$source/tests/docs/links_test.py" "$source" --site "$folder/html"
expect_status 0
finish
