#!/usr/bin/env python3
"""Tests report.py, from files to what it writes. The figures are made up."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

REPORT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "report.py")
HEADER = "group,subject,stream,burst,parameter,figure,unit,median,low,high,runs\n"

# Medians of 42 records a burst that meet every target, each of them exactly.
JUST_MET = {
    ("empty Qt shape", "clicks"): 100,
    ("empty Qt shape", "chords"): 100,
    ("library", "unmapped"): 150,
    ("library", "immediate"): 300,
    ("library", "deferred"): 400,
    ("library", "chords"): 400,
    ("triggerhappy", "clicks"): 800,
    ("triggerhappy", "chords"): 800,
}


def path_row(subject, stream, median, burst=42, parameter=None, figure="CPU time,ns/record"):
    if parameter is None:
        parameter = "logging off" if subject == "library" else ""
    return (f"path,{subject},{stream},{burst},{parameter},{figure},"
            f"{median},{median * 0.9},{median * 1.1},10\n")


class ReportTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.output = os.path.join(self.folder, "out")

    def file(self, name, *rows, header=HEADER):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(header + "".join(rows))
        return path

    def run_report(self, *files, plots=False, environment=None):
        options = [] if plots else ["--no-plots"]
        return subprocess.run([sys.executable, REPORT, *files, "-o", self.output, *options],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              env=environment)

    def make(self, *rows, plots=False):
        """The text of the report of some rows."""
        result = self.run_report(self.file("results.csv", *rows), plots=plots)
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.returncode, 0)
        with open(os.path.join(self.output, "results.md"), encoding="utf-8") as file:
            return file.read()

    def refuse(self, message, *files, **arguments):
        """No report, and @p message, in which {} is the first file's name."""
        result = self.run_report(*files, **arguments)
        self.assertEqual(result.stderr, "report.py: " + message.replace("{}", files[0]) + "\n")
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.returncode, 1)
        self.assertFalse(os.path.exists(self.output))


class PathTableTest(ReportTest):
    def test_a_row_tells_median_spread_and_ratios_to_the_same_raw_stream(self):
        text = self.make(path_row("bare loop", "clicks", 50), path_row("bare loop", "chords", 80),
                         path_row("empty Qt shape", "clicks", 100),
                         path_row("triggerhappy", "clicks", 600),
                         path_row("Qt evdev keyboard", "clicks", 700),
                         path_row("library", "deferred", 200))
        self.assertIn("| library | deferred | 200 (180–220) | 4.00 | 2.00 | 3.00 | 3.50 |\n", text)
        self.assertIn("| triggerhappy | clicks | 600 (540–660) | 12.00 | 6.00 |  |  |\n", text)

    def test_each_figure_is_a_column_with_its_unit(self):
        text = self.make(path_row("library", "held", 200),
                         path_row("library", "held", 1000, figure="instructions,1/record"),
                         path_row("library", "held", 10, figure="reads,1/burst"))
        self.assertIn("| CPU time, ns/record | instructions/record | reads/burst |", text)
        self.assertIn("| library | held | 200 (180–220) | 1000 (900–1100) | 10 (9–11) |", text)

    def test_bursts_have_tables_of_their_own(self):
        text = self.make(path_row("bare loop", "clicks", 50),
                         path_row("bare loop", "clicks", 500, burst=2),
                         path_row("library", "unmapped", 600, burst=2))
        large, small = text.split("### 42 records a burst")[1].split("### 2 records a burst")
        self.assertIn("| bare loop | clicks | 50 (45–55) | 1.00 |", large)
        self.assertIn("| library | unmapped | 600 (540–660) | 1.20 |", small)
        self.assertNotIn("library", large)

    def test_logging_is_not_compared_to_those_that_do_not_log(self):
        text = self.make(path_row("triggerhappy", "clicks", 600),
                         path_row("library", "unmapped", 200),
                         path_row("library", "unmapped", 2000, parameter="DEBUG to null"))
        self.assertIn("| library | unmapped | 200 (180–220) |  |  | 3.00 |  |\n", text)
        self.assertIn("| library, DEBUG to null | unmapped | 2000 (1800–2200) |  |  |  |  |", text)

    def test_no_spread_is_written_without_one(self):
        text = self.make("path,library,held,42,logging off,allocations,1/record,1.25,1.25,1.25,9\n")
        self.assertIn("| library | held | 1.25 |", text)


