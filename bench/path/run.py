#!/usr/bin/env python3
"""Measures the whole path from a node to an application, for the library and for its peers."""

import argparse
import csv
import statistics
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
from subjects import BURSTS, RAW_STREAMS, STREAMS, Bench  # noqa: E402

COLUMNS = ["group", "subject", "stream", "burst", "parameter", "figure", "unit", "median", "low",
           "high", "runs"]
LOG_OFF = "logging off"
LOG_DEBUG = "DEBUG to null"


class Rows:
    def __init__(self):
        self.rows = []

    def add(self, group, subject, stream, burst, parameter, figure, unit, values):
        self.rows.append([group, subject, stream, burst, parameter, figure, unit,
                          f"{statistics.median(values):.6g}", f"{min(values):.6g}",
                          f"{max(values):.6g}", len(values)])

    def write(self, path):
        # Readers never see half a file.
        new = Path(f"{path}.new")
        with open(new, "w", newline="") as file:
            writer = csv.writer(file, lineterminator="\n")
            writer.writerow(COLUMNS)
            writer.writerows(self.rows)
        new.rename(path)


def progress(text):
    if sys.stderr.isatty():
        print(f"\r\033[K{text}", end="", file=sys.stderr, flush=True)


def cases(bench):
    """(subject, stream, parameter, command, raw stream) of every measurement of the path."""
    result = []
    for subject, command in bench.peers.items():
        result += [(subject, stream, "", command, stream) for stream in RAW_STREAMS]
    for stream, raw in STREAMS.items():
        result.append(("library", stream, LOG_OFF, bench.library(stream), raw))
        result.append(("library", stream, LOG_DEBUG, bench.library(stream, "--debug"), raw))
    return result


def measure_path(bench, rows, runs, counts):
    for burst in BURSTS:
        records = 42_000 if burst > 2 else 10_000
        times = {}
        # Interleaved, so that a disturbance of the machine affects all subjects alike.
        for run in range(runs):
            for case in cases(bench):
                progress(f"burst {burst}, run {run + 1} of {runs}: {case[0]}, {case[1]}")
                times.setdefault(case[:3], []).append(
                    bench.nanoseconds(case[3], case[4], burst, records, ["--pace", "read"]))
        for subject, stream, parameter, command, raw in cases(bench):
            row = ["path", subject, stream, burst, parameter]
            rows.add(*row, "CPU time", "ns/record", times[subject, stream, parameter])
            if not counts:
                continue
            progress(f"burst {burst}, counts: {subject}, {stream}")
            rows.add(*row, "instructions", "1/record", [bench.instructions(command, raw, burst)])
            rows.add(*row, "allocations", "1/record", [bench.allocated(command, raw, burst)])
            calls = bench.system_calls(command, raw, burst)
            rows.add(*row, "system calls", "1/burst", [calls["total"]])
            rows.add(*row, "reads", "1/burst", [calls["read"]])


def measure_wakeups(bench, rows, runs):
    """The same with every burst finding its reader asleep, as a key press does."""
    clicks = [case for case in cases(bench) if case[4] == "clicks" and case[2] != LOG_DEBUG]
    times = {}
    for run in range(runs):
        for case in clicks:
            progress(f"wake-ups, run {run + 1} of {runs}: {case[0]}, {case[1]}")
            times.setdefault(case[:3], []).append(
                2 * bench.nanoseconds(case[3], case[4], 2, 10_000))
    for (subject, stream, parameter), values in times.items():
        rows.add("wakeup", subject, stream, 2, parameter, "CPU time", "ns/wake-up", values)


def measure_growth(bench, rows, runs, counts):
    grown = []
    for number in [1, 10, 100, 767]:
        grown.append(("registered keys", number, 42,
                      ["--keys", "1"], ["--keys", "1", "--registered", str(number)]))
    for number in [1, 2, 5, 10]:
        grown.append(("devices", number, 42, ["--devices", str(number)],
                      ["--devices", str(number)]))
    for number in [1, 2, 4, 8, 16, 32, 42]:
        grown.append(("records per read", number, number, [], []))
    for stream in ["unmapped", "immediate", "deferred"]:
        for quantity, number, burst, feeding, options in grown:
            progress(f"growth: {stream}, {quantity} {number}")
            # Where the burst is what grows, it must not split the series.
            row = ["growth", "library", stream, "" if burst == number else burst,
                   f"{quantity}={number}"]
            command = bench.library(stream, *options)
            rows.add(*row, "CPU time", "ns/record",
                     [bench.nanoseconds(command, STREAMS[stream], burst, max(burst, 10) * 1000,
                                        feeding) for _ in range(runs)])
            if counts:
                rows.add(*row, "instructions", "1/record",
                         [bench.instructions(command, STREAMS[stream], burst, feeding)])


def measure_hold(bench, rows, runs):
    """What the ticks of a long press cost while its key is held."""
    for parameter, options in [(LOG_OFF, []), (LOG_DEBUG, ["--debug"])]:
        wakeups, times, events = [], [], []
        for run in range(runs):
            progress(f"held key, run {run + 1} of {runs}")
            result = bench.feed(bench.library("held", *options), "hold", 2, 0,
                                options=["--seconds", "2"])
            wakeups.append(result["sleeps"] / 2)
            times.append(result["nanoseconds"] / 2 / 1000)
            events.append(result["results"] / 2)
        row = ["hold", "library", "held", "", parameter]
        rows.add(*row, "CPU time", "us/s", times)
        rows.add(*row, "wake-ups", "1/s", wakeups)
        rows.add(*row, "long presses", "1/s", events)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", default="build/release", help="build folder (default: %(default)s)")
    parser.add_argument("--peers", help="folder with triggerhappy and interception-tools "
                        "unpacked; without it they are left out")
    parser.add_argument("--runs", type=int, default=10, help="runs of each case (default: %(default)s)")
    parser.add_argument("--only", choices=["path", "wakeup", "growth", "hold"],
                        help="run only this group")
    parser.add_argument("--no-counts", action="store_true",
                        help="times only: no instructions, allocations or system calls")
    parser.add_argument("output", help="the CSV file to write")
    options = parser.parse_args()
    rows = Rows()
    with tempfile.TemporaryDirectory() as scratch:
        bench = Bench(options.build, options.peers, scratch)
        counts = not options.no_counts
        if options.only in (None, "path"):
            measure_path(bench, rows, options.runs, counts)
        if options.only in (None, "wakeup"):
            measure_wakeups(bench, rows, options.runs)
        if options.only in (None, "growth"):
            measure_growth(bench, rows, max(1, options.runs // 3), counts)
        if options.only in (None, "hold"):
            measure_hold(bench, rows, max(1, options.runs // 3))
    progress("")
    rows.write(options.output)


if __name__ == "__main__":
    main()
