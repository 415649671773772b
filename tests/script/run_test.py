# SPDX-License-Identifier: MIT
"""What script/run says before it installs or builds anything."""

import os
import pathlib
import subprocess
import unittest

SCRIPT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]) / "run"
PRIVATE = SCRIPT.parent / "lib/show_private.py"


class Help(unittest.TestCase):
    def test_is_shown_at_once(self):
        # Without these two nothing could be installed or built.
        found = subprocess.run(
            ["/bin/bash", "-c", 'apt-get() { exit 9; }; cmake() { exit 9; }; '
             'export -f apt-get cmake; exec "$0" --dark --help', SCRIPT],
            capture_output=True, text=True, timeout=60)
        self.assertEqual(found.returncode, 0, found.stderr)
        self.assertEqual(found.stderr, "")
        self.assertTrue(found.stdout.startswith("Builds Tarnwick and starts it"), found.stdout)
        self.assertNotIn("source", found.stdout)

    def test_names_every_option_of_a_private_desktop(self):
        usage = subprocess.run([SCRIPT, "--help"], capture_output=True, text=True).stdout
        for line in PRIVATE.read_text(encoding="utf-8").splitlines():
            option = line.strip().removeprefix('parser.add_argument("').partition('"')[0]
            if option.startswith("--") and option != "--program":
                self.assertIn(option, usage)


if __name__ == "__main__":
    unittest.main()
