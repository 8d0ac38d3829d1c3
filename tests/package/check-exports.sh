#!/usr/bin/env bash
# Usage: check-exports.sh LIBVORN_INPUT LIBVORN_API [LIBVORN_PROFILE]
#
# Checks that every strong symbol a library exports belongs to a class or function of its interface,
# and that the functions the maker's library or a test replaces are called through the symbol table.
set -euo pipefail

input=$1 api=$2 profile=${3:-}
fail=0
# Excludes symbols added by sanitizers.
strong() { nm -DC --defined-only "$1" | sed -n '/__odr_asan/d; s/^[0-9a-f]* [TDBR] //p'; }

unexpected=$(strong "$input" | sed -E 's/^(vtable|typeinfo( name)?|VTT) for //' |
    grep -vE '^(InputEvent|Input|InputHandler|LinuxInputListener|LongPressDetect|DoubleKeyDetect|BasicKeyInputHandler|BasicSwInputHandler|BasicInputHandler)(::|$)' |
    grep -vE '^operator<<\(std::ostream&, input_event const&\)$' || true)
if [ -n "$unexpected" ]; then
    printf 'exported by %s without being part of its interface:\n%s\n' "$input" "$unexpected"
    fail=1
fi
# Whoever links it counts on each of its functions. Tables of classes are weak or strong as the
# optimiser likes it.
if ! changed=$(diff "$(dirname "${BASH_SOURCE[0]}")/vorn_input.exports" \
    <(strong "$input" | grep -vE '^(vtable|typeinfo( name)?|VTT) for ' | LC_ALL=C sort -u)); then
    printf 'what %s exports has changed:\n%s\n' "$input" "$changed"
    fail=1
fi
unexpected=$(strong "$api" |
    grep -vE '^(Profiler::|dbglog_scopedFunction|operator<<\(std::ostream&, QString const&\)$)' || true)
if [ -n "$unexpected" ]; then
    printf 'exported by %s without being part of its interface:\n%s\n' "$api" "$unexpected"
    fail=1
fi
if [ -n "$profile" ]; then
    unexpected=$(strong "$profile" | sed -E 's/^(vtable|typeinfo( name)?|VTT) for //' |
        grep -vE '^ProfileInputHandler($|::(~?[a-zA-Z_]+\(|staticMetaObject$))' |
        grep -vE '^Vorn::(Profile::(deviceFor|identifiers)|Diagnostic::toString)\(' |
        grep -vE '^Vorn::(parseProfile|loadProfile|hasErrors|toProfile|operator==)\(' || true)
    if [ -n "$unexpected" ]; then
        printf 'exported by %s without being part of its interface:\n%s\n' "$profile" "$unexpected"
        fail=1
    fi
    for symbol in 'Vorn::loadProfile(QString const&)' 'Vorn::toProfile(Vorn::ProfileData const&)' \
        'ProfileInputHandler::setProfile'; do
        grep -qF "$symbol" <<<"$(strong "$profile")" ||
            { echo "$profile does not export $symbol"; fail=1; }
    done
fi
imported=$(nm -DC --undefined-only "$input")
exported=$(nm -DC --defined-only "$api")
for symbol in 'Profiler::instance()' 'Profiler::createWatcher(QString const&, QString const&)' \
    'Profiler::UIResponseWatcher()' 'Profiler::UIDrawEvent()' 'dbglog_scopedFunction' \
    'operator<<(std::ostream&, QString const&)'; do
    grep -qF "$symbol" <<<"$imported" ||
        { echo "$input does not import $symbol"; fail=1; }
    grep -qF "$symbol" <<<"$exported" ||
        { echo "$api does not export $symbol"; fail=1; }
done
exit "$fail"
