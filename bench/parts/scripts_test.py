#!/usr/bin/env python3
"""Tests to_csv.py and scan_calls.py on invented output of the programs they read."""
import csv
import io
import json
import os
import stat
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.path.dirname(os.path.abspath(__file__))
HEADER = "group,subject,stream,burst,parameter,figure,unit,median,low,high,runs"


def entry(name, items_per_second, family=0, label="click", **others):
    return {"name": name, "run_name": name, "run_type": "iteration", "family_index": family,
            "per_family_instance_index": 0, "label": label, "cpu_time": 1, "time_unit": "ns",
            "items_per_second": items_per_second, **others}


class ScriptTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def run_script(self, name, *arguments, **others):
        return subprocess.run([sys.executable, os.path.join(FOLDER, name), *arguments],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **others)


class ToCsvTest(ScriptTest):
    def convert(self, *entries):
        """The rows of some results, without the header."""
        path = self.write("parts.json", json.dumps({"benchmarks": list(entries)}))
        result = self.run_script("to_csv.py", path, "--rows-only")
        self.assertEqual((result.stderr, result.returncode), ("", 0))
        return list(csv.reader(io.StringIO(result.stdout)))

    def refuse(self, message, text):
        path = self.write("parts.json", text)
        result = self.run_script("to_csv.py", path)
        self.assertEqual(result.stdout, "")
        self.assertTrue(result.stderr.startswith(f"to_csv.py: {path}{message}"), result.stderr)
        self.assertEqual(result.returncode, 1)

    def test_repetitions_become_median_least_and_most(self):
        rows = self.convert(*(entry("A/b", rate) for rate in (1e7, 5e6, 2e6)))
        self.assertEqual(rows, [["parts", "A: b", "", "", "", "CPU time", "ns/click", "200", "100",
                                 "500", "3"]])

    def test_allocations_are_a_figure_of_their_own(self):
        rows = self.convert(entry("A/b", 1e9, allocations=1.25))
        self.assertEqual(rows[1], ["parts", "A: b", "", "", "", "allocations", "1/click", "1.25",
                                   "1.25", "1.25", "1"])

    def test_a_quantity_that_grows_makes_growth(self):
        rows = self.convert(entry("KeyHandler/click, deferred/registered keys:767", 1e9))
        self.assertEqual(rows[0][:5], ["growth", "KeyHandler: click, deferred", "", "",
                                       "registered keys=767"])

    def test_other_parameters_make_parts(self):
        rows = self.convert(entry("Input/report/DEBUG to null/receivers:5", 1e9))
        self.assertEqual(rows[0][:5], ["parts", "Input: report", "", "",
                                       "DEBUG to null, receivers=5"])

    def test_a_scan_says_what_is_scanned_in_microseconds(self):
        rows = self.convert(entry("scan/no change/nodes:5", 1e5, label="pass"))
        self.assertEqual(rows[0], ["scan", "library on simulated nodes", "", "",
                                   "nodes=5, no change", "CPU time", "us/pass", "10", "10", "10",
                                   "1"])

    def test_rows_are_in_the_order_of_definition(self):
        rows = self.convert(entry("C/c", 1e9, 2), entry("A/a", 1e9, 0), entry("B/b", 1e9, 1))
        self.assertEqual([row[1] for row in rows], ["A: a", "B: b", "C: c"])

    def test_aggregates_are_left_out(self):
        rows = self.convert(entry("A/b", 1e9), {**entry("A/b", 1), "run_type": "aggregate"})
        self.assertEqual(len(rows), 1)
        self.assertEqual(rows[0][-1], "1")

    def test_the_header_comes_first_unless_left_out(self):
        path = self.write("parts.json", json.dumps({"benchmarks": [entry("A/b", 1e9)]}))
        self.assertEqual(self.run_script("to_csv.py", path).stdout.splitlines()[0], HEADER)

    def test_what_is_not_json_is_refused_with_its_line(self):
        self.refuse(":2: not JSON", "{\n]")

    def test_other_json_is_refused(self):
        self.refuse(": not the results of vorn_bench_parts", "{}")
        self.refuse(": not the results of vorn_bench_parts", "[]")
        self.refuse(": not the results of vorn_bench_parts",
                    json.dumps({"benchmarks": [{"name": "A"}]}))

    def test_nothing_measured_is_refused(self):
        self.refuse(": no results", '{"benchmarks": []}')

    def test_a_benchmark_that_failed_is_refused(self):
        self.refuse(": 'A/b' failed: why", json.dumps(
            {"benchmarks": [entry("A/b", 1, error_occurred=True, error_message="why")]}))


