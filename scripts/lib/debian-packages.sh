# Debian packages of any architecture, unpacked into folders and never installed. Sourced by the
# scripts that need some; what they make is kept in a cache that all checkouts share.
# shellcheck shell=bash

# The cache. cmake/armhf-toolchain.cmake finds it the same way.
cache_folder() {
    local home=~
    echo "${VORN_INPUT_CACHE:-${XDG_CACHE_HOME:-$home/.cache}/vorn_input}"
}

# make_cached FOLDER RECIPE COMMAND…: has COMMAND fill FOLDER, whose name it gets as its last
# argument, unless that was done before with the same recipe. If COMMAND fails, so does the script,
# and FOLDER stays as it was.
make_cached() (
    folder=$1 recipe=$2
    shift 2
    mkdir -p "$(dirname "$folder")"
    # Two runs at once would fetch everything twice and remove each other's folder.
    exec 9>"$folder.lock"
    flock 9
    [ "$(cat "$folder/.recipe" 2>/dev/null)" != "$recipe" ] || exit 0
    trap 'rm -rf "$folder.new"' EXIT
    rm -rf "$folder.new"
    mkdir "$folder.new"
    "$@" "$folder.new"
    echo "$recipe" >"$folder.new/.recipe"
    rm -rf "$folder"
    mv "$folder.new" "$folder"
)

# unpack ARCHITECTURE FOLDER PACKAGES [ALONE]: unpacks PACKAGES with all their dependencies, and
# ALONE without any, into the empty FOLDER. Uses this machine's apt configuration and needs no
# privileges.
unpack() {
    local log
    "$(dirname "${BASH_SOURCE[0]}")/../install-packages.sh" mmdebstrap
    # An archive that is being updated may fail for a while, or in one of its sections only; the
    # other sections will do then.
    # shellcheck disable=SC2016 # for the inner shells
    if ! log=$(ALONE=${4:-} mmdebstrap --variant=extract --mode=chrootless --architectures="$1" \
        --skip=update --include="$3" \
        --setup-hook='
            export APT_CONFIG=$MMDEBSTRAP_APT_CONFIG
            echo "Dir::Etc \"/etc/apt\"; APT::Install-Recommends \"false\";" >>"$APT_CONFIG"
            apt-get update || { sleep 5 && apt-get update; } || echo "Some lists are missing."' \
        --extract-hook='
            export APT_CONFIG=$MMDEBSTRAP_APT_CONFIG
            [ -n "$ALONE" ] || exit 0
            cd "$1/tmp" && apt-get download $ALONE || exit
            for package in *.deb; do dpkg -x "$package" "$1" || exit; done' \
        '' "$2" - </dev/null 2>&1); then
        echo "$log" >&2
        echo "$(basename "$0"): the packages could not be fetched" >&2
        return 1
    fi
    rm -rf "${2:?}/dev" "$2/tmp"
}
