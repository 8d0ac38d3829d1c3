#!/usr/bin/env bash
# The walk through the workbench does what its document says.
# usage: workbench_walk_test.sh SOURCE BUILD
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 build=$2
command -v umockdev-run >/dev/null || skip "umockdev-run is missing"

# The document speaks of the release build.
# shellcheck disable=SC2016
sed "s#\$PWD/build/release#$build#" "$source/docs/workbench.md" >"$folder/workbench.md"
grep -q -F "$build/src/tools" "$folder/workbench.md"
TMPDIR=$folder python3 "$source/tests/integration/walk.py" "$folder/workbench.md" "$source"

# The picture in the document is the one that the walk draws.
cmp "$folder"/*/stop.svg "$source/docs/pictures/stop.svg"