# Replaces strace: writes a trace to the given file, and prints the program's counts.
STRACE = """#!/usr/bin/env python3
import sys
with open(sys.argv[3], "w") as file:
    file.write({trace!r})
print({counts!r})
sys.exit({status})
"""


class ScanCallsTest(ScriptTest):
    one_pass = ('1 write(-1, "begin", 5) = -1 EBADF\n'
                '1 statx(AT_FDCWD, "/dev/input") = 0\n'
                '1 eventfd2(0, EFD_CLOEXEC) = 5\n'
                '1 close(5) = 0\n'
                '1 openat(AT_FDCWD, "/dev/input/event1") = -1 ENOENT\n'
                '1 write(-1, "end", 3) = -1 EBADF\n')

    def trace(self, trace, counts, status=0):
        """Runs the script with the same trace for all its cases."""
        strace = self.write("strace", STRACE.format(trace=trace, counts=counts, status=status))
        os.chmod(strace, os.stat(strace).st_mode | stat.S_IXUSR)
        path = os.pathsep.join([self.folder, os.environ["PATH"]])
        return self.run_script("scan_calls.py", "program", env={**os.environ, "PATH": path})

    def refuse(self, message, *arguments):
        result = self.trace(*arguments)
        self.assertEqual((result.stdout, result.stderr, result.returncode),
                         ("", f"scan_calls.py: {message}\n", 1))

    def test_a_pass_has_the_calls_of_the_trace_and_the_ioctls_of_the_nodes(self):
        between = '1 mmap(NULL) = 0\n'
        result = self.trace(between + self.one_pass + between + self.one_pass,
                            "passes 2\nopens 4\nreads 0\nioctls 2\ncloses 2")
        self.assertEqual((result.stderr, result.returncode), ("", 0))
        lines = result.stdout.splitlines()
        self.assertEqual(lines[0], HEADER)
        case = [line.split('"')[2] for line in lines if '"nodes=5, no change"' in line]
        self.assertEqual(case, [",close calls,1/pass,1,1,1,2", ",ioctl calls,1/pass,1,1,1,2",
                                ",open calls,1/pass,2,2,2,2", ",statx calls,1/pass,1,1,1,2",
                                ",system calls,1/pass,5,5,5,2"])

    def test_a_count_that_contradicts_the_trace_is_refused(self):
        self.refuse("2 opens in the trace, but the nodes counted 3", self.one_pass,
                    "passes 1\nopens 3\nreads 0\nioctls 1\ncloses 1")
        self.refuse("1 closes in the trace, but the nodes counted 0", self.one_pass,
                    "passes 1\nopens 2\nreads 0\nioctls 1\ncloses 0")

    def test_passes_that_differ_are_refused(self):
        self.refuse("the passes differ: 5 opens in 2", self.one_pass * 2,
                    "passes 2\nopens 5\nreads 0\nioctls 2\ncloses 2")

    def test_a_trace_without_the_passes_is_refused(self):
        self.refuse("1 of 2 passes in the trace", self.one_pass,
                    "passes 2\nopens 4\nreads 0\nioctls 2\ncloses 2")

    def test_a_program_that_fails_is_refused(self):
        result = self.trace(self.one_pass, "", 3)
        self.assertEqual((result.stdout, result.returncode), ("", 1))
        self.assertIn("program 0 none' failed", result.stderr)


if __name__ == "__main__":
    unittest.main()
