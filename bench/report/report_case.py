"""What the tests of the report share: invented results, and reports of them."""
import os
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.path.dirname(os.path.abspath(__file__))
HEADER = "group,subject,stream,burst,parameter,figure,unit,median,low,high,runs\n"
GOOD_ROW = "parts,A,,,,CPU time,ns/event,50,40,60,10\n"


def path_row(subject, stream, median, burst=42, parameter=None, figure="CPU time,ns/record"):
    if parameter is None:
        parameter = "logging off" if subject == "library" else ""
    return (f"path,{subject},{stream},{burst},{parameter},{figure},"
            f"{median},{median * 0.9},{median * 1.1},10\n")


class ReportCase(unittest.TestCase):
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

    def run_report(self, *files, has_plots=False, environment=None):
        options = [] if has_plots else ["--no-plots"]
        script = os.path.join(FOLDER, "report.py")
        return subprocess.run([sys.executable, script, *files, "-o", self.output, *options],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              env=environment)

    def written(self):
        with open(os.path.join(self.output, "results.md"), encoding="utf-8") as file:
            return file.read()

    def make(self, *rows, has_plots=False):
        """The text of the report of some rows."""
        result = self.run_report(self.file("results.csv", *rows), has_plots=has_plots)
        self.assertEqual((result.stderr, result.returncode), ("", 0))
        return self.written()
