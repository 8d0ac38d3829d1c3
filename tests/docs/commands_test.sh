#!/usr/bin/env bash
# The commands in the pages by subject print what is shown below them.
# usage: commands_test.sh SOURCE PROGRAM
# shellcheck source=tests/integration/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../integration/checks.sh"

source=$1 program=$2
# The pages take a profile for granted.
cp "$source/tests/scenarios/profiles/panel.toml" "${folder:?}"
PATH=$(dirname "$program"):$PATH
mapfile -t pages < <(grep -l '^```console' "$source"/docs/pages/*.md)
[ "${#pages[@]}" -gt 0 ] || exit 1
for page in "${pages[@]}"; do
    run python3 "$source/tests/integration/walk.py" "$page" "$folder"
    expect_status 0
done
finish
