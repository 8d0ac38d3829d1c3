#!/usr/bin/env bash
# The page lights the key that is down, and tells where it cannot save its picture.
# usage: quick_test.sh SOURCE PREFIX CXX QT
# shellcheck source=tests/examples/example.sh
. "$(dirname "${BASH_SOURCE[0]}")/example.sh"

[ -n "$(find /usr/lib -path "*/qt$qt/qml/QtQuick/Window*" -name qmldir -print -quit)" ] ||
    skip "no Qt Quick here (Debian package qml-module-qtquick-window2)"
build_example quick
check_lights held-key.scenario build/quick
drive held-key.scenario -- build/quick --screenshot missing/quick.png
expect_printed 'cannot write missing/quick.png'

finish
