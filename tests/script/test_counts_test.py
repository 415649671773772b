# SPDX-License-Identifier: MIT
"""How many tests script/test says there were: from what real runs of ctest report."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]) / "lib/test_counts.py"
# As a test program writes it, with one test for each letter.
REPORT = '<testsuites><testsuite name="Suite">{}</testsuite></testsuites>'
TESTS = {
    "p": '<testcase name="Passes" status="run" result="completed" classname="Suite" />',
    "f": '<testcase name="Fails" status="run" result="completed" classname="Suite">'
         '<failure message="why" type=""></failure></testcase>',
    "s": '<testcase name="Skips" status="run" result="skipped" classname="Suite">'
         '<skipped message="why"></skipped></testcase>',
    "d": '<testcase name="DISABLED_Is" status="notrun" result="suppressed" classname="Suite" />',
}


class Counts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)

    def run_ctest(self, *entries, folder="reports"):
        """Lets ctest run entries: (name, shell command, property...)."""
        lines = []
        for name, command, *properties in entries:
            lines.append(f'add_test({name} /bin/sh -c "{command}")')
            lines += [f"set_tests_properties({name} PROPERTIES {each})" for each in properties]
        (self.root / "CTestTestfile.cmake").write_text("\n".join(lines))
        (self.root / folder).mkdir(exist_ok=True)
        subprocess.run(["ctest", "--output-junit", self.root / folder / "ctest.xml"],
                       cwd=self.root, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def report(self, program, tests, folder="reports"):
        (self.root / folder).mkdir(exist_ok=True)
        text = REPORT.format("".join(TESTS[each] for each in tests))
        (self.root / folder / f"{program}.xml").write_text(text)

    def expect(self, status, *lines, folders=("reports",)):
        ended = subprocess.run([sys.executable, "-B", SCRIPT, *folders], cwd=self.root, text=True,
                               capture_output=True)
        self.assertEqual(ended.stdout.splitlines(), list(lines), ended.stderr)
        self.assertEqual(ended.returncode, status)

    def test_an_entry_without_a_report_is_one_test(self):
        self.run_ctest(("one", "true"), ("two", "true"),
                       ("skips", "echo skips", "SKIP_REGULAR_EXPRESSION skips"),
                       ("off", "false", "DISABLED TRUE"))
        self.expect(0, "2 passed, 0 failed, 2 skipped")

    def test_an_entry_that_fails_is_named(self):
        self.run_ctest(("good", "true"), ("bad", "false"), ("late", "exec sleep 60", "TIMEOUT 0.1"))
        self.expect(1, "failed: bad", "failed: late", "1 passed, 2 failed, 0 skipped")

    def test_an_entry_without_its_program_has_failed(self):
        self.run_ctest(("good", "true"), ("bad", "true", "REQUIRED_FILES missing"))
        self.expect(1, "failed: bad", "1 passed, 1 failed, 0 skipped")

    def test_a_program_counts_with_each_of_its_tests(self):
        self.report("tests_a", "pppsd")
        self.report("tests_b", "pp")
        self.run_ctest(("tests_a", "true"), ("tests_b", "true"), ("other", "true"))
        self.expect(0, "6 passed, 0 failed, 2 skipped")

    def test_a_test_that_fails_is_named_with_its_program(self):
        self.report("tests_a", "pfp")
        self.run_ctest(("tests_a", "false"))
        self.expect(1, "failed: tests_a: Suite.Fails", "2 passed, 1 failed, 0 skipped")

    def test_a_program_that_crashes_has_failed(self):
        self.run_ctest(("tests_a", "kill -SEGV $$"), ("good", "true"))
        self.expect(1, "failed: tests_a: it did not come to its end",
                    "1 passed, 1 failed, 0 skipped")

    def test_a_program_that_crashes_behind_its_tests_has_failed(self):
        self.report("tests_a", "pp")
        self.run_ctest(("tests_a", "kill -SEGV $$"))
        self.expect(1, "failed: tests_a: it did not come to its end",
                    "2 passed, 1 failed, 0 skipped")

    def test_a_program_that_ends_well_without_a_report_has_failed(self):
        self.run_ctest(("tests_a", "true"))
        self.expect(1, "failed: tests_a: it did not come to its end",
                    "0 passed, 1 failed, 0 skipped")

    def test_half_a_report_is_none(self):
        self.run_ctest(("tests_a", "false"))
        (self.root / "reports/tests_a.xml").write_text(REPORT[:20])
        self.expect(1, "failed: tests_a: it did not come to its end",
                    "0 passed, 1 failed, 0 skipped")

    def test_no_test_is_a_failure(self):
        self.run_ctest()
        self.expect(1, "0 passed, 0 failed, 0 skipped")
        self.expect(1, "0 passed, 0 failed, 0 skipped", folders=["missing"])

    def test_folders_are_added_up(self):
        self.run_ctest(("good", "true"), folder="one")
        self.report("tests_a", "pps", folder="two")
        self.run_ctest(("tests_a", "true"), folder="two")
        self.expect(0, "3 passed, 0 failed, 1 skipped", folders=("one", "two"))


if __name__ == "__main__":
    unittest.main()
