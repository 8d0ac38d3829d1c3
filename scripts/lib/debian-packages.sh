# Debian packages of any architecture, unpacked into folders and never installed; sourced by the
# scripts that need some. What they make is kept in a cache that all checkouts share.
# shellcheck shell=bash

# The folder that all of this is kept in. cmake/armhf-toolchain.cmake finds it the same way.
cache_folder() {
    local home=~
    echo "${VORN_INPUT_CACHE:-${XDG_CACHE_HOME:-$home/.cache}/vorn_input}"
}

# make_cached FOLDER RECIPE COMMAND…: has COMMAND fill FOLDER, whose name it appends to its
# arguments, unless that was done before with the same recipe. A folder is there whole or not at all.
make_cached() {
    local folder=$1 recipe=$2
    shift 2
    mkdir -p "$(dirname "$folder")"
    # Two runs at a time would fetch everything twice, and one would pull the other's folder away.
    exec 9>"$folder.lock"
    flock 9
    if [ "$(cat "$folder/.recipe" 2>/dev/null)" != "$recipe" ]; then
        rm -rf "$folder.new"
        mkdir "$folder.new"
        "$@" "$folder.new" || return
        echo "$recipe" >"$folder.new/.recipe"
        rm -rf "$folder"
        mv "$folder.new" "$folder"
    fi
    exec 9>&-
}

# Uses apt, on this machine's own sources, as if nothing were installed and ARCHITECTURE were the
# machine's: its state lives in STATE.
private_apt() {
    local state=$1 architecture=$2 command=$3
    shift 3
    "$command" -q \
        -o "APT::Architecture=$architecture" \
        -o "APT::Architectures::=$architecture" \
        -o "Dir::State=$state/state" \
        -o "Dir::State::status=$state/status" \
        -o "Dir::Cache=$state/cache" \
        -o "APT::Sandbox::User=$(id -un)" \
        -o "Acquire::Retries=3" \
        -o "Debug::NoLocking=true" \
        "$@"
}

# open_packages STATE ARCHITECTURE: reads the archive's list of packages. One of its sections may be
# out of step for a while when the archive is being renewed; the others will do then.
open_packages() {
    mkdir -p "$1/state/lists/partial" "$1/cache/archives/partial"
    : >"$1/status"
    private_apt "$1" "$2" apt-get update ||
        { sleep 5 && private_apt "$1" "$2" apt-get update; } ||
        echo "The list of packages is incomplete." >&2
}

# closure STATE ARCHITECTURE PACKAGE…: the packages and all that they depend on, one a line.
closure() {
    local state=$1 architecture=$2
    shift 2
    private_apt "$state" "$architecture" apt-get --simulate --no-install-recommends install "$@" |
        sed -n 's/^Inst \([^ ]*\) .*/\1/p'
}

# unpack STATE ARCHITECTURE FOLDER PACKAGE…: downloads the packages, and nothing that they depend
# on, and unpacks them into FOLDER.
unpack() {
    local state=$1 architecture=$2 folder=$3
    shift 3
    local packages=$state/packages
    mkdir -p "$packages"
    (cd "$packages" && private_apt "$state" "$architecture" apt-get download "$@") || return
    local package
    for package in "$packages"/*.deb; do
        dpkg -x "$package" "$folder" || return
        rm "$package"
    done
}
