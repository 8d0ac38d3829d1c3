#!/usr/bin/env bash
# Installs the named Debian packages that are not installed yet.
set -euo pipefail

usage='usage: install-packages.sh PACKAGE…

Installs those of the Debian packages that are missing, with sudo unless it runs as root. Says
nothing when none is missing.'

fail() {
    echo "install-packages.sh: $*" >&2
    exit 1
}

case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
'' | -*)
    echo "install-packages.sh: expected names of packages (see --help)" >&2
    exit 2
    ;;
esac

command -v dpkg-query >/dev/null || fail "no dpkg-query here; install what corresponds to: $*"

missing=()
for package in "$@"; do
    state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    # With several architectures of a package installed the states come without a separator.
    case $state in
    installed*) ;;
    *) missing+=("$package") ;;
    esac
done
if [ "${#missing[@]}" -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "neither root nor sudo, cannot install: ${missing[*]}"
    as_root=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
# apt_get ARGUMENT…: shows what it said only when it fails.
apt_get() {
    if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get "$@" >"$log" 2>&1; then
        cat "$log" >&2
        fail "apt-get $1 failed, still missing: ${missing[*]}"
    fi
}

echo "Installing ${missing[*]}" >&2
apt_get update
apt_get install -y --no-install-recommends "${missing[@]}"
