# shellcheck shell=bash
# Shared by the tests of programs and scripts, which source it.
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

skip() {
    echo "SKIPPED: $*"
    exit 77
}

# run COMMAND…: runs it and keeps its status and output.
run() {
    description="$*"
    status=0
    "$@" >"$folder/out" 2>"$folder/err" </dev/null || status=$?
}

# failed REASON: counts a failure and shows the result of the command.
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

# expect_out PATTERN: an extended regular expression for all of stdout; "" for nothing.
expect_out() {
    [[ $(cat "$folder/out") =~ ^$1$ ]] || failed "expected on stdout: $1"
}

# expect_line_on_stderr PATTERN: exactly one line.
expect_line_on_stderr() {
    if ! [[ $(cat "$folder/err") =~ ^$1$ ]] || [ "$(wc -l <"$folder/err")" -ne 1 ]; then
        failed "expected one line on stderr: $1"
    fi
}

expect_nothing_on_stderr() {
    [ ! -s "$folder/err" ] || failed "expected nothing on stderr"
}

# in_private_dev NAME… -- COMMAND…: runs COMMAND where /dev holds only the standard streams and the
# named files, which nobody can read; a NAME that ends in a slash is a folder.
in_private_dev() {
    local private=$folder/dev
    rm -rf "$private"
    mkdir "$private"
    while [ "$1" != -- ]; do
        case $1 in
        */) mkdir -p "$private/$1" ;;
        *)
            mkdir -p "$private/$(dirname "$1")"
            # A dangling link, because root ignores permissions.
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

# Finds out how in_private_dev can work here; skips the test if it cannot.
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
    skip "cannot create a mount namespace here"
}

finish() {
    [ "$failures" -eq 0 ] || exit 1
    echo "PASSED"
}
