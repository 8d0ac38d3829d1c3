"""Tests growth.py."""
from growth import growths, picture_of
from report_case import ReportCase
from results import Failure, read


class GrowthTest(ReportCase):
    def growths(self, *rows):
        return growths(read([self.file("a.csv", *rows)]))

    def test_figures_are_sorted_by_quantity_and_subject(self):
        found = self.growths("growth,A,,,new=2,CPU time,ns,5,5,5,1\n",
                             "growth,A,held,42,devices=1,CPU time,ns,6,6,6,1\n",
                             "growth,A,held,42,devices=10,CPU time,ns,7,7,7,1\n")
        self.assertEqual(list(found), ["devices", "new"])
        series = found["devices"]["A, held, 42 records per burst", "CPU time", "ns"]
        self.assertEqual({value: figure.median for value, figure in series.items()}, {1: 6, 10: 7})

    def test_a_parameter_without_a_number_is_refused(self):
        with self.assertRaises(Failure) as caught:
            self.growths("growth,A,,,registered keys,CPU time,ns/event,50,40,60,10\n")
        self.assertEqual(str(caught.exception),
                         "parameter 'registered keys' of 'A' is not QUANTITY=NUMBER")

    def test_the_name_of_a_picture_is_one_of_a_file(self):
        self.assertEqual(picture_of("Records per read"), "growth-records-per-read")
