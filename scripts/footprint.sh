#!/usr/bin/env bash
# Measures the size of the libraries and the work they give the loader.
set -euo pipefail

usage='usage: footprint.sh BUILD ...

Prints CSV rows, without a header, for the libraries in each build folder BUILD: stripped size, size
of the sections, and relocations by when the loader processes them.

Columns: group, subject, stream, burst, parameter, figure, unit, median, low, high, runs.

Example: scripts/footprint.sh build/release build/armhf'

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

temporary=$(mktemp -d)
trap 'rm -r "$temporary"' EXIT

# row SUBJECT ARCHITECTURE FIGURE UNIT VALUE
row() { echo "footprint,$1,,,$2,$3,$4,$5,$5,$5,1"; }

# measure FILE: the rows of one library.
measure() {
    local file=$1 subject machine architecture prefix text data bss
    subject=$(basename "$file")
    machine=$(readelf -h "$file" | sed -n 's/^ *Machine: *//p')
    case $machine in
    *X86-64*) architecture=x86_64 prefix= ;;
    ARM) architecture=armhf prefix=arm-linux-gnueabihf- ;;
    *)
        echo "footprint.sh: $file: unknown machine '$machine'" >&2
        return 1
        ;;
    esac

    "${prefix}strip" -o "$temporary/stripped" "$file"
    row "$subject" "$architecture" 'stripped size' byte "$(stat -c %s "$temporary/stripped")"
    read -r text data bss _ < <("${prefix}size" "$temporary/stripped" | tail -n 1)
    row "$subject" "$architecture" text byte "$text"
    row "$subject" "$architecture" data byte "$data"
    row "$subject" "$architecture" bss byte "$bss"

    # Relative and symbol relocations are processed when the library is loaded, those of calls at
    # the first call of each function.
    "${prefix}readelf" -rW "$file" | grep -o 'R_[A-Z0-9_]*' >"$temporary/relocations"
    row "$subject" "$architecture" 'relative relocations' count \
        "$(grep -c '_RELATIVE$' "$temporary/relocations" || true)"
    row "$subject" "$architecture" 'symbol relocations' count \
        "$(grep -c -v -E '_(RELATIVE|JUMP_SLOT)$' "$temporary/relocations" || true)"
    row "$subject" "$architecture" 'call relocations' count \
        "$(grep -c '_JUMP_SLOT$' "$temporary/relocations" || true)"
}

for build in "$@"; do
    for library in "$build/src/lib/libvorn_input.so" "$build/src/api/libvorn_api.so"; do
        if [ ! -e "$library" ]; then
            echo "footprint.sh: $library is missing; build it first" >&2
            exit 1
        fi
        measure "$library"
    done
done
