# SPDX-License-Identifier: MIT
"""What script/in-release refuses before it makes anything."""

import os
import pathlib
import subprocess
import unittest

SCRIPT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]) / "in-release"


class Usage(unittest.TestCase):
    def refused(self, *arguments):
        found = subprocess.run([SCRIPT, *arguments], capture_output=True, text=True, timeout=60)
        self.assertNotEqual(found.returncode, 0)
        self.assertEqual(found.stdout, "")
        self.assertEqual(found.stderr.count("\n"), 1, found.stderr)
        return found.stderr

    def test_a_command_is_needed(self):
        self.assertIn("usage: ", self.refused())
        self.assertIn("usage: ", self.refused("trixie"))

    def test_a_release_is_a_word(self):
        for release in ("", "../trixie", "Trixie", "--help", "a/b"):
            self.assertIn("usage: ", self.refused(release, "true"), release)


if __name__ == "__main__":
    unittest.main()
