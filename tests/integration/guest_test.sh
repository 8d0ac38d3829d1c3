#!/usr/bin/env bash
# The errors of the guest scripts, and what guest.py says where a guest cannot run.
# usage: guest_test.sh SOURCE_FOLDER
# shellcheck source=checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
vm=$1/tests/vm
# The interpreter itself, not a wrapper that searches for it.
python=$(python3 -c 'import sys; print(sys.executable)') || skip "no python3 here"

# with_programs NAME… -- ARGUMENT…: runs guest.py where there are only Python and these programs.
with_programs() {
    local programs=$folder/programs
    rm -rf "$programs"
    mkdir "$programs"
    ln -s "$python" "$programs/python3"
    while [ "$1" != -- ]; do
        ln -s /bin/true "$programs/$1"
        shift
    done
    shift
    env PATH="$programs" "$python" "$vm/guest.py" "$@"
}

run "$vm/guest.py" --help
expect_status 0
expect_out 'Runs programs in a virtual machine.*guest\.py stop FOLDER.*'
expect_nothing_on_stderr

for arguments in '' frobnicate start 'run here' 'stop' 'stop here there'; do
    # shellcheck disable=SC2086 # several arguments
    run "$vm/guest.py" $arguments
    expect_status 2
    expect_out ''
    expect_line_on_stderr 'guest\.py: expected start, run or stop, .* \(see --help\)'
done

run "$vm/guest.py" start vax "$folder/guest" "$1"
expect_status 1
expect_out ''
expect_line_on_stderr "guest\.py: unknown architecture 'vax' \(see --help\)"

run "$vm/guest.py" run "$folder/guest" true
expect_status 1
expect_out ''
expect_line_on_stderr "guest\.py: no guest was started in $folder/guest"

# The commands that would use the guest give the same reason.
expect_skip() {
    expect_status 77
    expect_out "SKIPPED: no $1 here \(Debian package $2\)"
    expect_nothing_on_stderr
}
run with_programs -- start x86_64 "$folder/guest" "$1"
expect_skip busybox busybox-static
run with_programs busybox cpio -- start x86_64 "$folder/guest" "$1"
expect_skip qemu-system-x86_64 qemu-system-x86
run "$vm/guest.py" run "$folder/guest" true
expect_skip qemu-system-x86_64 qemu-system-x86
run "$vm/guest.py" stop "$folder/guest"
expect_skip qemu-system-x86_64 qemu-system-x86
run with_programs busybox cpio -- start armhf "$folder/guest" "$1"
expect_skip qemu-system-arm qemu-system-arm

for script in fetch-kernel.sh make-acpi-table.sh make-device-tree.sh make-initramfs.sh; do
    run "$vm/guest/$script" --help
    expect_status 0
    expect_out "usage: $script .*"
    expect_nothing_on_stderr
    run "$vm/guest/$script"
    expect_status 2
    expect_out ''
done
run "$1/scripts/make-sysroot.sh" --frobnicate
expect_status 2
expect_line_on_stderr "make-sysroot\.sh: unknown option '--frobnicate' \(see --help\)"

finish
