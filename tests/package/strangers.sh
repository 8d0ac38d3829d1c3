# What the scripts that build strangers' projects share. Sourced by them. Each has a scratch folder,
# $scratch, that is removed when it ends.
# shellcheck shell=bash disable=SC2154

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# fail MESSAGE: ends the script with the message and what the last command printed.
fail() {
    echo "FAILED: $1"
    [ ! -f "$scratch/log" ] || cat "$scratch/log"
    exit 1
}

# quietly COMMAND…: shows what the command prints only if it fails, which ends the script.
quietly() { "$@" >"$scratch/log" 2>&1 || fail "$*"; }

# install_library FOLDER CMAKE-OPTION…: builds the library of the checkout $source in FOLDER/build,
# optimised as products ship it, and installs it into FOLDER/prefix.
install_library() {
    local folder=$1
    shift
    quietly cmake -S "$source" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DVORN_INPUT_BUILD_TOOLS=OFF -DVORN_INPUT_BUILD_TESTS=OFF -DVORN_INPUT_BUILD_EXAMPLES=OFF "$@"
    quietly cmake --build "$folder/build"
    quietly cmake --install "$folder/build" --prefix "$folder/prefix"
}

# build_with_cmake CONSUMER PREFIX CXX [CMAKE-OPTION…]: leaves the program in $scratch/with-cmake.
build_with_cmake() {
    local consumer=$1 prefix=$2 cxx=$3
    shift 3
    rm -rf "$scratch/with-cmake"
    quietly cmake -S "$consumer" -B "$scratch/with-cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$cxx" "$@"
    quietly cmake --build "$scratch/with-cmake"
}

# build_with_pkg_config SOURCE PREFIX CXX PACKAGE… -- [CXX-OPTION…]: leaves $scratch/with-pkg-config.
build_with_pkg_config() {
    local file=$1 prefix=$2 cxx=$3 packages=() options
    shift 3
    while [ "$1" != -- ]; do
        packages+=("$1")
        shift
    done
    shift
    PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name vorn_input.pc)")
    export PKG_CONFIG_PATH
    read -ra options < <(pkg-config --cflags --libs "${packages[@]}")
    quietly "$cxx" -std=c++17 -fPIC "$file" "$@" "${options[@]}" \
        "-Wl,-rpath,$(dirname "$PKG_CONFIG_PATH")" -o "$scratch/with-pkg-config"
}

# exports LIBRARY: the names of the symbols that it exports, sorted.
exports() { nm -D --defined-only "$1" | awk '{ print $3 }' | LC_ALL=C sort -u; }

# exports_what_is_listed MAP LIBRARY: a name in the map may have a * in it.
exports_what_is_listed() {
    local map=$1 library=$2 name
    local -a actual listed
    mapfile -t actual < <(exports "$library")
    mapfile -t listed < <(sed -n 's/^    \(_Z.*\);$/\1/p' "$map" | LC_ALL=C sort -u)
    [ "${#listed[@]}" -gt 0 ] || fail "nothing is listed in $map"
    for name in "${listed[@]}"; do
        # shellcheck disable=SC2254 # it is a pattern
        [ "$(for one in "${actual[@]}"; do case $one in $name) echo 1 ;; esac; done)" = 1 ] ||
            fail "$library does not export $(c++filt "$name"), which $map lists"
    done
    [ "${#actual[@]}" -eq "${#listed[@]}" ] ||
        fail "$library exports ${#actual[@]} symbols, $map lists ${#listed[@]}"
}
