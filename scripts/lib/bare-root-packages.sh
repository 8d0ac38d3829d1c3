#!/usr/bin/env bash
# The second half of "try-in-bare-root.sh packages", inside the bare root.
set -euo pipefail

packages=/mnt/try/packages
sources=/mnt/try/sources
maker=/tmp/maker

fail() {
    echo "FAILED: $1"
    exit 1
}

# quietly COMMAND…: shows the output only if it fails.
quietly() {
    if ! "$@" >/tmp/log 2>&1; then
        cat /tmp/log
        fail "$*"
    fi
}

# step TEXT: what the following lines are about.
step() { printf '\n== %s\n' "$1"; }

install() {
    echo "# apt install ${*#"$packages/"}"
    quietly apt-get install -y --no-install-recommends "$@"
}

# visit COMMAND…: as somebody without privileges, in a folder of his own.
# shellcheck disable=SC2016 # for the inner shell
visit() {
    su -c 'cd "$HOME" && export AUTOPKGTEST_TMP=$(mktemp -d) && exec "$0" "$@"' -- visitor "$@"
}

files() {
    find / -xdev \( -path /mnt -o -path /tmp -o -path /home -o -path /root -o -path /var/cache \
        -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/log \) -prune -o -print | LC_ALL=C sort
}

# leftovers: whatever dpkg or the file system still knows of the packages.
leftovers() {
    find / -xdev \( -path /mnt -o -path /tmp -o -path /home -o -path /proc -o -path /sys \
        -o -path /var/cache/apt \) -prune -o -name '*vorn*' -print
    dpkg-query -W -f '${binary:Package} ${db:Status-Abbrev}\n' | grep vorn || true
}

echo 'APT::Keep-Downloaded-Packages "true"; Acquire::Retries "3";' >/etc/apt/apt.conf.d/90try
quietly apt-get update
files >/tmp/files-before

step "The workbench, installed"
install "$packages"/libvorn-api1_*.deb "$packages"/libvorn-input1_*.deb "$packages"/vorn-input-tools_*.deb
step "Without an input device"
visit vorn-input devices 2>&1 | tee /tmp/devices
script=$(sed -n "s/.*run '\([^ ]*\) vorn-input devices'.*/\1/p" /tmp/devices)
[ -x "$script" ] || fail "it advises a script that is not there"
quietly apt-get install -y --no-install-recommends umockdev
step "What comes with it"
visit sh "$sources/debian/tests/recorded-session"
install man-db
visit env MANPAGER=cat man vorn-input | sed '/^$/d' | sed -n '1,7p' | tee /tmp/manual
grep -q 'vorn-input' /tmp/manual || fail "no manual page"

step "Products, built against the library"
install "$packages"/libvorn-input-dev_*.deb cmake g++ ninja-build pkg-config
visit sh "$sources/debian/tests/build-products"

step "The maker's own core library in the place of the stand-in"
lib=usr/lib/$(g++ -print-multiarch)
mkdir -p "$maker/DEBIAN" "$maker/$lib"
sed -i 's/= text.toUtf8();/= "maker: " + text.toUtf8();/' "$sources/dbglog.cpp"
# shellcheck disable=SC2046 # options, several
quietly g++ -std=c++17 -fPIC -shared -Wl,-soname,libvorn_api.so.1 -I/usr/include/vorn/core \
    $(pkg-config --cflags Qt5Core) "$sources/Profiler.cpp" "$sources/dbglog.cpp" \
    -o "$maker/$lib/libvorn_api.so.1.7.0" $(pkg-config --libs Qt5Core)
ln -s libvorn_api.so.1.7.0 "$maker/$lib/libvorn_api.so.1"
cat >"$maker/DEBIAN/control" <<END
Package: maker-core
Version: 1.7
Architecture: $(dpkg --print-architecture)
Maintainer: the maker <maker@example.com>
Provides: vorn-api-abi-1
Conflicts: vorn-api-abi-1
Replaces: vorn-api-abi-1
Description: the maker's core library
END
quietly dpkg-deb -b "$maker" /tmp/maker-core.deb
install /tmp/maker-core.deb
! dpkg-query -W -f '${db:Status-Status}\n' libvorn-api1 | grep -qx installed ||
    fail "the stand-in is still installed"
ldd /usr/bin/vorn-input | grep -F 'libvorn_api.so.1' | sed 's/ (.*//'
visit vorn-input --log debug simulate --quiet \
    /usr/share/vorn-input/examples/player-front-panel.scenario 2>&1 | grep 'maker: ' | head -n 3 |
    tee /tmp/texts
[ -s /tmp/texts ] || fail "the log is not in the maker's words"
visit sh -c "cmake -S '$sources/tests/package/consumer' -B again -G Ninja >/dev/null &&
    cmake --build again >/dev/null && again/consumer 2>/dev/null"
install "$packages"/libvorn-api1_*.deb
quietly dpkg --purge maker-core

step "An upgrade"
mkdir /tmp/newer
for package in "$packages"/*.deb; do
    rm -rf /tmp/package
    quietly dpkg-deb -R "$package" /tmp/package
    version=$(sed -n 's/^Version: //p' /tmp/package/DEBIAN/control)
    sed -i "s/^Version: .*/&.1/; s/(= $version)/(= $version.1)/g" /tmp/package/DEBIAN/control
    quietly dpkg-deb -b /tmp/package /tmp/newer
done
echo "# apt install newer ones"
quietly apt-get install -y --no-install-recommends /tmp/newer/*.deb
dpkg-query -W -f '${Package} ${Version} ${db:Status-Status}\n' '*vorn*' | sed -n 's/ installed$//p'
[ "$(dpkg-query -W -f '${Version}\n' vorn-input-tools)" = "$version.1" ] || fail "not upgraded"
visit vorn-input --version

step "Removed and purged"
mapfile -t names < <(dpkg-query -W -f '${Package} ${db:Status-Status}\n' '*vorn*' |
    sed -n 's/ installed$//p')
echo "# apt remove ${names[*]}; dpkg --purge ${names[*]}"
quietly apt-get remove -y "${names[@]}"
! command -v vorn-input || fail "the program is still there"
quietly dpkg --purge "${names[@]}"
quietly apt-get purge -y --autoremove cmake g++ man-db ninja-build pkg-config umockdev
leftovers >/tmp/leftovers
[ ! -s /tmp/leftovers ] || { cat /tmp/leftovers && fail "something is left"; }
files >/tmp/files-after
comm -13 /tmp/files-before /tmp/files-after >/tmp/new-files
echo "nothing of them is left; $(wc -l </tmp/new-files) files that other packages made are"
echo
echo "Everything works."
