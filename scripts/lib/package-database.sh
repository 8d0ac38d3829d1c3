# What dpkg would know of libraries in a sysroot if they had been installed there: which packages
# programs that link them depend on. Sourced by scripts/make-packages.sh after debian-packages.sh.
# shellcheck shell=bash

# fill_package_database SYSROOT PACKAGES FOLDER: makes FOLDER a database of the packages for 32-bit
# ARM, with their files as they are named in SYSROOT.
fill_package_database() {
    local log
    # shellcheck disable=SC2016 # for the inner shells
    if ! log=$(SYSROOT=$1 PACKAGES=$2 FOLDER=$3 mmdebstrap --variant=extract --mode=chrootless \
        --architectures=armhf --skip=update --setup-hook='
            export APT_CONFIG=$MMDEBSTRAP_APT_CONFIG
            echo "Dir::Etc \"/etc/apt\";" >>"$APT_CONFIG"
            apt-get update || { sleep 5 && apt-get update; } || echo "Some lists are missing."' \
        --extract-hook='
            set -e
            export APT_CONFIG=$MMDEBSTRAP_APT_CONFIG
            mkdir -p "$FOLDER/info" "$1/tmp" && cd "$1/tmp"
            apt-get download $PACKAGES
            echo armhf >"$FOLDER/arch"
            # That of databases with several architectures, where names have one.
            echo 1 >"$FOLDER/info/format"
            for package in *.deb; do
                name=$(dpkg-deb -f "$package" Package)
                dpkg-deb -f "$package" >>"$FOLDER/status"
                printf "Status: install ok installed\n\n" >>"$FOLDER/status"
                [ "$(dpkg-deb -f "$package" Multi-Arch)" != same ] || name=$name:armhf
                rm -rf control
                dpkg-deb -e "$package" control
                for file in shlibs symbols; do
                    [ ! -f "control/$file" ] || mv "control/$file" "$FOLDER/info/$name.$file"
                done
                dpkg-deb --fsys-tarfile "$package" | tar -t | sed -n "s#^\.\(/.*[^/]\)\$#$SYSROOT\1#p" \
                    >"$FOLDER/info/$name.list"
            done' \
        '' "$3.root" - </dev/null 2>&1); then
        echo "$log" >&2
        rm -rf "$3.root"
        return 1
    fi
    rm -rf "${3:?}.root"
}
