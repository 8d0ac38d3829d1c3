#!/usr/bin/env bash
# Checks the form of the sources, the way CI does.
set -euo pipefail

usage='usage: lint.sh [--all] [--fix] [--help]

Installs what is missing and checks the formatting (clang-format), the code (clang-tidy, on the
Debug build that it makes first) and the scripts (shellcheck, pyflakes). Ends with status 0 when there
is nothing to say.

--all   Checks the code of the tests and benchmarks as well, which takes some minutes more and is not
        done in CI: before a release, or when one of them needs a second opinion.
--fix   Formats the sources instead of checking their formatting.
--help  Prints this text.'

format=(--dry-run -Werror)
unchecked='^(tests|bench)/'
bench=OFF
for option in "$@"; do
    case $option in
    --all)
        unchecked='^$'
        bench=ON
        ;;
    --fix) format=(-i) ;;
    --help)
        echo "$usage"
        exit 0
        ;;
    *)
        echo "lint.sh: unknown option '$option' (see --help)" >&2
        exit 2
        ;;
    esac
done

cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh
scripts/install-packages.sh "${lint_packages[@]}"
[ "$bench" = OFF ] || scripts/install-packages.sh "${bench_packages[@]}"

# Every file below the project that is not built, whether or not it is committed yet.
sources() { find src tests examples bench -type f -name "$1" | LC_ALL=C sort; }
status=0

echo "== formatting"
mapfile -t cpp < <(sources '*.cpp')
mapfile -t headers < <(sources '*.h')
clang-format "${format[@]}" "${cpp[@]}" "${headers[@]}" || status=1

echo "== scripts"
mapfile -t scripts < <({ find scripts tests examples bench -type f -name '*.sh'; echo .ci/run
    echo tests/vm/guest/init; } | LC_ALL=C sort)
shellcheck -x "${scripts[@]}" || status=1
mapfile -t scripts < <(sources '*.py')
pyflakes3 "${scripts[@]}" || status=1

echo "== clang-tidy"
mkdir -p build/logs
log=build/logs/lint-build.log
if ! { cmake --preset ci "-DVORN_INPUT_BUILD_BENCH=$bench" && cmake --build --preset ci; } \
    >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "lint.sh: the build failed, see $log" >&2
    exit 1
fi
# Only what is compiled can be checked; a source that no target lists is named. Precompiled headers are
# left out: they are in the compiler's own form, and would hide that a file does not include what it
# uses.
mkdir -p build/lint
mapfile -t compiled < <(python3 -c '
import json, os, re
entries = json.load(open("build/ci/compile_commands.json"))
for entry in entries:
    entry["command"] = re.sub(r" -include \S*/cmake_pch\.hxx", "", entry["command"])
    print(os.path.relpath(entry["file"]))
json.dump(entries, open("build/lint/compile_commands.json", "w"))' |
    grep -v '^build/' | LC_ALL=C sort -u)
mapfile -t checked < <(printf '%s\n' "${compiled[@]}" | grep -v -E "$unchecked")
comm -23 <(printf '%s\n' "${cpp[@]}") <(printf '%s\n' "${compiled[@]}") |
    grep -v -E "^tests/package/consumer/$([ "$bench" = ON ] || echo '|^bench/')" | sed 's/$/: not compiled, not checked/' || true
log=build/logs/clang-tidy.log
if ! printf '%s\0' "${checked[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/lint --quiet >"$log" 2>&1; then
    grep -E -A 4 '(error|warning):' "$log" | head -n 200
    status=1
fi

[ "$status" -eq 0 ] || echo "lint.sh: the checks found something, see above" >&2
exit "$status"
