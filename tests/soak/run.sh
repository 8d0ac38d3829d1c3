#!/usr/bin/env bash
# Uses a product for long, in minutes: 20 million records, 20,000 devices that come and go, and a day
# with one key an hour. Keeps what was measured in last-result.csv, and draws it for docs/testing.md.
# usage: run.sh [FOLDER_OF_THE_RELEASE_BUILD]
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$here/../..
build=${1:-$root/build/release}

cmake --build "$build" --target vorn_soak
"$build/tests/soak/vorn_soak" 20000000 20000 24 >"$here/last-result.csv.new"
mv "$here/last-result.csv.new" "$here/last-result.csv"

mkdir -p "$root/docs/soak"
# draw SERIES TITLE DIVISOR FILE
draw()
{
    gnuplot <<EOF
set terminal svg size 640,280 font "sans-serif,13" background "#ffffff"
set output "$root/docs/soak/$4"
set datafile separator ","
set border 3 linecolor rgb "#767676"
set tics nomirror textcolor rgb "#222222"
set grid ytics linecolor rgb "#dddddd"
set key outside top horizontal
set xlabel "$2"
set ylabel "MB"
set yrange [0:*]
plot "< grep '^$1,' '$here/last-result.csv'" using (\$2 / $3):(\$5 / 1e3) with lines linewidth 2 \
         linecolor rgb "#0072b2" title "resident memory", \
     "" using (\$2 / $3):(\$6 / 1e6) with lines linewidth 2 linecolor rgb "#d55e00" \
         title "allocated"
EOF
}
draw "records" "records, in millions" 1e6 records.svg
draw "plug cycles" "devices that came and went, in thousands" 1e3 plug-cycles.svg
