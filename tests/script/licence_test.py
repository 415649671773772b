# SPDX-License-Identifier: MIT
"""Every source file says under what licence it is."""

import os
import pathlib
import subprocess
import unittest

ROOT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]).parent
SOURCES = {".cpp", ".h", ".mm", ".py", ".cmake", ".sh", ".svg", ".desktop", ".1", ".in", ".install",
           ".xml", ".yml", ".spec", ".timer", ".fish", ".bash", ".zsh", ".txt"}
NAMES = {"CMakeLists.txt", "control", "lintian-overrides", "rules", "PKGBUILD"}
# Inputs of fuzzers and recorded machines are data.
DATA = ("fuzz/corpus/", "tests/fixtures/", "tests/golden/")


def is_source(path):
    return path.suffix in SOURCES or path.name in NAMES or \
        path.read_bytes()[:2] == b"#!"


class Licence(unittest.TestCase):
    @unittest.skipUnless((ROOT / ".git").exists(), "git does not keep this tree")
    def test_every_source_file_names_it(self):
        # Another user may own the tree, for example in a container.
        listed = subprocess.run(
            ["git", "-c", f"safe.directory={ROOT}", "ls-files", "-z"], cwd=ROOT, check=True,
            capture_output=True, text=True).stdout.split("\0")
        sources = [name for name in listed if name and not name.startswith(DATA)
                   and (ROOT / name).is_file() and is_source(ROOT / name)]
        self.assertGreater(len(sources), 900)
        without = [name for name in sources
                   if "SPDX-License-Identifier: MIT" not in
                   "\n".join((ROOT / name).read_text().splitlines()[:3])]
        self.assertEqual(without, [])

    def test_the_text_is_there(self):
        text = (ROOT / "LICENSE").read_text()
        self.assertIn("MIT License", text)
        self.assertIn("The Tarnwick authors", text)


if __name__ == "__main__":
    unittest.main()
