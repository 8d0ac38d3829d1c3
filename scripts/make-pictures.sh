#!/usr/bin/env bash
# Draws the documentation's timing diagrams from the scenarios that it describes.
set -euo pipefail

usage='usage: make-pictures.sh PROGRAM [FOLDER]

Draws the pictures of docs/pictures, there or in FOLDER, with PROGRAM, a built vorn-input. The same
scenarios give the same pictures, byte for byte; a test compares them.

Example: scripts/make-pictures.sh build/dev/src/tools/vorn-input'

case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
'' | -*)
    echo "$usage" >&2
    exit 2
    ;;
esac

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
program=$(realpath "$1")
folder=$(realpath -m "${2:-$root/docs/pictures}")
mkdir -p "$folder"
cd "$root/tests/scenarios"
for scenario in arrival-while-held chord-after-long-press long-press-repeating; do
    "$program" simulate --quiet --timeline "$folder/$scenario.svg" "$scenario.scenario"
done
# Those that exist for their pictures only.
cd "$root/docs/pictures"
for scenario in *.scenario; do
    "$program" simulate --quiet --timeline "$folder/${scenario%.scenario}.svg" "$scenario"
done
# The one of the workbench tutorial, from the scenario that the reader writes there.
cd "$folder"
awk '/<<.END.$/ { inside = 1; next } $0 == "END" { inside = 0 } inside' \
    "$root/docs/workbench.md" >stop.scenario
cat >panel.toml <<'END'
[[device]]
name = "front-panel"

[device.handler.keys]
KEY_STOP = "Stop"

[device.handler.chords]
"KEY_STOP+KEY_PLAY" = "FactoryReset"
END
"$program" simulate --quiet --profile panel.toml --timeline stop.svg stop.scenario
rm stop.scenario panel.toml
