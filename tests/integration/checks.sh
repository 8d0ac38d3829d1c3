# shellcheck shell=bash
# What the tests of programs and scripts share. To be sourced.
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

skip() {
    echo "SKIPPED: $*"
    exit 77
}

# run COMMAND…: runs it and keeps its status and what it prints.
run() {
    description="$*"
    status=0
    "$@" >"$folder/out" 2>"$folder/err" </dev/null || status=$?
}

# failed REASON: counts a failure and shows what the command did.
failed() {
    failures=$((failures + 1))
    echo "FAILED: $description: $1"
    echo "  status $status"
    sed 's/^/  out: /' "$folder/out"
    sed 's/^/  err: /' "$folder/err"
}

# expect_status STATUS
expect_status() {
    [ "$status" -eq "$1" ] || failed "expected status $1"
}

# expect_out PATTERN: the whole of stdout, as an extended regular expression; "" for nothing.
expect_out() {
    [[ $(cat "$folder/out") =~ ^$1$ ]] || failed "expected on stdout: $1"
}

# expect_line_on_stderr PATTERN: one line and nothing else.
expect_line_on_stderr() {
    if ! [[ $(cat "$folder/err") =~ ^$1$ ]] || [ "$(wc -l <"$folder/err")" -ne 1 ]; then
        failed "expected one line on stderr: $1"
    fi
}

expect_nothing_on_stderr() {
    [ ! -s "$folder/err" ] || failed "expected nothing on stderr"
}

# in_private_dev NAME… -- COMMAND…: runs COMMAND where /dev holds nothing but the usual streams and
# the named files, each unreadable for everyone; a NAME that ends in a slash is a folder.
in_private_dev() {
    local private=$folder/dev
    rm -rf "$private"
    mkdir "$private"
    while [ "$1" != -- ]; do
        case $1 in
        */) mkdir -p "$private/$1" ;;
        *)
            mkdir -p "$private/$(dirname "$1")"
            # Dangling, because permissions mean nothing to root.
            ln -s /nonexistent "$private/$1"
            ;;
        esac
        shift
    done
    shift
    touch "$private/null"
    ln -s /proc/self/fd "$private/fd"
    # shellcheck disable=SC2016 # for the inner shell
    unshare "${unshare_options[@]}" bash -euc '
        private=$1
        shift
        mount --bind /dev/null "$private/null"
        mount --rbind "$private" /dev
        exec "$@"' bash "$private" "$@"
}

# Finds out how in_private_dev can work, and skips the test where it cannot.
need_private_dev() {
    local options
    for options in -m -rm; do
        if unshare "$options" true 2>/dev/null; then
            unshare_options=("$options")
            if in_private_dev -- true 2>/dev/null; then
                return
            fi
        fi
    done
    skip "no mount namespace can be made here"
}

finish() {
    [ "$failures" -eq 0 ] || exit 1
    echo "PASSED"
}
