#!/usr/bin/env bash
# The manual and the completions of both shells know the same commands and options as the program.
# usage: workbench_manual_test.sh SOURCE PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 program=$2
completions=$source/packaging/completions
description='manual and completions' status=0
: >"$folder/out"
: >"$folder/err"

# Long options in a text, without those that every command has.
options() { grep -o -E -e '--[a-z][a-z-]+' | grep -v -x -E -e '--(help|log|color)' | sort -u; }

# same NAME EXPECTED FOUND
same() {
    [ "$2" = "$3" ] || failed "$1 has ${3//$'\n'/ }, the program ${2//$'\n'/ }"
}

bash_options() {
    COMP_WORDS=(vorn-input "$1" --) COMP_CWORD=2 COMPREPLY=()
    # shellcheck source=packaging/completions/vorn-input.bash
    . "$completions/vorn-input.bash"
    _vorn_input
    printf '%s\n' "${COMPREPLY[@]}"
}

for command in devices monitor learn check simulate timeline; do
    # In the help, options begin their lines.
    expected=$("$program" "$command" --help | sed -n '/^Options/,/^[A-Z][a-z]* *:$/p' |
        grep -o -E '^ +(-[a-z],)?--[a-z-]+' | options || true)
    [ -n "$expected" ] || failed "$command: no options in its help"
    same "bash: $command" "$expected" "$(bash_options "$command" | options || true)"
    same "zsh: $command" "$expected" "$(sed -n "/^ *$command)/,/;;/p" "$completions/_vorn-input" |
        options || true)"
    same "manual: $command" "$expected" "$(sed -n "/^# ${command^^}\$/,/^# /p" \
        "$source/docs/man/vorn-input.1.scd" | grep '^\*-' | options || true)"
done

if command -v scdoc >/dev/null; then
    scdoc <"$source/docs/man/vorn-input.1.scd" >"$folder/vorn-input.1" ||
        failed "the manual cannot be made"
fi
finish
