# shellcheck shell=bash
# Shared by the tests of the examples, which source it.
# usage: NAME_test.sh SOURCE PREFIX CXX QT
# shellcheck source=tests/integration/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../integration/checks.sh"

source=$1 prefix=$2 cxx=$3 qt=$4
workbench=$(echo "$prefix"/bin/vorn-input*)
export XDG_RUNTIME_DIR=$folder

# build_example NAME: builds a copy of its folder, and goes there.
build_example() {
    cp -R "$source/examples/$1" "$folder"
    cd "$folder/$1"
    # Somebody may have built it where it is.
    rm -rf build
    # Nice to the tests beside it, some of which play devices in real time.
    if ! { nice cmake -B build -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" \
        -DCMAKE_CXX_FLAGS='-Wall -Wextra -Wpedantic -Werror' -DVORN_INPUT_QT="$qt" &&
        nice cmake --build build --parallel 2; } >log 2>&1; then
        cat log
        echo "FAILED: $1 cannot be built alone"
        exit 1
    fi
}

# drive ARGUMENT…: in virtual time. Everything must be as expected, and logging be configured.
drive() {
    run "$workbench" drive --virtual-time "$@"
    expect_status 0
    ! grep -q 'log4cplus:' "$folder/err" || failed 'expected no complaint of log4cplus'
}

# expect_printed TEXT: by the program that was driven.
expect_printed() {
    grep -q -F "$1" "$folder/err" || failed "expected that it prints: $1"
}

# check_lights SCENARIO PROGRAM: the key that the scenario holds at the end is lit in the picture that the
# program saves, and another one where the scenario holds that.
check_lights() {
    local picture=$folder/picture.ppm
    export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
    drive "$1" -- "$2" --screenshot "$picture"
    run "$source/tests/examples/check_picture.py" "$picture" 3
    expect_status 0
    sed 's/VOLUMEUP/VOLUMEDOWN/; s/VolumeUp/VolumeDown/' "$1" >other.scenario
    drive other.scenario -- "$2" --screenshot "$picture"
    run "$source/tests/examples/check_picture.py" "$picture" 2
    expect_status 0
    run "$source/tests/examples/check_picture.py" "$picture" 3
    expect_status 1
}
