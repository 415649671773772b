# SPDX-License-Identifier: MIT
"""The dashboard asks for metrics that there are, in queries that are understood."""

import json
import pathlib
import re
import tempfile
import unittest

from dashboard import DASHBOARD, queries
from machines import ROOT, needs, run


class Dashboard(unittest.TestCase):
    def test_asks_for_metrics_of_the_probe(self):
        page = (ROOT / "docs/probe.md").read_text()
        known = set(re.findall(r"^\| `(tarnwick_\w+)` \|", page, re.MULTILINE))
        asked = set(re.findall(r"\btarnwick_\w+", json.dumps(DASHBOARD)))
        self.assertGreater(len(asked), 6)
        self.assertEqual(asked - known, set())

    def test_lays_its_panels_beside_each_other(self):
        taken = set()
        for panel in DASHBOARD["panels"]:
            place = panel["gridPos"]
            cells = {(x, y) for x in range(place["x"], place["x"] + place["w"])
                     for y in range(place["y"], place["y"] + place["h"])}
            self.assertFalse(cells & taken, panel["title"])
            self.assertLessEqual(max(x for x, _ in cells), 23)
            taken |= cells


@needs("promtool")
class Queries(unittest.TestCase):
    def check(self, text):
        with tempfile.TemporaryDirectory() as folder:
            rules = pathlib.Path(folder) / "rules.yml"
            rules.write_text(json.dumps({"groups": [{"name": "queries", "rules": [
                {"record": "query", "expr": text}]}]}))
            return run("promtool", "check", "rules", rules)

    def test_are_understood(self):
        self.assertGreater(len(queries()), 8)
        for title, text in queries():
            with self.subTest(panel=title):
                ended = self.check(text)
                self.assertEqual(ended.returncode, 0, ended.stderr)

    def test_that_are_wrong_are_not(self):
        self.assertNotEqual(self.check("topk(10, tarnwick_severity").returncode, 0)


if __name__ == "__main__":
    unittest.main()
