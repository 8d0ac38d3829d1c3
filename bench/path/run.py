#!/usr/bin/env python3
"""Measures the whole path from a node to an application, for the library and for its peers."""

import argparse
import csv
import json
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

COLUMNS = ["group", "subject", "stream", "burst", "parameter", "figure", "unit", "median", "low",
           "high", "runs"]
RAW_STREAMS = ["clicks", "chords", "held", "switches"]
# What the library makes of them, by its registrations.
STREAMS = {"unmapped": "clicks", "immediate": "clicks", "deferred": "clicks", "chords": "chords",
           "held": "held", "switches": "switches"}
# As many as one read of the library takes on a 64-bit machine, and one press with its SYN_REPORT.
BURSTS = [42, 2]
LOG_OFF = "logging off"
LOG_DEBUG = "DEBUG to null"


class Bench:
    """The programs of a build, and how to run them."""

    def __init__(self, build, peers, scratch):
        self.folder = Path(build).resolve() / "bench" / "path"
        self.scratch = Path(scratch)
        self.node = self.folder / "libvorn_bench_node.so"
        self.allocations = self.folder / "libvorn_bench_allocations.so"
        # One that is never pressed, so that the daemon starts nothing.
        trigger = self.scratch / "one.conf"
        trigger.write_text("KEY_MUTE 1 /bin/true\n")
        self.peers = {
            "bare loop": [self.program("bare_loop")],
            "libevdev loop": [self.program("libevdev_loop")],
            "empty Qt shape": [self.program("empty_qt")],
            "Qt evdev keyboard": [self.program("qt_evdev")],
        }
        if peers:
            peers = Path(peers).resolve()
            self.peers["triggerhappy"] = [str(peers / "usr/sbin/thd"), "--triggers", str(trigger),
                                          "/dev/input/event0"]
            self.peers["interception-tools"] = [str(peers / "usr/bin/interception"),
                                                "/dev/input/event0"]

    def program(self, name):
        return str(self.folder / f"vorn_bench_{name}")

    def library(self, stream, *options):
        return [self.program("library"), stream, *options]

    def feed(self, command, stream, burst, records, preload=(), options=()):
        """One run; what the feeder says of it."""
        arguments = [self.program("feeder"), "--stream", stream, "--burst", str(burst),
                     "--records", str(records), *options]
        for library in [self.node, *preload]:
            arguments += ["--preload", str(library)]
        result = subprocess.run([*arguments, "--", *command], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True, env=environment())
        if result.returncode != 0:
            raise SystemExit(f"path.py: {result.stderr.strip()}")
        return json.loads(result.stdout)

    def nanoseconds(self, command, stream, burst, records, options=()):
        """CPU time for each record."""
        run = self.feed(command, stream, burst, records, options=options)
        return run["nanoseconds"] / run["records"]

    def allocated(self, command, stream, burst, options=()):
        run = self.feed(command, stream, burst, 100 * burst, [self.allocations], options)
        return run["allocations"] / run["records"]

    def instructions(self, command, stream, burst, options=()):
        """What a further record costs: the difference of two runs, without the start."""
        output = self.scratch / "callgrind.out"
        bursts = [100, 300]
        totals = []
        for number in bursts:
            output.unlink(missing_ok=True)
            self.feed(["valgrind", "--tool=callgrind", "--quiet",
                       f"--callgrind-out-file={output}", *command], stream, burst,
                      number * burst, options=["--warm-up", str(10 * burst), *options])
            totals.append(int(re.search(r"^(?:totals|summary): (\d+)", output.read_text(),
                                        re.MULTILINE).group(1)))
        return (totals[1] - totals[0]) / ((bursts[1] - bursts[0]) * burst)

    def system_calls(self, command, stream, burst, options=()):
        """What each further burst takes, by the names of the system calls."""
        output = self.scratch / "strace.out"
        bursts = [100, 300]
        counts = []
        for number in bursts:
            output.unlink(missing_ok=True)
            # The tracer as a grandchild: the feeder's child is the subject.
            self.feed(["strace", "-D", "-f", "-c", "-o", str(output), *command], stream, burst,
                      number * burst, options=["--warm-up", str(10 * burst), *options])
            counts.append(count_calls(output))
        return {name: (counts[1].get(name, 0) - counts[0].get(name, 0)) / (bursts[1] - bursts[0])
                for name in counts[1]}


def environment():
    """What a program finds around it changes how many instructions it takes."""
    kept = {name: os.environ[name] for name in ("PATH", "HOME", "QT_NO_GLIB") if name in os.environ}
    # Qt salts its hash tables unless it is told not to.
    return {**kept, "LC_ALL": "C.UTF-8", "QT_HASH_SEED": "0"}


def count_calls(table):
    """The numbers of strace's table, once it has been written."""
    # The tracer writes it when its subject has ended, which is not waited for.
    for _ in range(100):
        if table.exists() and "total" in table.read_text():
            break
        time.sleep(0.05)
    else:
        raise SystemExit("path.py: strace has counted nothing; may it trace processes here?")
    calls = {}
    for line in table.read_text().splitlines():
        fields = line.split()
        if len(fields) >= 5 and fields[0][0].isdigit():
            calls[fields[-1]] = int(fields[3])
    return calls


class Rows:
    def __init__(self):
        self.rows = []

    def add(self, group, subject, stream, burst, parameter, figure, unit, values):
        self.rows.append([group, subject, stream, burst, parameter, figure, unit,
                          f"{statistics.median(values):.6g}", f"{min(values):.6g}",
                          f"{max(values):.6g}", len(values)])

    def write(self, path):
        # Whole or not at all.
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
    """(subject, stream as it is named, parameter, command, raw stream) of the whole path."""
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
        # In turns, so that what disturbs the machine for a while disturbs all.
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
    """The same where every burst finds its reader asleep, as a key does."""
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
            # A burst that grows is no series of its own.
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
    """A key that is held: what the ticks of its long press cost."""
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
    parser.add_argument("--build", default="build/release", help="folder of the build")
    parser.add_argument("--peers", help="folder that triggerhappy and interception-tools are "
                        "unpacked in; without it they are left out")
    parser.add_argument("--runs", type=int, default=10, help="runs of each (default: 10)")
    parser.add_argument("--only", choices=["path", "wakeup", "growth", "hold"],
                        help="measure only this")
    parser.add_argument("--no-counts", action="store_true",
                        help="times only: neither instructions, allocations nor system calls")
    parser.add_argument("output", help="the CSV file that is written")
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
