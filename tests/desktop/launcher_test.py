# SPDX-License-Identifier: MIT
"""What launchers, keys and other starts ask the program for, and what the desktop knows it by."""

import contextlib
import os
import pathlib
import signal
import types

from gi.repository import GLib
from Xlib import display

from desktop_test_case import DesktopTestCase, main

IDENTIFIER = "org.tarnwick.Tarnwick"
SERVICE = pathlib.Path(__file__).parents[2] / f"packaging/linux/{IDENTIFIER}.service.in"
TITLE = "Tarnwick Settings"
APPLICATION = (IDENTIFIER, "/org/tarnwick/Tarnwick", "org.freedesktop.Application")
BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")


class LauncherTest(DesktopTestCase):
    def settings_window(self, program):
        return next((window for window in self.desktop.screen.windows(program.pid)
                     if self.desktop.screen.window_name(window) == TITLE), None)

    def ask(self, *options):
        """Another start with `options`; it has to end with success and without a word."""
        other = self.program("other", options).start()
        self.until(lambda: not other.runs(), "the other start ends")
        self.assertEqual(other.process.returncode, 0, other.output())
        self.assertEqual(other.output(), "")

    def test_another_start_passes_on_what_it_is_asked_for(self):
        self.open_desktop()
        program = self.start_known_to_user()
        self.ask("--toggle")
        self.assert_open(program)
        self.ask("--toggle")
        self.assert_closed(program)
        self.ask("--unknown")
        self.assert_open(program)
        self.ask("--settings")
        self.until(lambda: self.settings_window(program), "the settings window is open")

    def test_a_first_start_does_what_it_is_asked_for(self):
        self.open_desktop()
        self.start_known_to_user().end()
        program = self.program("asked", ["--settings"]).start()
        self.until(lambda: self.settings_window(program), "the settings window is open")
        self.assertIsNone(program.panel())

    def test_the_very_first_start_greets_and_does_what_it_is_asked_for(self):
        self.open_desktop()
        program = self.program("asked", ["--toggle"]).start()
        self.until(lambda: self.settings_window(program), "the settings window is open")
        self.assert_open(program)
        self.ask("--toggle")
        self.assert_closed(program)

    def test_the_bus_starts_it_for_a_launcher(self):
        self.open_desktop()
        self.start_known_to_user().end()
        path = self.desktop.path(f"services/{IDENTIFIER}.service")
        with open(path, "w", encoding="ascii") as file:
            file.write(SERVICE.read_text().replace(
                "@CMAKE_INSTALL_FULL_BINDIR@/tarnwick", os.environ["TARNWICK"]))
        self.desktop.bus.call(BUS, "ReloadConfig")
        started = self.program()
        self.desktop.bus.call(BUS, "StartServiceByName", GLib.Variant("(su)", (IDENTIFIER, 0)))
        pid = self.desktop.bus.owner(IDENTIFIER)
        self.addCleanup(self.end, pid)
        # The bus's own child.
        started.process = types.SimpleNamespace(pid=pid)
        self.until(lambda: self.desktop.bus.item_of(pid), "the item is registered")
        self.desktop.bus.call(APPLICATION, "ActivateAction", GLib.Variant(
            "(sava{sv})", ("settings", [], {})))
        self.until(lambda: self.settings_window(started), "the settings window is open")
        self.desktop.bus.call(APPLICATION, "Activate", GLib.Variant("(a{sv})", ({},)))
        self.assert_open(started)

    def end(self, pid):
        with contextlib.suppress(ProcessLookupError):
            os.kill(pid, signal.SIGTERM)
        self.until(lambda: self.desktop.bus.owner(IDENTIFIER) is None, "the program ends")

    def test_windows_have_the_icon_and_the_class_of_the_desktop_entry(self):
        self.open_desktop()
        program = self.start_known_to_user()
        self.ask("--settings")
        found = self.until(lambda: self.settings_window(program), "the settings window is open")
        connection = display.Display(self.desktop.env["DISPLAY"])
        self.addCleanup(connection.close)
        window = connection.create_resource_object("window", found.id)
        self.assertEqual(window.get_wm_class()[1], IDENTIFIER)
        icon = window.get_full_property(connection.intern_atom("_NET_WM_ICON"), 0).value
        sizes = []
        while len(icon) > 0:
            width, height = icon[:2]
            sizes.append((width, height))
            # The disc of the drawing, beside the mark in its middle.
            disc = icon[2 + width * (height // 2) + width // 4]
            self.assertGreater(disc >> 8 & 0xFF, (disc >> 16 & 0xFF) + 50)
            icon = icon[2 + width * height:]
        self.assertEqual(sizes, [(each, each) for each in (16, 32, 48, 64, 128)])
        self.keep_picture()


main()