class TargetTest(ReportTest):
    def verdicts(self, changes=None):
        times = {**JUST_MET, **(changes or {})}
        text = self.make(*(path_row(subject, stream, median)
                           for (subject, stream), median in times.items()))
        section = text.split("## Targets")[1].split("## Whole path")[0]
        rows = [[cell.strip() for cell in line.split("|")[1:-1]]
                for line in section.splitlines() if "÷" in line]
        return {tuple(row[:3]): tuple(row[4:]) for row in rows}

    def test_a_limit_that_is_just_reached_is_met(self):
        verdicts = self.verdicts()
        self.assertEqual(verdicts["library ÷ empty Qt shape", "unmapped", "42"], ("1.50", "met"))
        self.assertEqual(verdicts["library ÷ empty Qt shape", "chords", "42"], ("4.00", "met"))
        self.assertEqual(verdicts["triggerhappy ÷ library", "deferred", "42"], ("2.00", "met"))

    def test_a_limit_that_is_passed_is_missed(self):
        verdicts = self.verdicts({("library", "immediate"): 301, ("library", "deferred"): 402})
        self.assertEqual(verdicts["library ÷ empty Qt shape", "immediate", "42"],
                         ("3.01", "**missed**"))
        self.assertEqual(verdicts["triggerhappy ÷ library", "deferred", "42"],
                         ("1.99", "**missed**"))

    def test_what_was_not_measured_is_neither(self):
        verdicts = self.verdicts()
        self.assertEqual(verdicts["Qt evdev keyboard ÷ library", "unmapped", "42"],
                         ("", "not measured"))
        self.assertEqual(verdicts["library ÷ bare loop", "switches", "2"], ("", "not measured"))
        self.assertEqual(len(verdicts), 4 + 11 + 6)

    def test_only_what_is_measured_in_service_counts(self):
        text = self.make(path_row("empty Qt shape", "clicks", 100),
                         path_row("library", "unmapped", 100, parameter="DEBUG to null"))
        self.assertIn("÷ empty Qt shape | unmapped | 42 | ≤ 1.5 |  | not measured |", text)

    def test_the_verdicts_are_printed_and_leave_the_status_alone(self):
        path = self.file("results.csv", path_row("empty Qt shape", "clicks", 100),
                         path_row("library", "unmapped", 151))
        result = self.run_report(path)
        self.assertEqual(result.returncode, 0)
        self.assertIn("library ÷ empty Qt shape  unmapped  42  ≤ 1.5  1.51  missed\n",
                      result.stdout)
        self.assertIn("not measured: wakeup, hold, growth, parts, scan, start", result.stdout)


