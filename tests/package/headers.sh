#!/usr/bin/env bash
# Usage: headers.sh BUILD_DIR QT CXX…
#
# The installed headers are the public ones and no others. Each compiles by itself, with the folder
# "include" alone; all together with every compiler in C++17, 20 and 23.
set -euo pipefail

build=$1 qt=$2
shift 2
here=$(dirname "${BASH_SOURCE[0]}")
# shellcheck source=tests/package/strangers.sh
. "$here/strangers.sh"

prefix=$scratch/prefix
include=$prefix/include
for component in development sim; do
    quietly cmake --install "$build" --prefix "$prefix" --component "$component"
done
(cd "$include/vorn" && find . -type f -printf '%P\n' | LC_ALL=C sort) >"$scratch/log"
diff "$here/installed-headers.txt" "$scratch/log" >"$scratch/diff" ||
    fail "other headers are installed: $(cat "$scratch/diff")"

read -ra flags < <(pkg-config --cflags "Qt${qt}Core")
flags=("${flags[@]/#-I/-isystem}" -fPIC -fsyntax-only -DQT_NO_KEYWORDS -DQT_NO_CAST_FROM_ASCII
    -Wall -Wextra -Wpedantic -Wshadow -Werror -I "$include" -x c++)
mapfile -t headers <"$here/installed-headers.txt"
printf '#include <vorn/%s>\n' "${headers[@]}" "${headers[@]}" >"$scratch/all.cpp"
for header in "${headers[@]}"; do
    # Two libraries of one program may both have an Input.h, but not both guard it with INPUT_H.
    guard=$(sed -n 's/^#ifndef //p' "$include/vorn/$header" | head -n 1)
    [[ $guard == VORN_* ]] || fail "the guard of $header is $guard"
    echo "#include <vorn/$header>" >"$scratch/one.cpp"
    quietly "$1" -std=c++17 "${flags[@]}" "$scratch/one.cpp"
done
for compiler in "$@"; do
    for standard in 17 20 2b; do
        quietly "$compiler" "-std=c++$standard" "${flags[@]}" "$scratch/all.cpp"
    done
done

# A literal goes to the stream as it is: it does not become a QString first.
printf '#include <vorn/core/dbglog.h>\nvoid write(std::ostream &s) { s << "text"; }\n' \
    >"$scratch/one.cpp"
quietly "$1" -std=c++17 "${flags[@]}" "$scratch/one.cpp"
echo PASSED
