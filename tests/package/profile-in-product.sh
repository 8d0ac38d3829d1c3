#!/usr/bin/env bash
# Usage: profile-in-product.sh BUILD_DIR CONSUMERS CXX [SANITIZERS]
#
# Installs the build into a scratch prefix and builds products against it: one that reads its key map,
# with CMake and with pkg-config, and one that has it compiled in, which is built again after each
# kind of change to it.
set -euo pipefail

build=$1 consumers=$2 cxx=$3 sanitize=${4:-}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
flags=()
[ -z "$sanitize" ] || flags=("-fsanitize=$sanitize")

fail() {
    echo "FAILED: $1"
    [ ! -f "$scratch/log" ] || cat "$scratch/log"
    exit 1
}

cmake --install "$build" --prefix "$prefix" >/dev/null
# It has a suffix in builds with another Qt than Qt 5.
package=$(basename "$(find "$prefix" -name 'vorn_input*Config.cmake')" Config.cmake)
suffix=${package#vorn_input}
for header in ProfileReader.h Profile.h ProfileData.h ProfileInputHandler.h Diagnostic.h; do
    [ -f "$prefix/include/vorn/profile/$header" ] || fail "not installed: vorn/profile/$header"
done

# configure CONSUMER FOLDER [OPTION…]
configure() {
    local consumer=$1 folder=$2
    shift 2
    cmake -S "$consumer" -B "$folder" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DVORN_PACKAGE="$package" -DCMAKE_CXX_COMPILER="$cxx" \
        -DCMAKE_CXX_FLAGS="${flags[*]:-} -Wall -Wextra -Wpedantic -Werror" \
        "$@" >"$scratch/log" 2>&1
}

make() { cmake --build "$scratch/compiled" >"$scratch/log" 2>&1; }

# What reads its key map.
printf '[[device]]\n[device.handler.keys]\nKEY_MUTE = { command = "Mute", immediate = true }\n' \
    >"$scratch/panel.toml"
configure "$consumers/consumer-profile" "$scratch/cmake" || fail "a product cannot be configured"
cmake --build "$scratch/cmake" >"$scratch/log" 2>&1 || fail "a product cannot be built"
"$scratch/cmake/consumer-profile" "$scratch/panel.toml" 2>/dev/null || fail "it has no key map: $?"
echo 'KEY_OK = "Conf"' >>"$scratch/panel.toml"
"$scratch/cmake/consumer-profile" "$scratch/panel.toml" >"$scratch/log" && fail "a mistake is accepted"
grep -q ':4:10: error: unknown command' "$scratch/log" || fail "expected the place of the mistake"
sed -i '$d' "$scratch/panel.toml"

pc=$(dirname "$(find "$prefix" -name "vorn_profile$suffix.pc")")
read -ra options < <(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs "vorn_profile$suffix")
"$cxx" -std=c++17 -fPIC "${flags[@]}" "$consumers/consumer-profile/main.cpp" "${options[@]}" \
    -Wl,-rpath-link,"$(dirname "$pc")" -o "$scratch/consumer"
LD_LIBRARY_PATH=$(dirname "$pc") "$scratch/consumer" "$scratch/panel.toml" 2>/dev/null ||
    fail "it has no key map with pkg-config: $?"

# What has it compiled in. The profile will be edited.
tool=$prefix/bin/vorn-input$suffix
[ -x "$tool" ] || exit 0
product=$scratch/product
cp -R "$consumers/consumer-compiled" "$product"
configure "$product" "$scratch/compiled" || fail "a product with a key map cannot be configured"
make || fail "a product with a key map cannot be built"
[ "$("$scratch/compiled/consumer-compiled" 2>/dev/null)" = 'key 113 means 18' ] ||
    fail "it has another key map: $("$scratch/compiled/consumer-compiled")"
needed=$(readelf -d "$scratch/compiled/consumer-compiled")
for library in evdev vorn_profile; do
    ! grep -q "NEEDED.*lib$library" <<<"$needed" || fail "it needs lib$library"
done
! grep -q 'toml::' <<<"$(nm -C "$scratch/compiled/consumer-compiled")" || fail "it has a reader"

# is_compiled_by COMMAND…: whether a build compiles the key map after the command.
is_compiled_by() {
    "$@"
    make || fail "it cannot be built again after: $*"
    grep -q 'Building CXX.*keys\.cpp' "$scratch/log"
}

# later: the times of files may have no more than seconds.
later() { touch -d "$1 seconds" "$product/keys.toml"; }
comment() { sed -i '1i # Only a comment.' "$product/keys.toml" && later 10; }
change() { sed -i 's/Mute"/Stop"/' "$product/keys.toml" && later 20; }
! is_compiled_by true || fail "an unchanged key map is compiled again"
grep -q 'no work to do' "$scratch/log" || fail "expected no work without a change"
! is_compiled_by comment || fail "a key map with a new comment is compiled again"
make || fail "it cannot be built again"
grep -q 'no work to do' "$scratch/log" || fail "expected no work after a comment"
is_compiled_by change || fail "a changed key map is not compiled"
[ "$("$scratch/compiled/consumer-compiled" 2>/dev/null)" = 'key 113 means 11' ] ||
    fail "the change does not show"

# A mistake stops the build, and a warning that of a strict key map.
cp "$consumers/consumer-compiled/keys.toml" "$product/keys.toml"
sed -i 's/^KEY_MUTE/KEY_MUTT/' "$product/keys.toml" && later 30
! make || fail "a mistake does not stop the build"
grep -q "keys\.toml:3:1: error: unknown key 'KEY_MUTT', did you mean 'KEY_MUTE'?" "$scratch/log" ||
    fail "expected the place of the mistake"
sed -i 's/^KEY_MUTT.*/KEY_MUTE = "None"/' "$product/keys.toml" && later 40
! make || fail "a warning does not stop the strict build"
grep -q 'keys\.toml:3:.*: warning: ' "$scratch/log" || fail "expected the warning"

# refused PATTERN [OPTION…]: the product cannot be configured, and is told why.
refused() {
    local pattern=$1
    shift
    rm -rf "$scratch/refused"
    ! configure "$product" "$scratch/refused" "$@" || fail "configured with $*"
    tr -s ' \n' ' ' <"$scratch/log" | grep -q "$pattern" || fail "expected: $pattern"
}
refused 'cannot run /bin/false: ' -DVORN_INPUT_TOOL=/bin/false
printf '#!/bin/sh\necho vorn-input 0.9.0\n' >"$scratch/old" && chmod +x "$scratch/old"
refused "needs vorn-input .*, and $scratch/old is 'vorn-input 0.9.0'" \
    -DVORN_INPUT_TOOL="$scratch/old"
mv "$tool" "$scratch/tool"
# Nor is one found that is installed here.
refused 'needs the program vorn-input on this machine' -DCMAKE_IGNORE_PATH="${PATH//:/;}" \
    -DCMAKE_MAKE_PROGRAM="$(command -v ninja)"
mv "$scratch/tool" "$tool"
echo 'vorn_add_profile(consumer-compiled)' >>"$product/CMakeLists.txt"
refused 'name a profile'
sed -i '$c vorn_add_profile(nothing keys.toml)' "$product/CMakeLists.txt"
refused "there is no target 'nothing'"
sed -i '$c vorn_add_profile(consumer-compiled a.toml b.toml NAME c)' "$product/CMakeLists.txt"
refused 'NAME takes the name of a single profile'
echo "PASSED"
