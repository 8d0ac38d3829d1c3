#!/usr/bin/env bash
# The walk through driving a program does what its document says.
# usage: drive_walk_test.sh SOURCE BUILD
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 build=$2
# The document speaks of the release build.
# shellcheck disable=SC2016
sed "s#\$PWD/build/release#$build#" "$source/docs/drive.md" >"$folder/drive.md"
grep -q -F "$build/src/tools" "$folder/drive.md"
TMPDIR=$folder python3 "$source/tests/integration/walk.py" "$folder/drive.md" "$source"
