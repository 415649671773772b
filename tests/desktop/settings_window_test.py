# SPDX-License-Identifier: MIT
"""The settings window: what opens it, where it is, what closing it means."""

import contextlib
import signal
import subprocess

from Xlib import X, Xutil, display
from Xlib.error import BadWindow
from Xlib.protocol import event

from desktop_test_case import DesktopTestCase, main
from private_desktop import usage

TITLE = "Tarnwick Settings"
SIZE = (520, 500)


class SettingsWindowTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop()
        self.connection = display.Display(self.desktop.env["DISPLAY"])
        self.addCleanup(self.connection.close)
        self.root = self.connection.screen().root

    def settings_windows(self, program):
        return [window for window in self.desktop.screen.windows(program.pid)
                if self.desktop.screen.window_name(window) == TITLE]

    def open_settings_window(self, program):
        """The settings window once it is on the screen and stays where it is."""

        def is_framed(window):
            # The window manager decides on the place before it shows its frame.
            with contextlib.suppress(BadWindow):
                return self.window(window).query_tree().parent != self.root
            return False

        def settled():
            windows = self.settings_windows(program)
            are_framed = all(is_framed(window) for window in windows)
            return windows if are_framed and windows == self.settings_windows(program) else []

        windows = self.until(settled, "the settings window is open")
        self.assertEqual(len(windows), 1, windows)
        return windows[0]

    def window(self, window):
        return self.connection.create_resource_object("window", window.id)

    def atom(self, name):
        return self.connection.intern_atom(name)

    def close_by_user(self, window):
        """What a click on the title bar's button makes the window manager do."""
        self.root.send_event(
            event.ClientMessage(window=self.window(window), client_type=self.atom(
                "_NET_CLOSE_WINDOW"), data=(32, [X.CurrentTime, 2, 0, 0, 0])),
            X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self.connection.sync()

    def assert_active(self, window):
        self.until(lambda: self.desktop.screen.active_window() == window.id,
                   "the window is the active one")

    def assert_closed_for_good(self, program, window):
        self.until(lambda: not self.settings_windows(program), "the settings window is closed")

        def gone():
            with contextlib.suppress(BadWindow):
                self.window(window).get_attributes()
                return False
            return True

        self.until(gone, "nothing of the window is left")

    def greet(self):
        """The first start, its greeting in full: program and settings window."""
        program = self.start_greeting()
        window = self.open_settings_window(program)
        self.assert_open(program)
        return program, window

    def test_first_start_opens_settings_and_panel_second_start_neither(self):
        first, window = self.greet()
        self.assert_open(first)
        self.assertEqual(self.settings_windows(first), [window])
        self.keep_picture()
        self.assertEqual(first.end(), 0, first.output())
        second = self.program("second").start()
        second.wait_for_item()
        self.assertFalse(second.wait_for_greeting())
        self.assertEqual(self.settings_windows(second), [])

    def test_greets_in_the_middle_with_one_size_and_the_keyboard(self):
        program, window = self.greet()
        self.assert_in_the_middle(program)
        hints = self.window(window).get_wm_normal_hints()
        self.assertTrue(hints.flags & Xutil.PMinSize and hints.flags & Xutil.PMaxSize)
        self.assertEqual((hints.min_width, hints.min_height), SIZE)
        self.assertEqual((hints.max_width, hints.max_height), SIZE)
        program.close_panel()
        self.assert_active(window)

    def test_leaves_hardly_any_memory_behind(self):
        program = self.start_known_to_user()

        def held_after(windows):
            for _ in range(windows):
                self.choose_settings(program)
                self.close_by_user(self.open_settings_window(program))
                self.until(lambda: not self.settings_windows(program), "the window is closed")
            self.wait_until_calm(program)
            return usage.memory(program.pid).anonymous

        # The first ones fill the toolkit's tables.
        before = held_after(3)
        # kB; the pictures of the window's icon alone are 100 kB each time.
        self.assertLess(held_after(8) - before, 400)

    def assert_in_the_middle(self, program):
        width, height = self.desktop.screen.size

        def is_there():
            window = self.open_settings_window(program)
            # The title bar and the tray take their share.
            return (window.width, window.height) == SIZE and \
                abs(window.centre[0] - width // 2) <= 40 and \
                abs(window.centre[1] - height // 2) <= 40

        self.until(is_there, "the settings window is in the middle of the screen")

    def press_settings_button(self, program):
        program.open_panel()
        self.assert_open(program)
        for key in ("Tab", "space"):
            self.desktop.screen.press_key(key)
        self.assert_closed(program)

    def show_other_window(self):
        """A window of another program that covers the middle of the screen."""
        width, height = self.desktop.screen.size
        screen = self.connection.screen()
        window = self.root.create_window(width // 4, height // 8, width // 2, height * 3 // 4, 0,
                                         screen.root_depth, background_pixel=screen.white_pixel)
        window.set_wm_name("other")
        window.map()
        self.connection.sync()
        self.assert_active(window)
        return window

    def test_panel_button_closes_the_panel_and_opens_it_before_other_windows(self):
        program = self.start_known_to_user()
        self.show_other_window()
        self.press_settings_button(program)
        window = self.open_settings_window(program)
        self.assert_active(window)

    def test_asked_for_again_the_same_window_comes_to_the_front(self):
        program = self.start_known_to_user()
        self.press_settings_button(program)
        window = self.open_settings_window(program)
        self.show_other_window()
        self.press_settings_button(program)
        self.assert_active(window)
        self.assertEqual(self.settings_windows(program), [window])

    def test_opened_again_it_is_a_new_window_in_the_middle(self):
        program = self.start_known_to_user()
        self.press_settings_button(program)
        self.assert_in_the_middle(program)
        first = self.open_settings_window(program)
        self.window(first).configure(x=5, y=100)
        self.connection.sync()
        self.until(lambda: self.open_settings_window(program).x < first.x - 100,
                   "the window has moved")
        self.close_by_user(first)
        self.assert_closed_for_good(program, first)
        self.press_settings_button(program)
        self.until_equal(lambda: self.open_settings_window(program).centre, first.centre,
                         "the middle of the window")

    def test_closing_keeps_the_program(self):
        program, window = self.greet()
        program.close_panel()
        self.close_by_user(window)
        self.assert_closed_for_good(program, window)
        program.open_panel()
        self.assert_open(program)
        self.assertTrue(program.runs())
        self.assertEqual(program.output(), "")

    def test_the_program_ends_with_its_window_open(self):
        program, _ = self.greet()
        program.process.send_signal(signal.SIGTERM)
        self.assert_ends(program)
        self.assertEqual(program.output(), "")

    def work_with_other_window(self):
        """Clicks into it. From then on no other window can activate itself."""
        self.show_other_window()
        subprocess.run(["xfconf-query", "--channel", "xfwm4", "--create", "--type", "bool",
                        "--property", "/general/prevent_focus_stealing", "--set", "true"],
                       env=self.desktop.env, check=True)
        width, height = self.desktop.screen.size
        self.desktop.screen.click((width // 2, height // 2))

    def test_menu_opens_it_before_other_windows(self):
        program = self.start_known_to_user()
        self.work_with_other_window()
        self.choose_settings(program)
        window = self.open_settings_window(program)
        self.assert_active(window)

    def test_menu_brings_a_covered_one_to_the_front(self):
        program = self.start_known_to_user()
        self.choose_settings(program)
        window = self.open_settings_window(program)
        self.work_with_other_window()
        self.choose_settings(program)
        self.assert_active(window)
        self.assertEqual(self.settings_windows(program), [window])


main()
