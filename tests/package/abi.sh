#!/usr/bin/env bash
# Usage: abi.sh ABI_DIR LIBRARY… [--record]
#
# Compares the binary interface of libraries that have debugging information with the recorded one,
# ABI_DIR/*.abi: names, signatures, and the layout of the classes that products derive from. With
# --record, writes a new baseline.
set -euo pipefail

here=$(dirname "${BASH_SOURCE[0]}")
# shellcheck source=tests/package/strangers.sh
. "$here/strangers.sh"

abi=$1
shift
record=no
# The types are the same on all architectures, but the baseline can describe one only.
if [ "$(uname -m)" != x86_64 ]; then
    echo "SKIPPED: the baseline is for x86_64, this is $(uname -m)"
    exit 77
fi
command -v abidw >/dev/null || fail "abidw is missing; install abigail-tools"
[ "${*: -1}" != --record ] || record=yes

for library in "$@"; do
    [ "$library" != --record ] || continue
    name=$(basename "$library")
    name=${name%%.so*}
    baseline=$abi/${name#lib}.abi
    description=$scratch/description.abi
    quietly abidw --suppressions "$abi/others.ini" --no-corpus-path --no-comp-dir-path --no-show-locs \
        --out-file "$description" "$library"
    grep -q 'class-decl name=' "$description" || fail "$library has no debugging information"
    if [ "$record" = yes ]; then
        cp "$description" "$baseline"
        continue
    fi
    # Additions, too: whoever makes them records them.
    abidiff "$baseline" "$description" >"$scratch/log" 2>&1 ||
        fail "the binary interface of $name has changed; docs/abi.md says what to do"
done
[ "$record" = yes ] || echo PASSED
