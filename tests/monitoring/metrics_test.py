# SPDX-License-Identifier: MIT
"""The metrics and the alerts before promtool."""

import pathlib
import re
import tempfile
import unittest

from machines import FIXTURES, RECORDED, RULES, make_fleet, metrics, needs, run


def series(text):
    """Name, labels and value of every sample."""
    return re.findall(r"^(\w+)(\{.*\})? (\S+)$", text, re.MULTILINE)


@needs("promtool")
class Metrics(unittest.TestCase):
    def test_have_nothing_to_complain_about(self):
        self.assertGreater(len(RECORDED), 8)
        for machine in RECORDED:
            for options in ((), ("--all",)):
                with self.subTest(machine=machine, options=options):
                    text = metrics(FIXTURES / machine, *options)
                    ended = run("promtool", "check", "metrics", input=text)
                    self.assertEqual((ended.returncode, ended.stdout + ended.stderr), (0, ""))
                    # A server refuses two samples of one series, which promtool lets pass.
                    names = [name + labels for name, labels, _ in series(text)]
                    self.assertEqual(len(names), len(set(names)))

    def test_that_are_wrong_would_be_complained_about(self):
        text = metrics(FIXTURES / "laptop")
        for wrong in (text.replace("tarnwick_severity", "tarnwick_severity_total"),
                      text.replace("tarnwick_severity{metric", "tarnwick_severity{\"metric")):
            self.assertNotEqual(run("promtool", "check", "metrics", input=wrong).returncode, 0)


@needs("promtool")
class Rules(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_are_rules(self):
        ended = run("promtool", "check", "rules", RULES)
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertIn("4 rules found", ended.stdout)

    def test_fire_on_the_two_machines_that_need_it(self):
        lines = [f"rule_files: [{RULES}]", "evaluation_interval: 1m", "tests:", "- interval: 1m",
                 "  input_series:"]
        for name, machine in make_fleet(self.folder / "fleet").items():
            found = series(metrics(machine))
            self.assertTrue(found)
            for metric, labels, value in found:
                labels = f"{{instance=\"{name}\"" + ("," + labels[1:] if labels else "}")
                lines += [f"  - series: '{metric}{labels}'", f"    values: '{value}x20'"]
        lines += ["  alert_rule_test:"]
        expected = {
            "TarnwickMetricHigh": "metric: memory, instance: full",
            "TarnwickMachineHot": "state: critical, instance: hot",
            "TarnwickBatteryWorn": None,
        }
        summaries = {"TarnwickMetricHigh": "full: memory is above its high threshold",
                     "TarnwickMachineHot": "hot: the thermal state is critical"}
        for alert, labels in expected.items():
            for minute in (4, 6):
                lines += [f"  - {{eval_time: {minute}m, alertname: {alert}, exp_alerts: ["]
                if labels and minute == 6:
                    lines += [f"      {{exp_labels: {{severity: warning, {labels}}},",
                              f"       exp_annotations: {{summary: '{summaries[alert]}'}}}}"]
                lines += ["    ]}"]
        tests = self.folder / "tests.yml"
        tests.write_text("\n".join(lines) + "\n")
        ended = run("promtool", "test", "rules", tests)
        self.assertEqual(ended.returncode, 0, ended.stdout + ended.stderr)


if __name__ == "__main__":
    unittest.main()
