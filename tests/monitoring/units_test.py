# SPDX-License-Identifier: MIT
"""The units that write the metrics of a machine twice a minute."""

import os
import pathlib
import tempfile
import unittest

from machines import PROBE, ROOT, needs, run

UNITS = pathlib.Path(os.environ["TARNWICK_UNITS"])
SERVICE = "tarnwick-probe.service"


@needs("systemd-analyze")
class Units(unittest.TestCase):
    def verify(self, whose, change=lambda text: text):
        """What systemd says of the units when the program is installed."""
        with tempfile.TemporaryDirectory() as folder:
            service, timer = (pathlib.Path(folder) / name
                              for name in (SERVICE, "tarnwick-probe.timer"))
            text = (UNITS / whose / SERVICE).read_text()
            installed = text.partition("ExecStart=")[2].partition(" ")[0]
            self.assertTrue(installed.endswith("/bin/tarnwick-probe"), installed)
            service.write_text(change(text.replace(installed, PROBE).replace(
                "Documentation=man:tarnwick-probe(1)\n", "")))
            timer.write_text((ROOT / "packaging/linux/systemd" / timer.name).read_text().replace(
                "Documentation=man:tarnwick-probe(1)\n", ""))
            ended = run("systemd-analyze", f"--{whose}", "--man=no", "verify", service, timer,
                        env=os.environ | {"XDG_RUNTIME_DIR": folder})
            complaints = [line for line in (ended.stdout + ended.stderr).splitlines()
                          if "tarnwick-probe" in line or "/units/" in line]
            return ended.returncode, complaints

    def test_are_what_systemd_understands(self):
        for whose in ("system", "user"):
            with self.subTest(whose=whose):
                self.assertEqual(self.verify(whose), (0, []))

    def test_that_are_wrong_would_be_complained_about(self):
        _, complaints = self.verify("system", lambda text: text.replace("ProtectHome=", "Protect="))
        self.assertTrue(complaints)

    def test_are_off_until_enabled(self):
        timer = (ROOT / "packaging/linux/systemd/tarnwick-probe.timer").read_text()
        self.assertIn("[Install]\nWantedBy=timers.target\n", timer)
        rules = (ROOT / "packaging/debian/rules").read_text()
        self.assertIn("dh_installsystemd --no-enable --no-start\n", rules)
        self.assertIn("dh_installsystemduser --no-enable\n", rules)

    def test_keep_the_service_of_the_machine_apart(self):
        ended = run("systemd-analyze", "--offline=yes", "security", UNITS / "system" / SERVICE)
        self.assertIn("Overall exposure level", ended.stdout, ended.stderr)
        level = float(ended.stdout.rpartition("exposure level for")[2].split(":")[1].split()[0])
        self.assertLess(level, 4)


if __name__ == "__main__":
    unittest.main()
