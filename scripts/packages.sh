# Debian 12 packages that the scripts install when they are missing; sourced by them.
# shellcheck shell=bash disable=SC2034

build_packages=(cmake g++ libgmock-dev libgtest-dev liblog4cplus-dev ninja-build pkg-config qtbase5-dev)
demo_packages=("${build_packages[@]}" umockdev)
test_packages=("${demo_packages[@]}" valgrind)
lint_packages=("${build_packages[@]}" clang-format clang-tidy python3 shellcheck)
