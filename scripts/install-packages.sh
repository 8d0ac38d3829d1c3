#!/usr/bin/env bash
# Installs Debian packages that are missing.
set -euo pipefail

usage='usage: install-packages.sh PACKAGE…

Installs those of the Debian packages that are missing, with sudo unless run as root. Prints
nothing if none is missing. While another apt is at work, it waits, up to ten minutes.'

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
    echo "install-packages.sh: expected package names (see --help)" >&2
    exit 2
    ;;
esac

command -v dpkg-query >/dev/null || fail "no dpkg-query here; install the equivalents of: $*"

missing=()
for package in "$@"; do
    state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    # If several architectures of it are installed, their states follow each other directly.
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

lock_seconds=600
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# apt_get ARGUMENT…: shows the output only if it fails.
apt_get() {
    local waited=no
    until "${as_root[@]}" env LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        apt-get -o "DPkg::Lock::Timeout=$lock_seconds" "$@" >"$log" 2>&1; do
        # apt waits for dpkg's locks only, not for that of its own lists.
        if [ "$SECONDS" -ge "$lock_seconds" ] || ! grep -q '^E: Could not get lock' "$log"; then
            cat "$log" >&2
            fail "apt-get $1 failed, still missing: ${missing[*]}"
        fi
        [ "$waited" = yes ] || echo "Waiting for another apt" >&2
        waited=yes
        sleep 1
    done
}

echo "Installing ${missing[*]}" >&2
apt_get update
apt_get install -y --no-install-recommends "${missing[@]}"
