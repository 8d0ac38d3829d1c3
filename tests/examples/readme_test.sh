#!/usr/bin/env bash
# The README's first program, as it stands there, by CMake and by pkg-config.
# usage: readme_test.sh SOURCE PREFIX CXX QT
# shellcheck source=tests/examples/example.sh
. "$(dirname "${BASH_SOURCE[0]}")/example.sh"

cd "$folder"
# block LANGUAGE: the block that is marked as a part of the program.
block() {
    awk -v fence="\`\`\`$1" '
        /^```$/ { inside = 0 }
        inside { print }
        { if (marked && $0 == fence) inside = 1; marked = ($0 == "<!-- example: first -->") }' \
        "$source/README.md"
}
block cpp >main.cpp
block cmake >CMakeLists.txt
command=$(block console | sed 's/^\$ //')
if ! [ -s main.cpp ] || ! [ -s CMakeLists.txt ] || [ -z "$command" ]; then
    echo "FAILED: a part of the first program is missing in the README"
    exit 1
fi

cat >keys.scenario <<'END'
device panel name="front-panel"
panel hold KEY_VOLUMEUP for 900ms
expect VolumeUp KeyPressed
expect VolumeUp KeyLongPress after 600ms
expect VolumeUp KeyLongPress after 800ms
expect VolumeUp KeyReleased
panel click KEY_OK
expect Confirm KeyPressed
expect Confirm KeyReleased
panel press KEY_STOP
panel press KEY_PLAY
expect FactoryReset KeyPressed
panel release KEY_PLAY
panel release KEY_STOP
expect FactoryReset KeyReleased
END

if ! { nice cmake -B build -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" &&
    nice cmake --build build; } >log 2>&1; then
    cat log
    echo "FAILED: CMake does not build it"
    exit 1
fi
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name vorn_input.pc)")
LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH")
export PKG_CONFIG_PATH LD_LIBRARY_PATH
bash -c "$command" >log 2>&1 || { cat log; echo "FAILED: pkg-config does not build it"; exit 1; }

for program in build/first ./first; do
    drive keys.scenario -- "$program"
    expect_printed '[cmd=VolumeUp, state=KeyLongPress, bus=LocalUI]'
done

finish
