#!/usr/bin/env bash
# usage: long.sh SECONDS [TARGET…]
#
# Fuzzes each target, or the named ones, for SECONDS, and keeps what came of it in long-results.txt
# beside this script. What was found stays in build/fuzz/tests/fuzz/TARGET for the next time; inputs
# that fail are build/fuzz/tests/fuzz/TARGET-*: add them to the seeds, together with their fix.
set -euo pipefail

seconds=${1:?usage: long.sh SECONDS [TARGET…]}
shift
folder=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
results=$folder/long-results.txt
cd "$folder/../.."
targets=("$@")
[ $# -gt 0 ] || mapfile -t targets < <(ls tests/fuzz/corpus)
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]/#/vorn_fuzz_}" >/dev/null

failed=0
TIMEFORMAT='%U s of processor time'
touch "$results"
for target in "${targets[@]}"; do
    found=build/fuzz/tests/fuzz/$target
    # The clock of these is virtual, which libFuzzer's alarm must not see.
    case $target in
    key-handler | listener) timeout=0 ;;
    *) timeout=10 ;;
    esac
    status=ok
    {
        time build/fuzz/tests/fuzz/vorn_fuzz_"$target" "-max_total_time=$seconds" \
            "-timeout=$timeout" -rss_limit_mb=4096 -max_len=16384 -print_final_stats=1 \
            "-artifact_prefix=$found-" "$found" "tests/fuzz/corpus/$target" >"$found.log" 2>&1
    } 2>"$found.time" || status="FAILED, see $found.log"
    [ "$status" = ok ] || failed=1
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$found.log")
    memory=$(sed -n 's/^stat::peak_rss_mb: *//p' "$found.log")
    cover=$(grep -o 'cov: [0-9]*' "$found.log" | tail -n 1)
    sed -i "/^$target:/d" "$results"
    echo "$target: $(date -u +%F), $seconds s ($(cat "$found.time")), $runs runs, $cover," \
        "$memory MB, $status" | tee -a "$results"
done
sort -o "$results" "$results"
exit $failed
