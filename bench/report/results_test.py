"""Tests results.py: which files it refuses, and why."""
import os

from report_case import GOOD_ROW, HEADER, ReportCase
from results import Failure, Figure, Key, read


class ReadTest(ReportCase):
    def refuse(self, message, *paths):
        """@p message contains {} for the first file's name."""
        with self.assertRaises(Failure) as caught:
            read(paths)
        self.assertEqual(str(caught.exception), message.replace("{}", paths[0]))

    def test_a_row_becomes_a_key_and_a_figure(self):
        path = self.file("a.csv", "path,A,clicks,42,logging off,CPU time,ns,50,40,6e1,10\n")
        key = Key("path", "A", "clicks", 42, "logging off", "CPU time")
        self.assertEqual(read([path]), {key: Figure("ns", 50, 40, 60, 10)})

    def test_another_header(self):
        path = self.file("a.csv", GOOD_ROW, header="group,subject\n")
        self.refuse("{}:1: expected the header '" + HEADER.strip() + "'", path)

    def test_an_empty_file(self):
        path = self.file("a.csv", header="")
        self.refuse("{}:1: expected the header '" + HEADER.strip() + "'", path)

    def test_no_rows(self):
        self.refuse("no results in {}", self.file("a.csv"))

    def test_a_missing_file(self):
        self.refuse("{}: No such file or directory", os.path.join(self.folder, "none.csv"))

    def test_a_binary_file(self):
        path = self.file("a.csv")
        with open(path, "ab") as file:
            file.write(b"parts,\xff\n")
        self.refuse("{}: not UTF-8 text", path)

    def test_rows(self):
        for row, message in (
                ("parts,A,,,,CPU time,ns,50,40,60\n", "10 columns instead of 11"),
                ("partss,A,,,,CPU time,ns,50,40,60,10\n", "unknown group 'partss'"),
                ("parts,,,,,CPU time,ns,50,40,60,10\n", "subject is empty"),
                ("parts,A,,,,CPU time,,50,40,60,10\n", "unit is empty"),
                ("parts,A,,,,CPU time,ns,fast,40,60,10\n", "median is 'fast', not a number"),
                ("parts,A,,,,CPU time,ns,nan,40,60,10\n", "median is 'nan', not a number"),
                ("parts,A,,,,CPU time,ns,50,,60,10\n", "low is '', not a number"),
                ("parts,A,,,,CPU time,ns,50,51,60,10\n", "the median is not between low and high"),
                ("parts,A,,,,CPU time,ns,50,40,49,10\n", "the median is not between low and high"),
                ("parts,A,,,,CPU time,ns,50,40,60,0\n", "runs is '0', not a whole number above 0"),
                ("parts,A,,x,,CPU time,ns,50,40,60,10\n",
                 "burst is 'x', not a whole number above 0"),
                (GOOD_ROW, "duplicate of {}:2")):
            with self.subTest(row=row):
                self.refuse("{}:3: " + message, self.file("a.csv", GOOD_ROW, row))

    def test_the_same_row_in_two_files(self):
        first = self.file("a.csv", GOOD_ROW)
        second = self.file("b.csv", GOOD_ROW)
        self.refuse(f"{second}:2: duplicate of {first}:2", first, second)
