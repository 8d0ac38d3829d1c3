#!/usr/bin/env bash
# Replays the recorded session to the player and compares its whole output, byte for byte.
# usage: session_test.sh SOURCE_FOLDER PLAYER
set -euo pipefail

source=$1
player=$2

if ! command -v umockdev-run >/dev/null; then
    echo "SKIPPED: no umockdev-run here (Debian package umockdev)"
    exit 77
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

status=0
"$source/examples/player/recordings/replay.sh" "$player" --duration 12 >"$folder/printed" 2>&1 \
    || status=$?
if [ "$status" -ne 0 ]; then
    cat "$folder/printed"
    echo "FAILED: status $status"
    exit 1
fi
diff -u --label expected "$source/tests/integration/session.expected" \
    --label printed "$folder/printed"
echo "PASSED: $(wc -l <"$folder/printed") lines"
