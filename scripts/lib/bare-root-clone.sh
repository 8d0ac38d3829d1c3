#!/usr/bin/env bash
# The second half of "try-in-bare-root.sh clone", inside the bare root.
set -euo pipefail

echo 'APT::Keep-Downloaded-Packages "true"; Acquire::Retries "3";' >/etc/apt/apt.conf.d/90try
quietly() { "$@" >/tmp/log 2>&1 || { cat /tmp/log && exit 1; }; }
# What one has who clones.
quietly apt-get update
quietly apt-get install -y --no-install-recommends ca-certificates git
cd /root
run() {
    echo "\$ $*"
    "$@"
}
run git clone -q /mnt/try/repository project
cd project
run scripts/demo.sh
run scripts/test.sh --quick