class GroupTest(ReportTest):
    def test_growth_has_a_column_for_each_value_and_the_whole_growth(self):
        text = self.make(*(f"growth,library,,,registered keys={keys},CPU time,ns/record,"
                           f"{time},{time},{time},10\n" for keys, time in ((767, 300), (1, 200))),
                         "growth,click,,,registered keys=10,CPU time,ns/click,5,5,5,10\n")
        self.assertIn("### By registered keys\n", text)
        self.assertIn("| subject | figure | 1 | 10 | 767 | last ÷ first |\n", text)
        self.assertIn("| library | CPU time, ns/record | 200 |  | 300 | 1.50 |\n", text)
        self.assertIn("| click | CPU time, ns/click |  | 5 |  | 1.00 |\n", text)

    def test_growth_keeps_streams_apart(self):
        text = self.make("growth,library,held,42,devices=1,CPU time,ns/record,5,5,5,10\n",
                         "growth,library,chords,42,devices=1,CPU time,ns/record,7,7,7,10\n")
        self.assertIn("| library, held, 42 records a burst | CPU time, ns/record | 5 | 1.00", text)
        self.assertIn("| library, chords, 42 records a burst | CPU time, ns/record | 7 | 1.0", text)

    def test_other_groups_have_a_row_for_each_thing_and_a_column_for_each_figure(self):
        text = self.make("latency,bare loop,clicks,2,armhf,p50,us,31.25,30,33,5\n",
                         "latency,bare loop,clicks,2,armhf,p99,us,90,80,99,5\n",
                         "latency,library,clicks,2,armhf,p50,us,32,32,32,5\n",
                         'scan,library,,,"nodes=5, no change",system calls,1/pass,27,27,27,1\n',
                         "footprint,libvorn_input.so,,,armhf,stripped size,bytes,819,819,819,1\n")
        self.assertIn("| subject | stream | burst | parameter | p50, us | p99, us |\n", text)
        self.assertIn("| bare loop | clicks | 2 | armhf | 31.2 (30–33) | 90 (80–99) |\n", text)
        self.assertIn("| library | clicks | 2 | armhf | 32 |  |\n", text)
        self.assertIn("| subject | parameter | per | system calls |\n", text)
        self.assertIn("| library | nodes=5, no change | pass | 27 |\n", text)
        self.assertIn("| libvorn_input.so | armhf | 819 |\n", text)

    def test_missing_groups_are_named_and_left_out(self):
        text = self.make("parts,Input: report,,,,CPU time,ns/event,50,40,60,10\n")
        self.assertIn("Not measured: Whole path, Wake-ups, A key that is held, Growth, Device scan,"
                      " Start, Latency, Silence,"
                      " Memory, Footprint.\n", text)
        self.assertEqual([line for line in text.splitlines() if line.startswith("## ")],
                         ["## Targets", "## Parts"])

    def test_files_are_put_together(self):
        files = [self.file("a.csv", path_row("bare loop", "clicks", 50)),
                 self.file("b.csv", path_row("library", "unmapped", 100))]
        self.assertEqual(self.run_report(*files).returncode, 0)
        with open(os.path.join(self.output, "results.md"), encoding="utf-8") as file:
            self.assertIn("| library | unmapped | 100 (90–110) | 2.00 |", file.read())


