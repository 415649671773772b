# SPDX-License-Identifier: MIT
"""What the application bundle of macOS says of itself."""

import os
import pathlib
import plistlib
import re
import unittest

from PIL import Image

ROOT = pathlib.Path(os.environ["TARNWICK_SCRIPTS"]).parent
PACKAGING = ROOT / "packaging/macos"


class Bundle(unittest.TestCase):
    def setUp(self):
        self.information = plistlib.loads((PACKAGING / "Info.plist.in").read_bytes())

    def test_is_an_agent_without_a_dock_icon(self):
        self.assertIs(self.information["LSUIElement"], True)

    def test_every_value_of_the_build_is_set_where_the_program_is_built(self):
        lists = (ROOT / "app/CMakeLists.txt").read_text()
        names = re.findall(r"\$\{(MACOSX_BUNDLE_\w+)\}", (PACKAGING / "Info.plist.in").read_text())
        self.assertIn("MACOSX_BUNDLE_SHORT_VERSION_STRING", names)
        for name in names:
            # The build system sets this one from the name of the program.
            if name != "MACOSX_BUNDLE_EXECUTABLE_NAME":
                self.assertRegex(lists, rf"\b{name} ")

    def test_versions_come_from_the_project(self):
        lists = (ROOT / "app/CMakeLists.txt").read_text()
        for name, version in (("SHORT_VERSION_STRING", "PROJECT_VERSION"),
                              ("BUNDLE_VERSION", "TARNWICK_BUILD_VERSION")):
            self.assertIn(f'MACOSX_BUNDLE_{name} "${{{version}}}"', lists)

    def test_entitlements_make_no_exception_and_hold_no_comment(self):
        text = (PACKAGING / "tarnwick.entitlements").read_text()
        self.assertEqual(plistlib.loads(text.encode()), {})
        self.assertNotIn("<!--", text)

    def test_icon_has_every_size_up_to_512_points(self):
        with Image.open(PACKAGING / "Tarnwick.icns") as icon:
            self.assertIn((512, 512, 2), icon.info["sizes"])
            self.assertIn((16, 16, 2), icon.info["sizes"])


if __name__ == "__main__":
    unittest.main()
