#!/usr/bin/env bash
# Measures how much flash memory the libraries take, and how much the loader has to do for them.
set -euo pipefail

usage='usage: footprint.sh BUILD ...

Prints CSV rows, without a header, on the libraries of each BUILD, a folder in which they are built:
size without symbols, size of its sections, and relocations by who processes them and when.

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
        echo "footprint.sh: $file is for '$machine', which is not known here" >&2
        return 1
        ;;
    esac

    "${prefix}strip" -o "$temporary/stripped" "$file"
    row "$subject" "$architecture" 'stripped size' byte "$(stat -c %s "$temporary/stripped")"
    read -r text data bss _ < <("${prefix}size" "$temporary/stripped" | tail -n 1)
    row "$subject" "$architecture" text byte "$text"
    row "$subject" "$architecture" data byte "$data"
    row "$subject" "$architecture" bss byte "$bss"

    # Those of the load address and those of a symbol are processed when the library is loaded,
    # those of calls when each function is called first.
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
            echo "footprint.sh: there is no $library; build it first" >&2
            exit 1
        fi
        measure "$library"
    done
done