class MistakeTest(ReportTest):
    good = "parts,A,,,,CPU time,ns/event,50,40,60,10\n"

    def test_another_header(self):
        path = self.file("a.csv", self.good, header="group,subject\n")
        self.refuse("{}:1: the first line is not '" + HEADER.strip() + "'", path)

    def test_an_empty_file(self):
        path = self.file("a.csv", header="")
        self.refuse("{}:1: the first line is not '" + HEADER.strip() + "'", path)

    def test_no_rows(self):
        self.refuse("no results in {}", self.file("a.csv"))

    def test_a_missing_file(self):
        self.refuse("{}: No such file or directory", os.path.join(self.folder, "none.csv"))

    def test_not_a_text(self):
        path = self.file("a.csv")
        with open(path, "ab") as file:
            file.write(b"parts,\xff\n")
        self.refuse("{}: not a text in UTF-8", path)

    def test_rows(self):
        for row, message in (
                ("parts,A,,,,CPU time,ns,50,40,60\n", "10 columns in place of 11"),
                ("partss,A,,,,CPU time,ns,50,40,60,10\n", "there is no group 'partss'"),
                ("parts,,,,,CPU time,ns,50,40,60,10\n", "the column subject is empty"),
                ("parts,A,,,,CPU time,,50,40,60,10\n", "the column unit is empty"),
                ("parts,A,,,,CPU time,ns,fast,40,60,10\n",
                 "the column median is 'fast', not a figure"),
                ("parts,A,,,,CPU time,ns,nan,40,60,10\n",
                 "the column median is 'nan', not a figure"),
                ("parts,A,,,,CPU time,ns,50,,60,10\n", "the column low is '', not a figure"),
                ("parts,A,,,,CPU time,ns,50,51,60,10\n", "the median is not between low and high"),
                ("parts,A,,,,CPU time,ns,50,40,49,10\n", "the median is not between low and high"),
                ("parts,A,,,,CPU time,ns,50,40,60,0\n",
                 "the column runs is '0', not a number of things"),
                ("parts,A,,x,,CPU time,ns,50,40,60,10\n",
                 "the column burst is 'x', not a number of things"),
                (self.good, "the same as {}:2")):
            with self.subTest(row=row):
                self.refuse("{}:3: " + message, self.file("a.csv", self.good, row))

    def test_the_same_row_in_two_files(self):
        first = self.file("a.csv", self.good)
        second = self.file("b.csv", self.good)
        self.refuse(f"{second}:2: the same as {first}:2", first, second)

    def test_growth_of_nothing(self):
        path = self.file("a.csv", "growth,A,,,registered keys,CPU time,ns/event,50,40,60,10\n")
        self.refuse("the parameter 'registered keys' of 'A' does not tell what grows", path)

    def test_a_former_report_stays_as_it_was(self):
        self.make(self.good)
        with open(os.path.join(self.output, "results.md"), encoding="utf-8") as file:
            before = file.read()
        result = self.run_report(self.file("results.csv", self.good, "x\n"))
        self.assertEqual(result.returncode, 1)
        with open(os.path.join(self.output, "results.md"), encoding="utf-8") as file:
            self.assertEqual(file.read(), before)

    def test_plots_without_gnuplot(self):
        path = self.file("a.csv", path_row("library", "held", 100))
        self.refuse("cannot run gnuplot: No such file or directory (--no-plots does without)", path,
                    plots=True, environment={**os.environ, "PATH": self.folder})


@unittest.skipUnless(shutil.which("gnuplot"), "gnuplot is missing")
class PlotTest(ReportTest):
    def texts(self, name):
        """What is written in a picture."""
        tree = xml.etree.ElementTree.parse(os.path.join(self.output, name))
        return ["".join(element.itertext()).strip()
                for element in tree.iter("{http://www.w3.org/2000/svg}text")]

    def test_bars_are_named_and_numbered_and_their_axis_has_a_unit(self):
        text = self.make(path_row("bare loop", "clicks", 50), path_row("library", "deferred", 123),
                         path_row("library", "chords", 456),
                         path_row("library", "chords", 7890, parameter="DEBUG to null"), plots=True)
        self.assertIn("![CPU time a record, 42 records a burst](path-42.svg)", text)
        texts = self.texts("path-42.svg")
        for expected in ("bare loop", "library, deferred", "library", "CLICKS", "CHORDS", "50",
                         "123", "456", "CPU time, ns/record: median, least and most"):
            self.assertIn(expected, texts)
        self.assertNotIn("7890", texts)

    def test_curves_are_named_and_their_axes_have_units(self):
        text = self.make(*(f"growth,{subject},,,{quantity}={value},CPU time,{unit},9,8,10,10\n"
                           for subject, unit in (("library", "ns/record"), ("a_b \"c\"", "ns/tick"))
                           for quantity in ("keys held", "registered keys", "devices",
                                            "records per read")
                           for value in (1, 100)), plots=True)
        for quantity in ("keys-held", "registered-keys", "devices", "records-per-read"):
            self.assertIn(f"(growth-{quantity}.svg)", text)
        texts = self.texts("growth-keys-held.svg")
        for expected in ("library, per record", "a_b 'c', per tick", "keys held", "CPU time, ns",
                         "100"):
            self.assertIn(expected, texts)

    def test_what_was_not_measured_has_no_picture(self):
        text = self.make("parts,A,,,,CPU time,ns/event,50,40,60,10\n",
                         "growth,A,,,devices=1,allocations,1/event,1,1,1,10\n", plots=True)
        self.assertEqual(os.listdir(self.output), ["results.md"])
        self.assertNotIn("![", text)


if __name__ == "__main__":
    unittest.main()
