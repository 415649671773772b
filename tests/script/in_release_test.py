# SPDX-License-Identifier: MIT
"""What script/in-release refuses before it makes anything, and what it copies."""

import os
import pathlib
import shutil
import subprocess
import tempfile
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
        self.assertIn("usage: ", self.refused("--fresh", "trixie"))

    def test_a_release_is_a_word(self):
        for release in ("", "../trixie", "Trixie", "--help", "a/b"):
            self.assertIn("usage: ", self.refused(release, "true"), release)


class CopiedTree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name) / "tree"
        for name in ("kept", "a folder/new", "gone", "build/built", "core/build/kept",
                     "core/__pycache__/cached"):
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            (self.tree / name).write_text(name)
        (self.tree / "link").symlink_to("nowhere")
        shutil.copy(SCRIPT.parents[1] / ".gitignore", self.tree)

    def copied(self):
        copy = self.tree.parent / "copy"
        copy.mkdir()
        subprocess.run(["bash", "-euc", '. "$0"; copy_tree "$1"', SCRIPT.parent / "lib/copy_tree.sh",
                        copy], cwd=self.tree, check=True, timeout=60)
        return sorted(str(path.relative_to(copy)) for path in copy.rglob("*")
                      if path.is_symlink() or path.is_file())

    def test_is_what_is_there_and_not_built(self):
        self.assertEqual(self.copied(), [".gitignore", "a folder/new", "core/build/kept", "gone",
                                         "kept", "link"])

    def test_is_what_git_keeps_and_would_keep(self):
        def git(*words):
            subprocess.run(["git", *words], cwd=self.tree, check=True, capture_output=True,
                           timeout=60)

        git("init")
        git("add", "kept", "gone", "link", ".gitignore", "core/build/kept")
        (self.tree / "gone").unlink()
        (self.tree / "kept").write_text("changed")
        self.assertEqual(self.copied(), [".gitignore", "a folder/new", "core/build/kept", "kept",
                                         "link"])
        self.assertEqual((self.tree.parent / "copy/kept").read_text(), "changed")


if __name__ == "__main__":
    unittest.main()
