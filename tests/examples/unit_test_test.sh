#!/usr/bin/env bash
# The unit test of a product passes, and fails when the product is wrong.
# usage: unit_test_test.sh SOURCE PREFIX CXX QT
# shellcheck source=tests/examples/example.sh
. "$(dirname "${BASH_SOURCE[0]}")/example.sh"

build_example unit-test
run ctest --test-dir build --output-on-failure
expect_status 0
run build/unit-test
expect_status 0
grep -q 'PASSED.* 5 tests' "$folder/out" || failed 'expected five tests'
expect_nothing_on_stderr

sed -i 's/InputEvent::Bus::LocalUI, //' FrontPanel.cpp
run cmake --build build
expect_status 0
run build/unit-test --gtest_brief=1
expect_status 1
grep -q 'FAILED.*IsSwitchedOffOnlyByTheBuiltInPanel' "$folder/out" || failed 'expected one failure'

finish
