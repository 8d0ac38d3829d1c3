#!/usr/bin/env bash
# The files of examples/system, read by those that they are for.
# usage: system_files_test.sh SOURCE_FOLDER PLAYER VORN_INPUT
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
system=$1/examples/system player=$2 tool=$3
skipped=()

# The properties, in a product. Only the folder is another one here.
sed "s#/var/log/product#$folder#" "$system/product.properties" >"$folder/product.properties"
run "$tool" drive --virtual-time "$1/tests/scenarios/player-front-panel.scenario" -- \
    "$player" --config "$folder/product.properties"
expect_status 0
! grep -q 'log4cplus:' "$folder/out" "$folder/err" || failed "log4cplus does not like the properties"
log=$folder/product.log
for line in 'INFO  LinuxInputListener: Event device ' 'DEBUG LinuxInputListener: .*type: 1 code:' \
    'DEBUG KeyProcessing: Stored:' 'DEBUG Input: '; do
    grep -qE "^[0-9-]{10} [0-9:]{8},[0-9]{3} $line" "$log" || failed "there is no line '$line'"
done
! grep -q 'TRACE' "$log" || failed "there are lines of other levels"
run "$tool" explain "$log"
expect_status 0
grep -q 'FactoryReset' "$folder/out" || failed "the log does not explain what happened"

# The unit. The program is one that is here.
if command -v systemd-analyze >/dev/null; then
    unit=$folder/product.service
    sed 's#/usr/bin/product#/bin/true#' "$system/product.service" >"$unit"
    run systemd-analyze verify --man=no "$unit"
    expect_status 0
    expect_nothing_on_stderr
    run systemd-analyze security --offline=yes --threshold=15 --no-pager "$unit"
    expect_status 0
    echo 'DeviceAlow=char-input r' >>"$unit"
    run systemd-analyze verify --man=no "$unit"
    grep -q 'DeviceAlow' "$folder/err" || failed "a mistake in the unit is not noticed"
else
    skipped+=('systemd-analyze')
fi

# The rules, which no program checks but the one that applies them.
rules=/run/udev/rules.d
# shellcheck disable=SC2016 # for the inner shell
apply_rules() {
    unshare -rm bash -euc '
        mount -t tmpfs tmpfs /run && mkdir -p "$1" && cp "$2" "$1"
        udevadm test --action=add /devices/virtual/mem/null' - "$rules" "$1"
}
if command -v udevadm >/dev/null && unshare -rm true 2>/dev/null; then
    run apply_rules "$system/70-product-input.rules"
    expect_status 0
    grep -q "$rules/70-product-input.rules" "$folder/err" "$folder/out" || failed "the rules are not read"
    ! grep -E "70-product-input.rules:[0-9]+" "$folder/err" "$folder/out" || failed "the rules have mistakes"
    sed 's/GROUP=/GRUPPE=/' "$system/70-product-input.rules" >"$folder/70-product-input.rules"
    run apply_rules "$folder/70-product-input.rules"
    grep -qE '70-product-input.rules:[0-9]+' "$folder/err" "$folder/out" ||
        failed "a mistake in the rules is not noticed"
else
    skipped+=('udevadm')
fi

[ "$failures" -eq 0 ] || exit 1
[ "${#skipped[@]}" -eq 0 ] || skip "the rest passed, but these are missing here: ${skipped[*]}"
