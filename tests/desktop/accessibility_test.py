# SPDX-License-Identifier: MIT
"""The panel as a screen reader finds it: asked from another process over the accessibility bus."""

import contextlib
import re

from gi.repository import GLib

from desktop_test_case import DesktopTestCase, main
from private_desktop import Timeout, until

_PERCENT = r"\d+\.\d%"
_BYTES = r"(Zero KB|[\d.]+ (byte|bytes|KB|MB|GB|TB))"
_LEVEL = "(normal|elevated|high)"
_STATE = "(Nominal|Fair|Serious|Critical|Unknown)"
_RATE = f"(0 B|{_BYTES})/s"
# What is read on each page, in this order; rows that not every machine has are left out.
_HOME = [
    r"Tarnwick, .+", "Settings", "Refresh", r"Uptime, .+", f"Thermals, {_STATE}",
    f"CPU, {_PERCENT}, {_LEVEL}", rf"Memory, {_BYTES} / {_BYTES} \(\d+%\), {_LEVEL}",
    rf"Storage \(.*\), {_BYTES} / {_BYTES}, {_LEVEL}", "Battery Health",
    r"What's Using Memory\?", "Performance & Network", "Activity Monitor", "Quit"]
_MEMORY = [
    "Memory Details", "Back", "Refresh", "Estimated Pressure, (Good|Normal|High)",
    "Memory Breakdown", f"Physical Memory, {_BYTES}", f"Memory Used, {_BYTES}",
    f"Cached Files, {_BYTES}", f"Swap Used, {_BYTES}", f"App Memory, {_BYTES}",
    f"Wired Memory, {_BYTES}", f"Compressed, {_BYTES}", r"What's Using Memory\?",
    rf".+ {_PERCENT} \({_BYTES}\)(, .+)*"]
_PERFORMANCE = [
    "Performance", "Back", "Refresh", "Usage Trends", rf"CPU, \d+%, {_LEVEL}",
    rf"Memory, \d+%, {_LEVEL}", rf"Storage, \d+%, {_LEVEL}", r"Device, \d+%", r"Renderer, \d+%",
    r"Tiler, \d+%", "Network Throughput", f"Download, {_RATE}", f"Upload, {_RATE}",
    f"Total, {_RATE}", f"Thermal State, {_STATE}"]


class AccessibilityTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop(accessibility=True)
        self.program = self.start_known_to_user()
        self.program.open_panel()
        self.assert_open(self.program)
        self.bus = self.enterContext(self.desktop.accessibility_bus())

    def window(self):
        """The panel among the program's windows, or None."""
        root = self.bus.program(self.program.pid)
        return next((each for each in (root.children() if root else ())
                     if each.name == "Tarnwick"), None)

    def panel(self):
        """All that a screen reader finds on the panel, in reading order."""
        window = self.window()
        return list(window.descendants()) if window else []

    def names(self):
        # What goes away while it is asked is asked again.
        with contextlib.suppress(GLib.Error):
            return [each.name for each in self.panel() if each.name]
        return []

    def assert_reads(self, patterns):
        """The panel reads like this, perhaps with further rows in between."""
        def unread():
            self.found = self.names()
            left = iter(self.found)
            return [pattern for pattern in patterns
                    if not any(re.fullmatch(pattern, name) for name in left)]

        try:
            until(lambda: not unread(), "the page")
        except Timeout:
            self.fail(f"{unread()[0]} is not read in its place: {self.found}")

    def assert_each(self, role, look):
        """`look` at all of that role finds nothing amiss; what goes meanwhile is looked at again."""
        def is_right():
            with contextlib.suppress(GLib.Error):
                look([each for each in self.panel() if each.role == role])
                return True
            return False

        self.until(is_right, f"each {role} can be asked")

    def assert_buttons(self, names):
        def look(buttons):
            self.assertEqual({each.name for each in buttons}, names)
            for each in buttons:
                self.assertIn("Press", each.actions(), each.name)
                self.assertLessEqual({"enabled", "focusable", "showing", "visible"}, each.states(),
                                     each.name)

        self.assert_each("push button", look)

    def assert_no_item_is_unnamed(self):
        def look(items):
            self.assertTrue(items)
            for each in items:
                if "visible" in each.states():
                    self.assertNotEqual(each.name, "")

        self.assert_each("list item", look)

    def assert_values(self, role, titles):
        """What shows a share has it as its value, and its level in words as its description."""
        def look(shares):
            # Not every machine has graphics whose use can be told.
            shares = [each for each in shares
                      if "Value" in each.interfaces() and not each.name.startswith("GPU")]
            self.assertEqual([re.match("[A-Za-z]+", each.name).group() for each in shares], titles)
            for each in shares:
                # What the tool tip tells follows.
                self.assertRegex(each.description, rf", {_LEVEL}(\. .+)?$")
                least, value, most = each.value()
                self.assertEqual((least, most), (0, 100), each.name)
                self.assertTrue(0 <= value <= 100, (each.name, value))
                self.assertNotIn("focusable", each.states())

        self.assert_each(role, look)

    def test_the_program_has_the_name_that_people_know(self):
        root = self.until(lambda: self.bus.program(self.program.pid), "the program is found")
        self.assertEqual(root.name, "Tarnwick")

    def test_every_page_is_found_read_and_left(self):
        self.assert_reads(_HOME)
        self.until(lambda: self.window().role == "dialog", "the panel is a dialog")
        self.assert_buttons({"Settings", "Refresh", "What's Using Memory?",
                             "Performance & Network", "Activity Monitor", "Quit"})
        # Labels: the values of progress bars are said again and again, without their names.
        self.assert_values("label", ["CPU", "Memory", "Storage"])
        self.press(self.program, "What's Using Memory?")
        self.assert_reads(_MEMORY)
        self.assert_buttons({"Back", "Refresh"})
        self.assert_no_item_is_unnamed()
        self.press(self.program, "Back")
        self.assert_reads(_HOME)
        self.press(self.program, "Performance & Network")
        self.assert_reads(_PERFORMANCE)
        self.assert_buttons({"Back", "Refresh"})
        self.assert_values("chart", ["CPU", "Memory", "Storage"])
        # Nothing to be seen comes of it here; the page stays.
        self.press(self.program, "Refresh")
        self.assert_reads(_PERFORMANCE)
        self.press(self.program, "Back")
        self.assert_reads(_HOME)
        self.press(self.program, "Quit")
        self.assert_ends(self.program)

    def test_a_closed_panel_is_not_read(self):
        self.assert_reads(_HOME)
        self.program.close_panel()
        self.until(lambda: not self.panel(), "nothing is read")


main()
