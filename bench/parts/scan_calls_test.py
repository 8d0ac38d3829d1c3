"""Tests scan_calls.py on invented traces and counts."""
import os
import stat

from script_case import HEADER, ScriptCase

# Replaces strace: writes a trace to the given file, and prints the program's counts.
STRACE = """#!/usr/bin/env python3
import sys
with open(sys.argv[3], "w") as file:
    file.write({trace!r})
print({counts!r})
sys.exit({status})
"""


class ScanCallsTest(ScriptCase):
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
