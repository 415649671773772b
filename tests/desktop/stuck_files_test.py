# SPDX-License-Identifier: MIT
"""A disk, sensors and a battery that hang: the rest of the program goes on."""

import contextlib
import os

from gi.repository import GLib

from desktop_test_case import DesktopTestCase, main

# With one thread for each of the three that hang, those that wait for work, and the toolkit's own.
_FEW_THREADS = 16


class StuckFilesTest(DesktopTestCase):
    def start_stuck(self):
        """The program on a machine whose thermal zones, battery and volume do not answer."""
        self.open_desktop(accessibility=True)
        self.stuck = self.desktop.path("stuck")
        with open(self.stuck, "wb"):
            pass
        return self.start_known_to_user(
            LD_PRELOAD=os.environ["TARNWICK_STUCK_LIBRARY"],
            TARNWICK_STUCK_WHILE=self.stuck,
            TARNWICK_STUCK_FILES="/sys/class/thermal:/sys/class/power_supply",
            TARNWICK_STUCK_VOLUMES="/")

    def has_text(self, program, text):
        # The page may change while it is read.
        with self.desktop.accessibility_bus() as bus, contextlib.suppress(GLib.Error):
            root = bus.program(program.pid)
            return root is not None and any(text in each.name for each in root.descendants())
        return False

    def test_item_panel_and_end_are_as_ever(self):
        program = self.start_stuck()
        program.open_panel()
        self.assert_open(program)
        self.until(lambda: self.has_text(program, "Storage (Main Disk)"), "the volume is unknown")
        self.until(lambda: self.has_text(program, "Unknown"), "the thermal state is unknown")
        for _ in range(3):
            self.wait_for_refresh(program)
        self.assertLess(len(os.listdir(f"/proc/{program.pid}/task")), _FEW_THREADS)
        self.press(program, "Refresh")
        self.choose_settings(program)
        program.process.terminate()
        self.assert_ends(program)
        self.assertEqual(program.output(), "")

    def test_shortcut_and_quit_are_as_ever(self):
        program = self.start_stuck()
        item = program.wait_for_item()
        self.until(lambda: self.desktop.bus.item_property(item, "Title"), "the program answers")
        self.desktop.screen.press_key("Super_L", "l")
        self.assert_open(program)
        self.desktop.screen.press_key("Super_L", "l")
        self.assert_closed(program)
        program.open_panel()
        self.press(program, "Quit")
        self.assert_ends(program)
        self.assertEqual(program.output(), "")

    def test_what_comes_back_is_shown(self):
        program = self.start_stuck()
        program.open_panel()
        self.until(lambda: self.has_text(program, "Storage (Main Disk)"), "the volume is unknown")
        os.remove(self.stuck)

        def is_known():
            self.press(program, "Refresh")
            return not self.has_text(program, "Storage (Main Disk)")

        self.until(is_known, "the volume is shown")
        self.assertTrue(self.has_text(program, "Storage ("))


main()
