#!/usr/bin/env python3
"""Counts the system calls of one pass of the device scan, as rows of the results' CSV.

The program vorn_scan_calls makes the passes on simulated nodes, under strace, and counts the calls
that the nodes answer. Together they give the calls a kernel with these nodes would see:

- The open of an existing node is an eventfd2 in the trace, that of a missing one an openat. Their
  sum must match the program's count, or nothing is reported.
- The closes in the trace must match the program's count as well.
- The ioctls never reach the kernel, so the program's count is used.
- Everything else comes from the trace: Qt's calls on real directories and descriptors.
"""
import argparse
import collections
import csv
import os
import re
import subprocess
import sys
import tempfile

HEADER = ["group", "subject", "stream", "burst", "parameter", "figure", "unit", "median", "low",
          "high", "runs"]
# Nodes that a pass finds, and what has changed since the previous one.
CASES = [(0, "none"), (5, "none"), (10, "none"), (1, "arrival"), (5, "arrival"), (10, "arrival")]
CHANGES = {"none": "no change", "arrival": "one arrival"}
CALL = re.compile(r"^(?:\d+ +)?(\w+)\((.*)$")


class Failure(Exception):
    """Why there is no count; its text is shown to the user."""


def calls_of_passes(trace):
    """The system calls of each pass in a trace, as a Counter of their names."""
    passes = []
    inside = False
    for line in trace.splitlines():
        match = CALL.match(line)
        if not match:
            continue
        name, arguments = match.groups()
        if name == "write" and arguments.startswith('-1, "begin"'):
            inside = True
            passes.append(collections.Counter())
        elif name == "write" and arguments.startswith('-1, "end"'):
            inside = False
        elif inside:
            passes[-1][name] += 1
    return passes


def calls_of_nodes(output):
    """The program's counts, by name."""
    return {name: int(count) for name, count in (line.split() for line in output.splitlines())}


def kinds_of_calls(traced, counted):
    """The calls of a pass by kind, from its trace and the program's counts."""
    kinds = collections.Counter(traced)
    opens = kinds.pop("eventfd2", 0) + kinds.pop("openat", 0)
    if opens != counted["opens"]:
        raise Failure(f"{opens} opens in the trace, but the nodes counted {counted['opens']}")
    if kinds["close"] != counted["closes"]:
        raise Failure(f"{kinds['close']} closes in the trace, but the nodes counted"
                      f" {counted['closes']}")
    if kinds["ioctl"] != 0 or counted["reads"] != 0:
        raise Failure("unexpected reads or ioctls: the trace is not of simulated nodes")
    kinds["open"] = opens
    kinds["ioctl"] = counted["ioctls"]
    return kinds


def measure(program, nodes, change):
    """The rows of one case."""
    with tempfile.TemporaryDirectory() as folder:
        trace = os.path.join(folder, "trace")
        command = ["strace", "-f", "-o", trace, program, str(nodes), change]
        try:
            result = subprocess.run(command, stdout=subprocess.PIPE, text=True)
        except OSError as error:
            raise Failure(f"cannot run strace: {error.strerror}")
        if result.returncode != 0:
            raise Failure(f"'{' '.join(command)}' failed")
        with open(trace, encoding="utf-8", errors="replace") as file:
            passes = calls_of_passes(file.read())
    counted = calls_of_nodes(result.stdout)
    runs = counted.pop("passes")
    if len(passes) != runs:
        raise Failure(f"{len(passes)} of {runs} passes in the trace")
    for name, count in counted.items():
        if count % runs != 0:
            raise Failure(f"the passes differ: {count} {name} in {runs}")
        counted[name] = count // runs
    by_pass = [kinds_of_calls(traced, counted) for traced in passes]
    rows = []
    for kind in sorted(set().union(*by_pass)):
        rows.append((f"{kind} calls", [kinds[kind] for kinds in by_pass]))
    rows.append(("system calls", [sum(kinds.values()) for kinds in by_pass]))
    parameter = f"nodes={nodes}, {CHANGES[change]}"
    return [["scan", "library", "", "", parameter, figure, "1/pass", sorted(counts)[runs // 2],
             min(counts), max(counts), runs] for figure, counts in rows if any(counts)]


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", metavar="PROGRAM", help="the built vorn_scan_calls")
    parser.add_argument("--rows-only", action="store_true", help="leave out the header")
    options = parser.parse_args()
    try:
        rows = [row for nodes, change in CASES for row in measure(options.program, nodes, change)]
    except Failure as failure:
        print(f"scan_calls.py: {failure}", file=sys.stderr)
        return 1
    writer = csv.writer(sys.stdout, lineterminator="\n")
    if not options.rows_only:
        writer.writerow(HEADER)
    writer.writerows(rows)
    return 0


if __name__ == "__main__":
    sys.exit(main())
