#!/usr/bin/env bash
# Usage: installed-references.sh BUILD_DIR
#
# Installs the build into a scratch prefix and checks that what is installed names no file of the
# checkout that is not installed, and that the examples work where they are installed.
set -euo pipefail

build=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
share=$prefix/share/vorn-input

fail() {
    echo "FAILED: $1"
    [ ! -f "$scratch/log" ] || cat "$scratch/log"
    exit 1
}

# texts FILE: what it says to people. A binary also names the sources that its log lines, assertions
# and debug symbols come from, which need not be there.
texts() {
    if grep -qI . "$1"; then
        cat "$1"
    else
        strings "$1" | sed -E 's#\b(build|src)/[A-Za-z0-9_/.+-]*##g'
    fi
}

# references FOLDER: each file of a checkout that a file below FOLDER names, beside that file.
references() {
    local file
    while IFS= read -r -d '' file; do
        texts "$file" | grep -oE '(^|[^A-Za-z0-9_/.<-])(\.\./)*(bench|cmake|docs|examples|packaging|scripts|share|src|tests)/[A-Za-z0-9_][A-Za-z0-9_/.*-]*|[A-Za-z0-9_][A-Za-z0-9_-]*\.(md|sh)\b' |
            sed -E "s#^[^A-Za-z0-9_.]##; s#\.\$##; s#^#$file #" || true
    done < <(find "$1" -type f -print0) | sort -u
}

# is_installed NAME: whether the installation has it, below its prefix or beside the schema, or a
# script or document of that name.
is_installed() {
    case $1 in
    */*) [ -e "$prefix/$1" ] || [ -e "$share/$1" ] ;;
    *) [ -n "$(find "$prefix" -name "$1")" ] ;;
    esac
}

cmake --install "$build" --prefix "$prefix" >/dev/null
count=0
missing=()
while read -r file name; do
    count=$((count + 1))
    is_installed "$name" || missing+=("${file#"$prefix/"} names $name")
done < <(references "$prefix")
[ "${#missing[@]}" -eq 0 ] || fail "not installed:
$(printf '%s\n' "${missing[@]}")"

# So that the search is known to find something.
[ "$count" -ge 2 ] || fail "only $count references found, so the search is blind"
mkdir "$scratch/planted"
printf 'see docs/nowhere.md, or run (examples/player/nowhere.sh).\n' >"$scratch/planted/text"
printf '\0\1\2 run tests/nowhere \0 src/lib/input/Input.cpp \0' >"$scratch/planted/binary"
found=$(references "$scratch/planted" | awk '{ print $2 }' | sort | tr '\n' ' ')
[ "$found" = 'docs/nowhere.md examples/player/nowhere.sh tests/nowhere ' ] ||
    fail "of what was planted, it found: $found"

[ -x "$prefix/bin/vorn-input" ] || { echo "$count references"; exit 0; }
cd "$share/examples"
tool=$prefix/bin/vorn-input
"$tool" check --strict player.toml >"$scratch/log" 2>&1 || fail "the installed profile is wrong"
"$tool" simulate --quiet ./*.scenario recording/session.umockdev >"$scratch/log" 2>&1 ||
    fail "the installed scenarios fail"
schema=$(sed -n 's/^#:schema //p' player.toml)
[ -f "$schema" ] || fail "the profile's schema is not there: $schema"
[ -x recording/replay.sh ] || fail "the recording cannot be replayed"
# Without devices it says where the recorded ones are.
# shellcheck disable=SC2016 # for the inner shell
advice=$(unshare -rm sh -c 'mount -t tmpfs none /dev/input && exec "$1" devices' - "$tool" 2>&1) ||
    advice=$("$tool" devices 2>&1)
case $advice in
*'no input devices'*)
    script=$(sed -n "s/.*run '\([^ ]*\) vorn-input devices'.*/\1/p" <<<"$advice")
    [ -x "$script" ] || fail "it advises what is not there: $advice"
    ;;
esac
echo "$count references, all installed"
