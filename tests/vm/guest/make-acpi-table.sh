#!/usr/bin/env bash
# Describes hardware of the x86-64 guest that QEMU does not emulate itself.
set -euo pipefail

usage='usage: make-acpi-table.sh [--help] FILE

Writes FILE, an ACPI table with a set of GPIO keys whose name has 255 characters, the longest that
can be read. QEMU'\''s PC has no GPIO controller, so the table also describes one, a common chip
that the kernel has a driver for. Its registers are a page of memory at 0x10000000, which the kernel
must not use otherwise; nobody presses the key.'

case ${1:-} in
--help)
    echo "$usage"
    exit 0
    ;;
'' | -*)
    echo "$usage" >&2
    exit 2
    ;;
esac
file=$1

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
name=$(printf 'n%.0s' {1..255})
cat >"$folder/table.dsl" <<TABLE
DefinitionBlock ("", "SSDT", 2, "VORN", "KEYS", 1)
{
    Scope (\\_SB)
    {
        Device (GPIO)
        {
            Name (_HID, "INT33FC")
            Name (_UID, "1")
            Name (_CRS, ResourceTemplate ()
            {
                Memory32Fixed (ReadWrite, 0x10000000, 0x00001000)
                Interrupt (ResourceConsumer, Edge, ActiveHigh, Exclusive) { 5 }
            })
        }
        Device (KEYS)
        {
            Name (_HID, "PRP0001")
            Name (_CRS, ResourceTemplate ()
            {
                GpioIo (Exclusive, PullDefault, 0, 0, IoRestrictionInputOnly, "\\\\_SB.GPIO", 0) { 4 }
            })
            Name (_DSD, Package ()
            {
                ToUUID ("daffd814-6eba-4d8c-8a91-bc9bbf4aa301"), // properties
                Package ()
                {
                    Package () { "compatible", Package () { "gpio-keys" } },
                    Package () { "label", "$name" },
                },
                ToUUID ("dbb8e3e6-5886-4ba6-8795-1319f52a966b"), // children
                Package () { Package () { "key-0", "KEY0" } }
            })
            Name (KEY0, Package ()
            {
                ToUUID ("daffd814-6eba-4d8c-8a91-bc9bbf4aa301"),
                Package ()
                {
                    Package () { "linux,code", 352 },
                    Package () { "gpios", Package () { ^KEYS, 0, 0, 0 } },
                }
            })
        }
    }
}
TABLE
if ! iasl -p "$folder/table" "$folder/table.dsl" >"$folder/log" 2>&1; then
    cat "$folder/log" >&2
    exit 1
fi
mv "$folder/table.aml" "$file"
