#!/usr/bin/env bash
# Prints each line of its input as it arrives, with its explanation.
set -euo pipefail

usage='usage: annotate.sh ANNOTATIONS

Reads the output of the player, with or without --timestamps, and prints it with explanations.
ANNOTATIONS holds the expected lines in order, each as "line | explanation"; lines that start with #
are comments. Exits with status 1 if the output differs from what was expected.'

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

dim='' alarm='' plain=''
if [ -t 1 ]; then
    dim=$'\e[2m' alarm=$'\e[1;31m' plain=$'\e[0m'
fi

# explain TIME LINE EXPLANATION: prints it beside the line, or below a long line.
explain() {
    if [ "${#2}" -le 52 ]; then
        printf '%8s  %-52s  %s\n' "$1" "$2" "$dim$3$plain"
    else
        printf '%8s  %s\n%8s  %-52s  %s\n' "$1" "$2" '' '' "$dim$3$plain"
    fi
}

expected=() explanations=()
while IFS= read -r annotation; do
    case $annotation in
    '' | '#'*) continue ;;
    *' | '*) ;;
    *)
        echo "annotate.sh: no explanation in '$1': $annotation" >&2
        exit 2
        ;;
    esac
    line=${annotation%%|*}
    expected+=("${line%"${line##*[! ]}"}")
    explanations+=("${annotation#*| }")
done <"$1"

status=0
next=0
while IFS= read -r line || [ -n "$line" ]; do
    time=''
    if [[ $line =~ ^\ *([0-9]+\.[0-9]+)\ (.*)$ ]]; then
        time=${BASH_REMATCH[1]} line=${BASH_REMATCH[2]}
    fi
    if [ "$next" -lt "${#expected[@]}" ] && [ "$line" = "${expected[next]}" ]; then
        explain "$time" "$line" "${explanations[next]}"
        next=$((next + 1))
    else
        printf '%8s  %-52s  %s\n' "$time" "$line" "${alarm}not expected here$plain"
        status=1
    fi
done
for ((; next < ${#expected[@]}; ++next)); do
    printf '%8s  %-52s  %s\n' '' "${expected[next]}" "${alarm}expected but missing$plain"
    status=1
done
exit "$status"
