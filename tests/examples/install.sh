#!/usr/bin/env bash
# Installs a build, and nothing of an earlier one stays.
# usage: install.sh BUILD PREFIX
set -euo pipefail

rm -rf "$2"
cmake --install "$1" --prefix "$2" >/dev/null
