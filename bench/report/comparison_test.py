"""Tests comparison.py."""
import unittest

from comparison import ordered, ratio
from results import Figure, Key


def result(subject, stream, median, parameter=""):
    return {Key("path", subject, stream, 42, parameter, "CPU time"):
            Figure("ns/record", median, median, median, 1)}


class ComparisonTest(unittest.TestCase):
    def test_the_library_is_compared_with_the_peer_on_the_same_raw_stream(self):
        results = {**result("library", "deferred", 300, "logging off"),
                   **result("bare loop", "clicks", 100), **result("bare loop", "chords", 50)}
        self.assertEqual(ratio(results, "library", "bare loop", "deferred", 42), 3)
        self.assertIsNone(ratio(results, "library", "bare loop", "deferred", 2))
        self.assertIsNone(ratio(results, "library", "bare loop", "chords", 42))

    def test_a_library_that_logs_is_not_compared(self):
        results = {**result("library", "held", 300, "DEBUG to null"),
                   **result("bare loop", "held", 100)}
        self.assertIsNone(ratio(results, "library", "bare loop", "held", 42))

    def test_known_values_come_first_and_in_their_order(self):
        self.assertEqual(ordered(["x", "b", "a", "x", "w"], ["a", "b", "c"]), ["a", "b", "x", "w"])
