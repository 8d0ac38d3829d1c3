#!/usr/bin/env bash
# Checks formatting, code and scripts, the way CI does.
set -euo pipefail

usage='usage: lint.sh [--quick] [--all] [--fix] [--help]

Installs missing packages and checks the formatting (clang-format), the code (cppcheck; clang-tidy and
clazy, on the default build, which it makes first) and the scripts (shellcheck, pyflakes). The status is
0 if there is nothing to report.

clang-tidy checks the sources that changed since the commit in scripts/lint-baseline, which passed
completely, and those that include a header that changed since; clazy those of them in src and examples.
Where that commit is unknown, they check every source.

--quick Only what needs no build: formatting, cppcheck, scripts; takes seconds, so run it before each
        commit.
--all   Check every source: weekly and before a release. After a clean run on a clean checkout, record
        it with: git rev-parse HEAD >scripts/lint-baseline
--fix   Format the sources instead of checking their formatting.
--help  Print this text.'

format=(--dry-run -Werror)
all=no
quick=no
for option in "$@"; do
    case $option in
    --quick) quick=yes ;;
    --all) all=yes ;;
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

# All files of a kind outside the build folder, committed or not.
files() { find src tests examples bench -type f -name "$1" | LC_ALL=C sort; }
status=0

# took STAGE START: prints the seconds of a stage that began at the second START of this run.
took() { echo "$1: $((SECONDS - $2)) s"; }

mapfile -t cpp < <(files '*.cpp')
mapfile -t headers < <(files '*.h')
clang-format "${format[@]}" "${cpp[@]}" "${headers[@]}" || status=1
took formatting 0

start=$SECONDS
mapfile -t scripts < <({ find scripts src tests examples bench -type f -name '*.sh'; echo .ci/run
    echo tests/vm/guest/init; } | LC_ALL=C sort)
shellcheck -x "${scripts[@]}" || status=1
mapfile -t scripts < <({ files '*.py'; find scripts docs/site -type f -name '*.py'; })
pyflakes3 "${scripts[@]}" || status=1
took scripts "$start"

start=$SECONDS
# Only what ships: it does not parse the user-defined literals of the tests.
cppcheck --quiet --error-exitcode=1 --enable=warning,performance,portability --std=c++17 \
    --library=qt --library=googletest --inline-suppr --suppress=missingIncludeSystem \
    --suppressions-list=scripts/lib/cppcheck-suppressions -DQ_OBJECT= -Isrc/lib/input \
    -Isrc/api/core src examples || status=1
took cppcheck "$start"

# finish: the last line and the exit status.
finish() {
    [ "$status" -eq 0 ] || echo "lint.sh: the checks found something, see above" >&2
    exit "$status"
}
[ "$quick" = no ] || finish

mkdir -p build/logs build/lint
changed=build/lint/changed
baseline=$(cat scripts/lint-baseline 2>/dev/null || true)
if [ "$all" = no ] && ! git cat-file -e "$baseline^{commit}" 2>/dev/null; then
    echo "No commit '$baseline' here to compare with: checking every source."
    all=yes
fi
if [ "$all" = no ]; then
    { git diff --name-only "$baseline" -- && git ls-files --others --exclude-standard; } >"$changed"
    if grep -q -x .clang-tidy "$changed"; then
        echo ".clang-tidy changed: checking every source."
        all=yes
    fi
fi
# The benchmarks are part of the build only where one is to be checked.
bench=OFF
if [ "$all" = yes ] || grep -q '^bench/' "$changed"; then
    scripts/install-packages.sh "${bench_packages[@]}"
    bench=ON
fi
start=$SECONDS
log=build/logs/lint-build.log
if ! { cmake --preset ci "-DVORN_INPUT_BUILD_BENCH=$bench" && cmake --build --preset ci; } \
    >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "lint.sh: the build failed, see $log" >&2
    exit 1
