#!/usr/bin/env python3
"""Converts the JSON of vorn_bench_parts to rows of the results' CSV.

    vorn_bench_parts --benchmark_format=json --benchmark_repetitions=10 \\
        --benchmark_enable_random_interleaving=true > parts.json
    to_csv.py parts.json > parts.csv

Each benchmark gives one row for the CPU time of an item and one for its allocations, with the
median, minimum and maximum of its repetitions. A benchmark named "A/b/c/d:1" has the subject "A: b"
and the parameter "c, d=1". Its group is

- growth, if its only parameter is a quantity that grows;
- scan, if it measures the scan of the nodes, which its parameter describes;
- parts otherwise.
"""
import argparse
import csv
import json
import statistics
import sys

HEADER = ["group", "subject", "stream", "burst", "parameter", "figure", "unit", "median", "low",
          "high", "runs"]
GROWING = {"registered keys", "devices", "records per read", "keys held"}
# The guests measure the scan on kernel nodes, under another name.
SCAN_SUBJECT = "library on simulated nodes"


class Failure(Exception):
    """Why a file cannot be used; its text is shown to the user."""


def place_of(name):
    """The group, subject and parameter in a benchmark's name."""
    parts = name.split("/")
    arguments = [part.replace(":", "=", 1) for part in parts[1:] if ":" in part]
    words = [part for part in parts if ":" not in part]
    if parts[0] == "scan":
        return "scan", SCAN_SUBJECT, ", ".join(arguments + words[1:])
    subject = ": ".join(words[:2])
    parameters = words[2:] + arguments
    if len(parameters) == 1 and parameters[0].split("=")[0] in GROWING:
        return "growth", subject, parameters[0]
    return "parts", subject, ", ".join(parameters)


def order(entry):
    """Sorts entries in the order of their definition."""
    return entry["family_index"], entry["per_family_instance_index"]


def load(path):
    """The repetitions of each benchmark in a file, by name."""
    try:
        with open(path, encoding="utf-8") as file:
            document = json.load(file)
    except OSError as error:
        raise Failure(f"{path}: {error.strerror}")
    except json.JSONDecodeError as error:
        raise Failure(f"{path}:{error.lineno}: not JSON: {error.msg}")
    runs = {}
    try:
        # Interleaved repetitions come in random order.
        for entry in sorted(document["benchmarks"], key=order):
            if entry.get("error_occurred"):
                raise Failure(f"{path}: '{entry['name']}' failed: {entry.get('error_message')}")
            if entry["run_type"] != "iteration":
                continue
            runs.setdefault(entry["run_name"], []).append(
                {"time": 1e9 / float(entry["items_per_second"]), "item": entry["label"],
                 "allocations": entry.get("allocations")})
    except (KeyError, TypeError, ValueError, ZeroDivisionError) as error:
        raise Failure(f"{path}: not the results of vorn_bench_parts: {error!r}")
    if not runs:
        raise Failure(f"{path}: no results")
    return runs


def number(value):
    """A figure with five digits at most, or all of its whole part."""
    return f"{value:.5g}" if value < 10000 else f"{value:.0f}"


def rows_of(name, runs):
    """The rows of one benchmark."""
    group, subject, parameter = place_of(name)
    item = runs[0]["item"]
    # In microseconds, like the passes in the guests.
    unit, scale = ("us", 1000) if group == "scan" else ("ns", 1)
    figures = [("CPU time", f"{unit}/{item}", [run["time"] / scale for run in runs])]
    if runs[0]["allocations"] is not None:
        figures.append(("allocations", f"1/{item}", [run["allocations"] for run in runs]))
    return [[group, subject, "", "", parameter, figure, unit, number(statistics.median(values)),
             number(min(values)), number(max(values)), len(values)]
            for figure, unit, values in figures]


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", metavar="FILE", nargs="+", help="output of vorn_bench_parts")
    parser.add_argument("--rows-only", action="store_true", help="leave out the header")
    options = parser.parse_args()
    try:
        rows = [row for path in options.files for name, runs in load(path).items()
                for row in rows_of(name, runs)]
    except Failure as failure:
        print(f"to_csv.py: {failure}", file=sys.stderr)
        return 1
    writer = csv.writer(sys.stdout, lineterminator="\n")
    if not options.rows_only:
        writer.writerow(HEADER)
    writer.writerows(rows)
    return 0


if __name__ == "__main__":
    sys.exit(main())
