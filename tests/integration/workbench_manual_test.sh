#!/usr/bin/env bash
# The manual knows the same commands and options as the program.
# usage: workbench_manual_test.sh SOURCE PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 program=$2
manual=$source/docs/man/vorn-input.1.scd
description='manual' status=0
: >"$folder/out"
: >"$folder/err"

# Names of options in a text, sorted; none is no error.
options() { grep -o -E -e '(^|[^a-z-])--?[a-z][a-z-]*' | grep -o -E -e '-.*' | sort -u || true; }

# help_options [COMMAND]: those of the program's help, where they begin their lines. Every command
# has --help; the manual explains it once.
help_options() {
    "$program" "$@" --help | grep -o -E '^ +(-[a-z],)?--[a-z-]+' | options |
        grep -v -x -E -e "${1:+--help|}-h" || true
}

# section TITLE
section() { sed -n "/^# $1\$/,/^# /p" "$manual"; }

# same NAME EXPECTED FOUND
same() {
    [ -n "$2" ] || failed "$1: no options in the help"
    [ "$2" = "$3" ] || failed "$1 has ${3//$'\n'/ }, the program ${2//$'\n'/ }"
}

same 'common options' "$(help_options)" "$(section 'COMMON OPTIONS' | grep '^\*-' | options)"

commands=$("$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
[ "$(wc -w <<<"$commands")" -ge 6 ] || failed "no commands in the help"
for command in $commands; do
    # It has none of its own.
    [ "$command" != help ] || continue
    expected=$(help_options "$command")
    same "$command" "$expected" "$(section "${command^^}" | grep '^\*-' | options)"
    # The synopsis has one name of each option.
    synopsis=$(section "${command^^}" | sed -n '/^\*vorn-input /,/^$/p')
    while read -r names; do
        [ -n "$(comm -12 <(options <<<"$names") <(options <<<"$synopsis"))" ] ||
            failed "$command: its synopsis lacks $names"
    done < <("$program" "$command" --help | grep -o -E '^ +(-[a-z],)?--[a-z-]+' | grep -v -e --help)
done

if command -v scdoc >/dev/null; then
    scdoc <"$manual" >"$folder/vorn-input.1" || failed "the manual cannot be made"
fi
finish
