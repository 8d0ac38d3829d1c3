#!/usr/bin/env python3
"""Compares what the library takes for a record with what it took when it was measured last.

    counts_test.py BUILD             compares with counts.csv
    counts_test.py --update BUILD    writes counts.csv anew

Instructions may differ by 5 %; allocations must be the same. Each activation makes one read() and
nothing else but the wait for the next. The instructions are those of one compiler and one Qt, which
counts.csv names; with others there is nothing to compare with, and this is skipped (status 77).
"""

import argparse
import csv
import platform
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
import path  # noqa: E402

KNOWN = Path(__file__).resolve().parent / "counts.csv"
COLUMNS = ["stream", "instructions", "allocations"]
# As many as one read takes: the fewer there are, the more of it is the event loop's.
BURST = path.BURSTS[0]
TOLERANCE = 0.05
# What an event loop of Qt waits with, by its dispatcher.
WAITS = {"poll", "ppoll"}


def toolchain(build):
    """What the instructions depend on besides the library."""
    cache = (Path(build) / "CMakeCache.txt").read_text()
    compiler = next(line.partition("=")[2] for line in cache.splitlines()
                    if line.startswith("CMAKE_CXX_COMPILER:"))
    version = subprocess.run([compiler, "-dumpfullversion"], check=True, stdout=subprocess.PIPE,
                             text=True).stdout.strip()
    qt = subprocess.run(["pkg-config", "--modversion", "Qt5Core"], check=True,
                        stdout=subprocess.PIPE, text=True).stdout.strip()
    return f"g++ {version}, Qt {qt}, {platform.machine()}"


def measure(build):
    """Rows of counts.csv, and what is wrong with the system calls."""
    rows, faults = [], []
    with tempfile.TemporaryDirectory() as scratch:
        bench = path.Bench(build, None, scratch)
        for stream, raw in path.STREAMS.items():
            command = bench.library(stream)
            rows.append([stream, f"{bench.instructions(command, raw, BURST):.1f}",
                         f"{bench.allocated(command, raw, BURST):.3f}"])
            calls = bench.system_calls(command, raw, BURST)
            # The start takes one call more or less at times, which is not the path's.
            others = {name: count for name, count in calls.items()
                      if abs(count) > 0.05 and name not in WAITS | {"read", "total"}}
            if abs(calls["read"] - 1) > 0.05 or others:
                faults.append(f"{stream}: {calls['read']} reads for each activation, and {others}")
    return rows, faults


def compare(known, measured):
    """What differs by more than it may."""
    faults = []
    for row in measured:
        name, instructions, allocations = row[0], float(row[1]), float(row[2])
        before = known.get(name)
        if before is None:
            faults.append(f"{name}: not in {KNOWN.name}")
            continue
        change = instructions / before[0] - 1
        if abs(change) > TOLERANCE:
            faults.append(f"{name}: {instructions:.0f} instructions a record in place of "
                          f"{before[0]:.0f} ({change:+.1%})")
        if abs(allocations - before[1]) > 0.005:
            faults.append(f"{name}: {allocations} allocations a record in place of {before[1]}")
    return faults


def load():
    """The toolchain and the figures of counts.csv."""
    with open(KNOWN, newline="") as file:
        rows = list(csv.reader(file))
    return rows[0][0], {row[0]: (float(row[1]), float(row[2])) for row in rows[2:]}


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--update", action="store_true", help="writes what is measured")
    parser.add_argument("build", metavar="BUILD", help="folder of an optimised build")
    options = parser.parse_args()
    present = toolchain(options.build)
    if options.update:
        rows, faults = measure(options.build)
        with open(KNOWN, "w", newline="") as file:
            csv.writer(file, lineterminator="\n").writerows([[present], COLUMNS, *rows])
    else:
        toolchain_before, known = load()
        if present != toolchain_before:
            print(f"SKIPPED: the figures are of '{toolchain_before}', and this is '{present}'")
            return 77
        rows, faults = measure(options.build)
        faults += compare(known, rows)
    for row in rows:
        print("  ".join(row))
    for fault in faults:
        print(f"counts_test.py: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
