# SPDX-License-Identifier: MIT
"""The table of script/compare-cost: its figures, its words, and what it says is missing."""

import os
import pathlib
import re
import sys
import unittest

SCRIPT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]) / "compare-cost"
sys.path.insert(0, str(SCRIPT.parent / "lib"))

import cost_table  # noqa: E402
from cost_table import Cost, Monitor  # noqa: E402


class Table(unittest.TestCase):
    def test_has_a_row_for_each_program_first_those_always_there(self):
        text = cost_table.table([Cost("Two 2.0", False, 1024, 1024, 0, 0),
                                 Cost("One 1.0", True, 2048, 10240, 1234.5, 0.25),
                                 Cost("Three", False, 0, 0, 0, 0)])
        self.assertEqual(text.splitlines()[2:],
                         ["| One 1.0 | 2.0 | 10.0 | 1,234 | 0.25 |",
                          "| Two 2.0 | 1.0 | 1.0 | 0 | 0 |",
                          "| Three | 0.0 | 0.0 | 0 | 0 |"])
        self.assertEqual(len({line.count("|") for line in text.splitlines()}), 1)

    def test_says_where_a_figure_is_not_complete(self):
        lines = cost_table.table([Cost("One", True, 1, 1, 1, 1, lost_threads=3),
                                  Cost("Two", True, 1, 1, 1, 1)])
        self.assertEqual(lines.splitlines()[-2:],
                         ["", "One: threads that ended before they were counted: 3"])

    def test_figures_have_two_digits_and_whole_numbers_all(self):
        for value, text in ((0, "0"), (0.0123, "0.012"), (0.996, "1.0"), (0.25, "0.25"),
                            (9.94, "9.9"), (9.96, "10"), (1234.4, "1,234")):
            self.assertEqual(cost_table.figure(value), text)


class Words(unittest.TestCase):
    def test_a_version_is_without_what_debian_adds(self):
        for version, text in (("1.18.3-1", "1.18.3"), ("2:3.2.2-2+b1", "3.2.2"), ("42.0", "42.0"),
                              ("1.2-rc1-4", "1.2-rc1"), ("", "")):
            self.assertEqual(cost_table.upstream(version), text)

    def test_the_machine_is_named_by_kind(self):
        processor = "processor\t: {}\nmodel name\t: Example 9000\n\n"
        self.assertEqual(
            cost_table.machine(processor.format(0) + processor.format(1),
                               "MemTotal:       24683520 kB\nMemFree: 1 kB\n",
                               'PRETTY_NAME="Debian GNU/Linux 13 (trixie)"\nID=debian\n'),
            "Debian GNU/Linux 13 (trixie), 2 processors of Example 9000, 24 GB of memory")
        self.assertEqual(cost_table.machine("processor : 0\n", "MemTotal: 1048576 kB\n", ""),
                         "Linux, 1 processor, 1 GB of memory")

    def test_a_time_is_a_number_of_seconds_that_can_be_waited(self):
        self.assertEqual(cost_table.duration("0.5"), 0.5)
        for text in ("0", "-1", "nan", "inf", "1e9", "soon", ""):
            with self.assertRaises(ValueError):
                cost_table.duration(text)

    def test_a_crowd_is_a_number_of_processes_that_a_machine_takes(self):
        self.assertEqual(cost_table.crowd_size("2000"), 2000)
        for text in ("0", "-1", "20001", "1.5", "many", ""):
            with self.assertRaises(ValueError):
                cost_table.crowd_size(text)

    def test_the_version_is_that_of_the_tree(self):
        self.assertEqual(
            cost_table.project_version("cmake_minimum_required(VERSION 3.25)\n"
                                       "project(tarnwick VERSION 1.2.3 LANGUAGES CXX)\n"), "1.2.3")
        cost_table.project_version((SCRIPT.parents[1] / "CMakeLists.txt").read_text())


class Monitors(unittest.TestCase):
    def test_each_is_there_with_all_that_it_needs_or_not_at_all(self):
        there, missing = "sh", "no-such-program"
        self.assertTrue(Monitor("", "", (there,), True).is_there())
        self.assertFalse(Monitor("", "", (missing,), True).is_there())
        self.assertFalse(Monitor("", "", (there, "-e", missing), True).is_there())
        self.assertFalse(Monitor("", "", (missing, "-e", there), True).is_there())
        self.assertTrue(Monitor("", "", (there,), True, needs="/").is_there())
        self.assertFalse(Monitor("", "", (there,), True, needs="/no/such/file").is_there())

    def test_one_line_installs_what_is_missing(self):
        self.assertEqual(
            cost_table.install_line([Monitor("", "z", ("z",), True),
                                     Monitor("", "a", ("x", "a"), True, beside=("x",))]),
            "sudo apt-get install --no-install-recommends a x z")

    def test_the_page_has_all_of_them(self):
        page = (SCRIPT.parents[1] / "README.md").read_text()
        for monitor in cost_table.MONITORS:
            begin, end = map(re.escape, monitor.name.split("{}"))
            self.assertRegex(page, rf"(?m)^\| {begin}[\d.]+{end} \|", monitor.package)


if __name__ == "__main__":
    unittest.main()
