"""Tests to_csv.py on invented results."""
import csv
import io
import json

from script_case import HEADER, ScriptCase


def entry(name, items_per_second, family=0, label="click", **others):
    return {"name": name, "run_name": name, "run_type": "iteration", "family_index": family,
            "per_family_instance_index": 0, "label": label, "cpu_time": 1, "time_unit": "ns",
            "items_per_second": items_per_second, **others}


class ToCsvTest(ScriptCase):
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
