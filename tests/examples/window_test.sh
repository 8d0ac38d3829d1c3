#!/usr/bin/env bash
# The window lights the key that is down, and tells where it cannot save its picture.
# usage: window_test.sh SOURCE PREFIX CXX QT
# shellcheck source=tests/examples/example.sh
. "$(dirname "${BASH_SOURCE[0]}")/example.sh"

build_example window
check_lights volume.scenario build/window
drive volume.scenario -- build/window --screenshot missing/window.png
expect_printed 'window: cannot write missing/window.png'

finish
