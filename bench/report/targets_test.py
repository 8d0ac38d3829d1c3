"""Tests targets.py: when a target is met."""
from report_case import ReportCase, path_row
from results import read
from targets import judged

# Medians at 42 records per burst that only just meet every target.
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


class TargetTest(ReportCase):
    def verdicts(self, changes=None):
        """(measured, verdict) by (ratio, stream, burst)."""
        times = {**JUST_MET, **(changes or {})}
        path = self.file("results.csv", *(path_row(subject, stream, median)
                                          for (subject, stream), median in times.items()))
        return {tuple(row[:3]): tuple(row[4:]) for row in judged(read([path]))}

    def test_a_ratio_at_its_limit_meets_it(self):
        verdicts = self.verdicts()
        self.assertEqual(verdicts["library ÷ empty Qt shape", "unmapped", "42"], ("1.50", "met"))
        self.assertEqual(verdicts["library ÷ empty Qt shape", "chords", "42"], ("4.00", "met"))
        self.assertEqual(verdicts["triggerhappy ÷ library", "deferred", "42"], ("2.00", "met"))

    def test_a_ratio_beyond_its_limit_misses_it(self):
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
