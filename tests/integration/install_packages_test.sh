#!/usr/bin/env bash
# What install-packages.sh does, with stand-ins for the system's tools that record their calls.
# usage: install_packages_test.sh SOURCE_FOLDER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
script=$1/scripts/install-packages.sh

bin=$folder/bin
mkdir "$bin"
# stand_in NAME <BODY
stand_in() {
    { echo '#!/bin/bash' && cat; } >"$bin/$1"
    chmod +x "$bin/$1"
}
for tool in bash cat env grep mktemp rm; do
    ln -s "$(command -v "$tool")" "$bin/$tool"
done
stand_in dpkg-query <<'END'
case ${*: -1} in
present) printf installed ;;
twice) printf installedinstalled ;;
removed) printf config-files ;;
*) echo "no packages found" >&2; exit 1 ;;
esac
END
stand_in apt-get <<'END'
echo "apt-get $* $DEBIAN_FRONTEND" >>"$CALLS"
if [ -e "$TMPDIR/locked" ]; then
    rm "$TMPDIR/locked"
    echo 'E: Could not get lock /var/lib/apt/lists/lock. It is held by process 4711 (apt-get)' >&2
    exit 100
fi
echo "a lot of talk"
exit "${APT_STATUS:-0}"
END
stand_in id <<'END'
echo "${USER_ID:-0}"
END

# install VARIABLE=VALUE… PACKAGE…: runs the script with only the stand-ins in its PATH.
install() {
    : >"$folder/calls"
    local variables=()
    while [[ ${1:-} == *=* ]]; do
        variables+=("$1")
        shift
    done
    run env -i PATH="$bin" TMPDIR="$folder" CALLS="$folder/calls" "${variables[@]}" \
        bash "$script" "$@"
}

# Everything waits for other users of the package system.
update='apt-get -o DPkg::Lock::Timeout=600 update noninteractive'
install='apt-get -o DPkg::Lock::Timeout=600 install -y --no-install-recommends'

# expect_calls LINE…
expect_calls() {
    local expected=''
    [ $# -eq 0 ] || expected=$(printf '%s\n' "$@")
    [ "$(cat "$folder/calls")" = "$expected" ] \
        || failed "expected the calls '$expected', not '$(cat "$folder/calls")'"
}

install present twice
expect_status 0
expect_out ''
expect_nothing_on_stderr
expect_calls

install present absent removed
expect_status 0
expect_out ''
expect_line_on_stderr 'Installing absent removed'
expect_calls "$update" \
    "$install absent removed noninteractive"

install APT_STATUS=100 absent
expect_status 1
grep -q 'a lot of talk' "$folder/err" || failed 'expected the output of apt-get'
grep -q 'apt-get update failed, still missing: absent' "$folder/err" || failed 'expected the reason'
expect_calls "$update"

stand_in sleep <<'END'
echo "sleep" >>"$CALLS"
END
touch "$folder/locked"
install absent
expect_status 0
grep -q 'Waiting for another apt' "$folder/err" || failed 'expected to be told of the wait'
expect_calls "$update" sleep "$update" "$install absent noninteractive"

install USER_ID=1000 absent
expect_status 1
expect_out ''
expect_line_on_stderr 'install-packages\.sh: neither root nor sudo, cannot install: absent'
expect_calls

stand_in sudo <<'END'
echo "sudo" >>"$CALLS"
exec "$@"
END
install USER_ID=1000 absent
expect_status 0
expect_calls sudo "$update" \
    sudo "$install absent noninteractive"

for arguments in '' --frobnicate; do
    # shellcheck disable=SC2086 # nothing at all in the first round
    install $arguments
    expect_status 2
    expect_out ''
    expect_line_on_stderr 'install-packages\.sh: expected package names \(see --help\)'
done

rm "$bin/dpkg-query"
install absent
expect_status 1
expect_line_on_stderr 'install-packages\.sh: no dpkg-query here; .*absent'
expect_calls

finish
