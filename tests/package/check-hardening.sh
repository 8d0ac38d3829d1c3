#!/usr/bin/env bash
# Usage: check-hardening.sh FILE…
#
# Checks what optimised binaries ship with: executables that load at a random address, no executable
# stack, nothing that the loader fills in left writable, guarded stacks, and, in all of them together,
# functions of the C library that check their buffers.
set -euo pipefail

status=0
complain() {
    echo "$1: $2" >&2
    status=1
}

checked_calls=0
for file in "$@"; do
    header=$(readelf -hW "$file") segments=$(readelf -lW "$file") dynamic=$(readelf -dW "$file")
    symbols=$(readelf --dyn-syms -W "$file")
    grep -q 'Type: *DYN' <<<"$header" || complain "$file" 'not position-independent'
    grep -q GNU_RELRO <<<"$segments" || complain "$file" 'no read-only relocations'
    grep -qE 'GNU_STACK .* RW +0x' <<<"$segments" || complain "$file" 'the stack is executable'
    grep -qE 'BIND_NOW|FLAGS_1.*NOW' <<<"$dynamic" || complain "$file" 'symbols are bound lazily'
    # On ARM the canary itself is imported as well.
    grep -q __stack_chk_fail <<<"$symbols" || complain "$file" 'no stack is guarded'
    checked_calls=$((checked_calls + $(grep -cE 'UND __[a-z_]+_chk@' <<<"$symbols" || true)))
done
echo "$# files, $checked_calls checked functions of the C library"
[ "$checked_calls" -gt 0 ] || complain "all files" 'no call checks its buffer'
exit "$status"