fi
took "ci build" "$start"
# Clang cannot read what GCC has precompiled.
sed 's| -Winvalid-pch -include [^ ]*/cmake_pch\.hxx||' build/ci/compile_commands.json \
    >build/lint/compile_commands.json

# Ninja knows what each source includes: "source<tab>file" for the files of this project.
ninja -C build/ci -t deps | awk -v root="$PWD/" '
    !/^ / { source = ""; next }
    {
        sub(/^ +/, "")
        if (!source)
            source = substr($0, length(root) + 1)
        if (index($0, root) == 1)
            print source "\t" substr($0, length(root) + 1)
    }' | grep -v '^build/' >build/lint/includes
mapfile -t compiled < <(cut -f 1 build/lint/includes | LC_ALL=C sort -u)
if [ "$all" = yes ]; then
    checked=("${compiled[@]}")
else
    mapfile -t checked < <(awk -F '\t' '
        FILENAME == ARGV[1] { changed[$0]; next }
        $2 in changed { print $1 }' "$changed" build/lint/includes | LC_ALL=C sort -u)
fi
# Some examples are built only against an installation, so they get one.
installed=()
for folder in examples/*/CMakeLists.txt; do
    folder=${folder%/*}
    grep -q "^$folder/" build/lint/includes || installed+=("$folder")
done
mapfile -t -O "${#compiled[@]}" compiled < <(find "${installed[@]}" -name '*.cpp')
if [ "$all" = yes ] || grep -q '^examples/' "$changed"; then
    start=$SECONDS
    log=build/logs/lint-examples.log
    databases=(build/lint/compile_commands.json)
    scripts/install-packages.sh "${example_packages[@]}"
    cmake --install build/ci --prefix build/lint/prefix >"$log"
    for folder in "${installed[@]}"; do
        if ! { cmake -S "$folder" -B "build/lint/$folder" -G Ninja -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
            "-DCMAKE_PREFIX_PATH=$PWD/build/lint/prefix" && cmake --build "build/lint/$folder"; } \
            >>"$log" 2>&1; then
            tail -n 60 "$log"
            echo "lint.sh: $folder cannot be built, see $log" >&2
            exit 1
        fi
        databases+=("build/lint/$folder/compile_commands.json")
        mapfile -t -O "${#checked[@]}" checked < <(find "$folder" -name '*.cpp' | LC_ALL=C sort)
    done
    jq -s add "${databases[@]}" >build/lint/all.json
    mv build/lint/all.json build/lint/compile_commands.json
    took "examples, built by themselves" "$start"
fi
# A source that no target lists cannot be checked.
comm -23 <(printf '%s\n' "${cpp[@]}") <(printf '%s\n' "${compiled[@]}" | LC_ALL=C sort) |
    grep -v -E "^tests/package/(consumer|time64)|^tests/support/EmulatedExec$([ "$bench" = ON ] || echo '|^bench/')" |
    sed 's/$/: not compiled, not checked/' || true
start=$SECONDS
log=build/logs/clang-tidy.log
if [ "${#checked[@]}" -gt 0 ] && ! printf '%s\0' "${checked[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/lint --quiet >"$log" 2>&1; then
    grep -E -A 4 '(error|warning):' "$log" | head -n 200
    status=1
fi
took "clang-tidy, ${#checked[@]} of ${#compiled[@]} sources" "$start"

start=$SECONDS
log=build/logs/clazy.log
mapfile -t checked < <(printf '%s\n' "${checked[@]}" | grep -E '^(src|examples)/' || true)
# The names of slots are fixed by the interface, and each source's logger is made when it is loaded.
checks=level0,level1,qstring-arg,no-connect-by-name,no-non-pod-global-static
if [ "${#checked[@]}" -gt 0 ] && ! printf '%s\0' "${checked[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clazy-standalone -p build/lint -checks="$checks" \
        --header-filter='.*/(src|examples)/.*' >"$log" 2>&1; then
    grep -E -A 4 '(error|warning):' "$log" | head -n 200
    status=1
fi
took "clazy, ${#checked[@]} sources" "$start"

finish
