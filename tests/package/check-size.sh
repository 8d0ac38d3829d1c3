#!/usr/bin/env bash
# Usage: check-size.sh LIBRARY BYTES
#
# Checks that the code and the data of a library, stripped, take no more than so many bytes.
set -euo pipefail

library=$1 limit=$2
stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT

strip -o "$stripped" "$library"
read -r text data < <(size "$stripped" | awk 'NR == 2 { print $1, $2 }')
echo "$(basename "$library"): $((text + data)) bytes of $limit, $text of code and $data of data"
[ "$((text + data))" -le "$limit" ]
