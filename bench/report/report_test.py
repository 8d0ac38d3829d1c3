"""Tests report.py as a program: from files to what it writes and prints."""
import os

from report_case import GOOD_ROW, ReportCase, path_row


class ReportTest(ReportCase):
    def refuse(self, message, *files, **arguments):
        """@p message, and no report."""
        result = self.run_report(*files, **arguments)
        self.assertEqual((result.stdout, result.stderr, result.returncode),
                         ("", f"report.py: {message}\n", 1))
        self.assertFalse(os.path.exists(self.output))

    def test_missing_groups_are_named_and_left_out(self):
        text = self.make(GOOD_ROW)
        self.assertIn("Not measured: Whole path, Wake-ups, A held key, Growth, Device scan, Start,"
                      " Latency, Silence, Memory, Footprint.\n", text)
        self.assertEqual([line for line in text.splitlines() if line.startswith("## ")],
                         ["## Targets", "## Parts"])

    def test_files_are_combined(self):
        files = [self.file("a.csv", path_row("bare loop", "clicks", 50)),
                 self.file("b.csv", path_row("library", "unmapped", 100))]
        self.assertEqual(self.run_report(*files).returncode, 0)
        self.assertIn("| library | unmapped | 100 (90–110) | 2.00 |", self.written())

    def test_the_verdicts_are_in_the_report(self):
        text = self.make(path_row("empty Qt shape", "clicks", 100),
                         path_row("library", "unmapped", 151),
                         path_row("library", "immediate", 100, parameter="DEBUG to null"))
        self.assertIn("÷ empty Qt shape | unmapped | 42 | ≤ 1.5 | 1.51 | **missed** |\n", text)
        self.assertIn("÷ empty Qt shape | immediate | 42 | ≤ 3 |  | not measured |\n", text)

    def test_the_verdicts_are_printed_and_leave_the_status_alone(self):
        path = self.file("results.csv", path_row("empty Qt shape", "clicks", 100),
                         path_row("library", "unmapped", 151))
        result = self.run_report(path)
        self.assertEqual(result.returncode, 0)
        self.assertIn("library ÷ empty Qt shape  unmapped  42  ≤ 1.5  1.51  missed\n",
                      result.stdout)
        self.assertIn("not measured: wakeup, hold, growth, parts, scan, start", result.stdout)

    def test_files_that_cannot_be_read_leave_no_report(self):
        path = os.path.join(self.folder, "none.csv")
        self.refuse(f"{path}: No such file or directory", path)
        path = self.file("a.csv", GOOD_ROW, "x\n")
        self.refuse(f"{path}:3: 1 columns instead of 11", path)

    def test_growth_of_nothing_leaves_no_report(self):
        path = self.file("a.csv", "growth,A,,,devices,CPU time,ns/event,50,40,60,10\n")
        self.refuse("parameter 'devices' of 'A' is not QUANTITY=NUMBER", path)

    def test_plots_without_gnuplot_leave_no_report(self):
        path = self.file("a.csv", path_row("library", "held", 100))
        self.refuse("cannot run gnuplot: No such file or directory (--no-plots works without it)",
                    path, has_plots=True, environment={**os.environ, "PATH": self.folder})

    def test_a_former_report_stays_as_it_was(self):
        before = self.make(GOOD_ROW)
        result = self.run_report(self.file("results.csv", GOOD_ROW, "x\n"))
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.written(), before)
