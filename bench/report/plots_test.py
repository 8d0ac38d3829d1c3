"""Tests plots.py by the text in the pictures that gnuplot draws."""
import os
import shutil
import unittest
import xml.etree.ElementTree

from report_case import GOOD_ROW, ReportCase, path_row


@unittest.skipUnless(shutil.which("gnuplot"), "gnuplot is missing")
class PlotTest(ReportCase):
    def texts(self, name):
        """The labels in a picture."""
        tree = xml.etree.ElementTree.parse(os.path.join(self.output, name))
        return ["".join(element.itertext()).strip()
                for element in tree.iter("{http://www.w3.org/2000/svg}text")]

    def test_bars_have_names_and_numbers_and_their_axis_a_unit(self):
        text = self.make(path_row("bare loop", "clicks", 50), path_row("library", "deferred", 123),
                         path_row("library", "chords", 456),
                         path_row("library", "chords", 7890, parameter="DEBUG to null"),
                         has_plots=True)
        self.assertIn("![CPU time per record, 42 records per burst](path-42.svg)", text)
        texts = self.texts("path-42.svg")
        for expected in ("bare loop", "library, deferred", "library", "CLICKS", "CHORDS", "50",
                         "123", "456", "CPU time, ns/record: median, minimum, maximum"):
            self.assertIn(expected, texts)
        self.assertNotIn("7890", texts)

    def test_curves_have_names_and_their_axes_units(self):
        text = self.make(*(f"growth,{subject},,,{quantity}={value},CPU time,{unit},9,8,10,10\n"
                           for subject, unit in (("library", "ns/record"), ("a_b \"c\"", "ns/tick"))
                           for quantity in ("keys held", "registered keys", "devices",
                                            "records per read")
                           for value in (1, 100)), has_plots=True)
        for quantity in ("keys-held", "registered-keys", "devices", "records-per-read"):
            self.assertIn(f"(growth-{quantity}.svg)", text)
        texts = self.texts("growth-keys-held.svg")
        for expected in ("library, per record", "a_b 'c', per tick", "keys held", "CPU time, ns",
                         "100"):
            self.assertIn(expected, texts)

    def test_what_was_not_measured_has_no_picture(self):
        text = self.make(GOOD_ROW, "growth,A,,,devices=1,allocations,1/event,1,1,1,10\n",
                         has_plots=True)
        self.assertEqual(os.listdir(self.output), ["results.md"])
        self.assertNotIn("![", text)
