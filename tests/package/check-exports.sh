#!/usr/bin/env bash
# Usage: check-exports.sh MAPS LIBVORN_INPUT LIBVORN_API [LIBVORN_PROFILE]
#
# Checks that each library exports what its map lists, no less and no more, and that the functions the
# maker's library or a test replaces are called through the symbol table.
set -euo pipefail

maps=$1 input=$2 api=$3 profile=${4:-}
# shellcheck source=tests/package/strangers.sh
. "$(dirname "${BASH_SOURCE[0]}")/strangers.sh"

exports_what_is_listed "$maps/vorn_input.map" "$input"
exports_what_is_listed "$maps/vorn_api.map" "$api"
[ -z "$profile" ] || exports_what_is_listed "$maps/vorn_profile.map" "$profile"
imported=$(nm -DC --undefined-only "$input")
exported=$(nm -DC --defined-only "$api")
for symbol in 'Profiler::instance()' 'Profiler::createWatcher(QString const&, QString const&)' \
    'Profiler::UIResponseWatcher()' 'Profiler::UIDrawEvent()' 'dbglog_scopedFunction' \
    'operator<<(std::ostream&, QString const&)'; do
    grep -qF "$symbol" <<<"$imported" ||
        fail "$input does not import $symbol"
    grep -qF "$symbol" <<<"$exported" ||
        fail "$api does not export $symbol"
done
