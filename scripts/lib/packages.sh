# The Debian 12 packages that the scripts install if they are missing. Sourced by them.
# shellcheck shell=bash disable=SC2034

build_packages=(cmake g++ libcli11-dev libevdev-dev libgmock-dev libgtest-dev liblog4cplus-dev
    librapidcheck-dev libtomlplusplus-dev ninja-build pkg-config qtbase5-dev scdoc zlib1g-dev)
demo_packages=("${build_packages[@]}" umockdev)
bench_packages=("${build_packages[@]}" gnuplot-nox libbenchmark-dev python3 strace valgrind)
example_packages=(qml-module-qtquick-window2 qml-module-qtquick2 qtdeclarative5-dev)
test_packages=("${demo_packages[@]}" "${bench_packages[@]}" "${example_packages[@]}" abigail-tools clang
    dbus-bin dbus-daemon doxygen doxygen-awesome-css dpkg-dev jq libclang-rt-14-dev libqt5svg5-dev make
    mandoc mold mpv mpv-mpris python3-jsonschema python3-kconfiglib qt6-base-dev systemd udev zsh)
vm_packages=("${build_packages[@]}" acpica-tools busybox-static cpio device-tree-compiler evemu-tools
    g++-arm-linux-gnueabihf mmdebstrap python3 qemu-system-arm qemu-system-x86 qemu-user)
lint_packages=("${build_packages[@]}" clang-format clang-tidy clazy cppcheck jq pyflakes3 python3
    shellcheck)
package_packages=("${build_packages[@]}" debhelper dpkg-dev git lintian)
cross_package_packages=(g++-arm-linux-gnueabihf mmdebstrap qemu-user)
# What the packages' libraries and programs link; scripts/make-packages.sh has to know of each.
database_packages=(libc6 libevdev2 libgcc-s1 liblog4cplus-2.0.5 libqt5core5a libstdc++6 zlib1g)
