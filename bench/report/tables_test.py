"""Tests tables.py in the text of whole reports."""
from report_case import ReportCase, path_row
from tables import number, table


class TextTest(ReportCase):
    def test_numbers_have_three_digits_or_all_of_their_whole_part(self):
        self.assertEqual([number(value) for value in (0, 0.1234, 1.5, 12.34, 123.4, 12345.6)],
                         ["0", "0.123", "1.5", "12.3", "123", "12346"])

    def test_a_bar_in_a_cell_does_not_end_it(self):
        self.assertEqual(table(["a", "b"], [["x|y", "1"]]),
                         ["| a | b |", "|---|---:|", "| x\\|y | 1 |"])


class PathTableTest(ReportCase):
    def test_a_row_has_median_spread_and_ratios_to_the_same_raw_stream(self):
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

    def test_each_burst_has_its_own_table(self):
        text = self.make(path_row("bare loop", "clicks", 50),
                         path_row("bare loop", "clicks", 500, burst=2),
                         path_row("library", "unmapped", 600, burst=2))
        large, small = text.split("### 42 records per burst")[1].split("### 2 records per burst")
        self.assertIn("| bare loop | clicks | 50 (45–55) | 1.00 |", large)
        self.assertIn("| library | unmapped | 600 (540–660) | 1.20 |", small)
        self.assertNotIn("library", large)

    def test_a_library_that_logs_is_not_compared_with_peers_that_do_not(self):
        text = self.make(path_row("triggerhappy", "clicks", 600),
                         path_row("library", "unmapped", 200),
                         path_row("library", "unmapped", 2000, parameter="DEBUG to null"))
        self.assertIn("| library | unmapped | 200 (180–220) |  |  | 3.00 |  |\n", text)
        self.assertIn("| library, DEBUG to null | unmapped | 2000 (1800–2200) |  |  |  |  |", text)

    def test_no_spread_leaves_out_the_brackets(self):
        text = self.make("path,library,held,42,logging off,allocations,1/record,1.25,1.25,1.25,9\n")
        self.assertIn("| library | held | 1.25 |", text)


class GroupTest(ReportCase):
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
        self.assertIn("| library, held, 42 records per burst | CPU time, ns/record | 5 | 1.0", text)
        self.assertIn("| library, chords, 42 records per burst | CPU time, ns/record | 7 | 1", text)

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
