# SPDX-License-Identifier: MIT
"""What the probe prints, before the contract that is written down."""

import copy
import json
import os
import pathlib
import re
import tempfile
import unittest

from machines import FIXTURES, PROBE, RECORDED, ROOT, copy_machine, metrics, run

PAGE = ROOT / "docs/probe.md"
SCHEMA = ROOT / "docs/probe.schema.json"


def sample(*options, **environment):
    ended = run(PROBE, *options, env=os.environ | environment)
    assert (ended.returncode, ended.stderr) == (0, ""), ended.stderr
    return json.loads(ended.stdout)


def closed(schema):
    """The schema without leave for members that it does not know."""
    if isinstance(schema, dict):
        schema = {key: closed(value) for key, value in schema.items()}
        if "properties" in schema:
            schema["additionalProperties"] = False
    return schema


class Contract(unittest.TestCase):
    def setUp(self):
        import jsonschema

        self.schema = json.loads(SCHEMA.read_text())
        jsonschema.Draft202012Validator.check_schema(self.schema)
        self.closed = jsonschema.Draft202012Validator(closed(copy.deepcopy(self.schema)))
        self.open = jsonschema.Draft202012Validator(self.schema)

    def expect_valid(self, value):
        self.assertEqual([error.message for error in self.closed.iter_errors(value)], [])

    def test_holds_for_every_machine(self):
        self.expect_valid(sample("--interval", "0.05"))
        self.expect_valid(sample("--interval", "0"))
        self.assertGreater(len(RECORDED), 8)
        for machine in RECORDED:
            with self.subTest(machine=machine):
                self.expect_valid(sample("--interval", "0.01", "--root", FIXTURES / machine))

    @unittest.skipIf(os.environ["TARNWICK_SANITIZE"], "the sanitizers want to be loaded first")
    def test_holds_where_sources_do_not_answer(self):
        with tempfile.TemporaryDirectory() as folder:
            root = copy_machine("handheld", pathlib.Path(folder) / "handheld")
            stuck = [root / path for path in (
                "sys/class/drm/card0/device/gpu_busy_percent", "sys/class/thermal",
                "sys/class/power_supply")]
            (root / "stuck").touch()
            value = sample("--interval", "0.01", "--root", root, "--home", "/home/deck",
                           LD_PRELOAD=os.environ["TARNWICK_STUCK_LIBRARY"],
                           TARNWICK_STUCK_WHILE=f"{root}/stuck",
                           TARNWICK_STUCK_VOLUMES=f"{root}/home",
                           TARNWICK_STUCK_FILES=":".join(map(str, stuck)))
        for name in ("gpu", "storage", "battery", "thermalState"):
            self.assertIsNone(value[name])
        self.expect_valid(value)

    def test_lets_members_be_added_and_no_more(self):
        value = sample("--interval", "0.01", "--root", FIXTURES / "laptop")
        value["cpu"]["later"] = 1
        self.assertTrue(self.open.is_valid(value))
        self.assertFalse(self.closed.is_valid(value))
        del value["cpu"]["coreCount"]
        self.assertFalse(self.open.is_valid(value))


class Page(unittest.TestCase):
    def test_names_every_metric_and_its_labels(self):
        text = "".join(metrics(FIXTURES / machine, "--all") for machine in RECORDED)
        # No recorded machine tells its capacities.
        ended = run(PROBE, "--all", "--format=prometheus", "--interval=0.05")
        printed = {}
        for name, labels in re.findall(r"^(tarnwick_\w+)(?:\{(.*)\})? ", text + ended.stdout,
                                       re.MULTILINE):
            printed[name] = ", ".join(re.findall(r'(\w+)="', labels))
        rows = re.findall(r"^\| `(tarnwick_\w+)` \| ([^|]*) \|", PAGE.read_text(), re.MULTILINE)
        self.assertEqual({name: labels.replace("`", "") for name, labels in rows}, printed)

    def test_names_every_option(self):
        manual = (ROOT / "tools/tarnwick-probe.1").read_text().replace("\\", "")
        for option in set(re.findall(r"^\.BI? (--[a-z-]+)", manual, re.MULTILINE)):
            with self.subTest(option=option):
                self.assertIn(f"`{option}", PAGE.read_text())

    def test_asks_for_members_that_there_are(self):
        schema = json.dumps(json.loads(SCHEMA.read_text()))
        commands = re.findall(r"jq (?:--[a-z-]+ )*'?\"?(\S*)", PAGE.read_text())
        self.assertTrue(commands)
        for name in re.findall(r"\.([a-z]\w+)", " ".join(commands)):
            with self.subTest(member=name):
                self.assertTrue(f'"{name}"' in schema or name in ("text", "alt", "percentage"))

    def test_has_waybar_configuration_that_is_json(self):
        modules = re.findall(r"```\n(\"custom/tarnwick\": \{.*?\n\})\n```", PAGE.read_text(), re.DOTALL)
        self.assertTrue(modules)
        for module in modules:
            self.assertEqual(json.loads("{" + module + "}")["custom/tarnwick"]["return-type"], "json")


if __name__ == "__main__":
    unittest.main()
