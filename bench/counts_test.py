#!/usr/bin/env python3
"""Checks that the library's cost per record has not changed.

    counts_test.py BUILD             compares with counts.csv
    counts_test.py --update BUILD    rewrites counts.csv

Instructions may differ by 5 %; allocations must match. Each activation may make only one read()
and the wait for the next. Instruction counts depend on the compiler and Qt, whose versions
counts.csv names; with any others the test is skipped (status 77).
"""

import argparse
import csv
import platform
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent / "path"))
import subjects  # noqa: E402

KNOWN = Path(__file__).resolve().parent / "counts.csv"
COLUMNS = ["stream", "instructions", "allocations"]
# A full read: in smaller bursts the event loop's share would hide the library's.
BURST = subjects.BURSTS[0]
TOLERANCE = 0.05
# How Qt's event dispatchers wait.
WAITS = {"poll", "ppoll"}


def toolchain(build):
    """What the instruction counts depend on besides the library."""
    cache = (Path(build) / "CMakeCache.txt").read_text()
    compiler, major = (next(line.partition("=")[2] for line in cache.splitlines()
                            if line.startswith(name + ":"))
                       for name in ("CMAKE_CXX_COMPILER", "VORN_INPUT_QT"))
    version = subprocess.run([compiler, "-dumpfullversion"], check=True, stdout=subprocess.PIPE,
                             text=True).stdout.strip()
    qt = subprocess.run(["pkg-config", "--modversion", f"Qt{major}Core"], check=True,
                        stdout=subprocess.PIPE, text=True).stdout.strip()
    return f"g++ {version}, Qt {qt}, {platform.machine()}"


def measure(build):
    """Rows of counts.csv, and faults found in the system calls."""
    rows, faults = [], []
    with tempfile.TemporaryDirectory() as scratch:
        bench = subjects.Bench(build, None, scratch)
        for stream, raw in subjects.STREAMS.items():
            command = bench.library(stream)
            rows.append([stream, f"{bench.instructions(command, raw, BURST):.1f}",
                         f"{bench.allocated(command, raw, BURST):.3f}"])
            calls = bench.system_calls(command, raw, BURST)
            # The number of calls at startup varies by one now and then.
            others = {name: count for name, count in calls.items()
                      if abs(count) > 0.05 and name not in WAITS | {"read", "total"}}
            if abs(calls["read"] - 1) > 0.05 or others:
                faults.append(f"{stream}: {calls['read']} reads per activation, other calls: {others}")
    return rows, faults


def compare(known, measured):
    """Differences beyond the tolerance."""
    faults = []
    for row in measured:
        name, instructions, allocations = row[0], float(row[1]), float(row[2])
        before = known.get(name)
        if before is None:
            faults.append(f"{name}: not in {KNOWN.name}")
            continue
        change = instructions / before[0] - 1
        if abs(change) > TOLERANCE:
            faults.append(f"{name}: {instructions:.0f} instructions per record instead of "
                          f"{before[0]:.0f} ({change:+.1%})")
        if abs(allocations - before[1]) > 0.005:
            faults.append(f"{name}: {allocations} allocations per record instead of {before[1]}")
    return faults


def load():
    """The toolchain and the figures of counts.csv."""
    with open(KNOWN, newline="") as file:
        rows = list(csv.reader(file))
    return rows[0][0], {row[0]: (float(row[1]), float(row[2])) for row in rows[2:]}


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--update", action="store_true", help="write the measured figures")
    parser.add_argument("build", metavar="BUILD", help="an optimised build folder")
    options = parser.parse_args()
    present = toolchain(options.build)
    if options.update:
        rows, faults = measure(options.build)
        with open(KNOWN, "w", newline="") as file:
            csv.writer(file, lineterminator="\n").writerows([[present], COLUMNS, *rows])
    else:
        toolchain_before, known = load()
        if present != toolchain_before:
            print(f"SKIPPED: the figures are for '{toolchain_before}', this is '{present}'")
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
