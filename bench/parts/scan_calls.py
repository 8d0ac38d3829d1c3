#!/usr/bin/env python3
"""Counts the system calls of one pass of the device scan, as rows of the results' CSV.

The program vorn_scan_calls makes the passes on simulated nodes, under strace, and tells itself what
the nodes were asked for. What a kernel with these nodes would see is put together from both:

- An open of a node that is there is an eventfd2 in the trace, and one of a node that is not is an
  openat; together they are as many as the program counts, or the count is refused.
- The closes are as many in the trace as the program counts, or the count is refused.
- The ioctls are answered without the kernel, so the program's count is taken.
- Everything else is taken from the trace: it is Qt's, on real directories and descriptors.
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
# Nodes that the pass finds, and what has changed since the last one.
CASES = [(0, "none"), (5, "none"), (10, "none"), (1, "arrival"), (5, "arrival"), (10, "arrival")]
CHANGES = {"none": "no change", "arrival": "one arrival"}
CALL = re.compile(r"^(?:\d+ +)?(\w+)\((.*)$")


class Failure(Exception):
    """Why there is no count; its text is for the user."""


def calls_of_passes(trace):
    """A Counter of the names of the system calls of each pass in a trace of strace."""
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
    """What the program has counted."""
    return {name: int(count) for name, count in (line.split() for line in output.splitlines())}


def kinds_of_calls(traced, counted):
    """The calls of a pass by kind, from its trace and from what the program counted for it."""
    kinds = collections.Counter(traced)
    opens = kinds.pop("eventfd2", 0) + kinds.pop("openat", 0)
    if opens != counted["opens"]:
        raise Failure(f"{opens} opens are in the trace, but the nodes saw {counted['opens']}")
    if kinds["close"] != counted["closes"]:
        raise Failure(f"{kinds['close']} closes are in the trace, but the nodes saw"
                      f" {counted['closes']}")
    if kinds["ioctl"] != 0 or counted["reads"] != 0:
        raise Failure("the simulated nodes are not what is traced")
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
        raise Failure(f"{len(passes)} of {runs} passes are in the trace")
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
    parser.add_argument("--rows-only", action="store_true", help="leaves out the header")
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
