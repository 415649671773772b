# SPDX-License-Identifier: MIT
"""The shortcut: pressed while another program is in front."""

import contextlib
import subprocess
import time

from Xlib import X, XK, display, error
from Xlib.ext import xtest

from desktop_test_case import DesktopTestCase, main
from private_desktop import Timeout, until

# What those have who used the program before a shortcut could be chosen: Command-L.
SHORTCUT = ("Super_L", "l")
# Long enough for a panel that should not be there to show itself.
A_WHILE = 0.5
# Seconds. After this time the effect of a press is visible, or the press was lost.
LOST_AFTER = 5
# As they are stored.
COMMAND = 0x100000
COMMAND_SHIFT = 0x120000


class Bystander:
    """Another program with a window in front, and with hands on the keyboard."""

    def __init__(self, desktop):
        self._display = display.Display(desktop.env["DISPLAY"])
        screen = self._display.screen()
        self._root = screen.root
        self._window = screen.root.create_window(
            200, 300, 200, 100, 0, screen.root_depth, background_pixel=screen.white_pixel,
            event_mask=X.KeyPressMask | X.FocusChangeMask)
        self._window.set_wm_name("Bystander")
        self._window.map()
        self._pressed = []

    def close(self):
        self._display.close()

    def has_focus(self):
        return self._display.get_input_focus().focus == self._window

    def code(self, name):
        return self._display.keysym_to_keycode(XK.string_to_keysym(name))

    def hold(self, *names):
        for name in names:
            xtest.fake_input(self._display, X.KeyPress, self.code(name))
        self._display.sync()

    def release(self, *names):
        for name in names:
            xtest.fake_input(self._display, X.KeyRelease, self.code(name))
        self._display.sync()

    def press(self, *names):
        """Presses keys one after the other and lets them go, the last one first."""
        self.hold(*names)
        self.release(*reversed(names))

    def modifiers(self):
        """Which modifiers are on, as bits."""
        return self._root.query_pointer().mask

    def keys(self):
        """The codes of the keys that were pressed in the window."""
        while self._display.pending_events():
            event = self._display.next_event()
            if event.type == X.KeyPress:
                self._pressed.append(event.detail)
        return self._pressed

    def grab(self, name, modifiers):
        """Grabs a key combination; False if another program has it."""
        refused = error.CatchError(error.BadAccess)
        self._root.grab_key(self.code(name), modifiers, False, X.GrabModeAsync, X.GrabModeAsync,
                            onerror=refused)
        self._display.sync()
        return refused.get_error() is None

    def ungrab(self, name, modifiers):
        self._root.ungrab_key(self.code(name), modifiers)
        self._display.sync()


class ShortcutTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop()

    def start_beside_another(self):
        """Starts the program, then another one that takes the focus."""
        program = self.start_known_to_user()
        self.wait_until_it_answers(program)
        self.bring_another_to_front()
        return program

    def wait_until_it_answers(self, program):
        """By then it has taken its keys, or has left them."""
        item = program.wait_for_item()
        self.until(lambda: self.desktop.bus.item_property(item, "Title"), "the program answers")

    def bring_another_to_front(self):
        self.other = Bystander(self.desktop)
        self.addCleanup(self.other.close)
        self.until(self.other.has_focus, "the other program is in front")

    def change_keyboard(self, *command):
        subprocess.run(command, env=self.desktop.env, check=True)

    def assert_toggles(self, program):
        self.other.press(*SHORTCUT)
        self.assert_open(program)
        self.other.press(*SHORTCUT)
        self.assert_closed(program)

    def assert_toggles_soon(self, program):
        """The same, soon after the keyboard has changed."""
        def opens():
            self.other.keys().clear()
            self.other.press(*SHORTCUT)
            self.until(lambda: program.panel() or self.other.code(SHORTCUT[1]) in self.other.keys(),
                       "someone hears of the keys")
            return program.panel()

        def closes():
            self.other.press(*SHORTCUT)
            with contextlib.suppress(Timeout):
                return until(lambda: program.panel() is None, "the panel closes", LOST_AFTER)
            return False

        # While the program takes its keys anew, it has none of them for a moment.
        self.until(opens, "the shortcut works again")
        self.until(closes, "the shortcut works again")
        self.assert_toggles(program)

    def test_opens_and_closes_while_another_program_is_in_front(self):
        program = self.start_beside_another()
        for _ in range(3):
            self.assert_toggles(program)
        self.assertNotIn(self.other.code("l"), self.other.keys())
        # Only the combination is taken.
        self.other.press("l")
        self.until(lambda: self.other.code("l") in self.other.keys(), "the other one gets its key")
        self.assertIsNone(program.panel())
        self.assertEqual(program.output(), "")

    def test_works_whatever_is_locked(self):
        program = self.start_beside_another()
        # Scroll Lock has no modifier by default; users who need one assign it.
        self.change_keyboard("xmodmap", "-e", "add mod3 = Scroll_Lock")
        for lock, bit in (("Caps_Lock", X.LockMask), ("Num_Lock", X.Mod2Mask),
                          ("Scroll_Lock", X.Mod3Mask)):
            self.other.press(lock)
            self.until(lambda: self.other.modifiers() & bit, f"{lock} is on")
            self.assert_toggles_soon(program)

    def test_held_down_opens_once(self):
        subprocess.run(["xset", "r", "rate", "100", "50"], env=self.desktop.env, check=True)
        program = self.start_beside_another()
        self.other.hold(*SHORTCUT)
        self.assert_open(program)
        # Some twenty repetitions.
        time.sleep(A_WHILE)
        self.assertIsNotNone(program.panel())
        self.other.release(*reversed(SHORTCUT))
        self.other.press(*SHORTCUT)
        self.assert_closed(program)

    def test_closes_what_a_click_has_opened(self):
        program = self.start_beside_another()
        program.open_panel()
        self.assert_open(program)
        self.other.press(*SHORTCUT)
        self.assert_closed(program)

    def test_survives_another_layout(self):
        program = self.start_beside_another()
        for layout in ("de", "us,ru", "us"):
            self.change_keyboard("setxkbmap", "-layout", layout)
            self.assert_toggles_soon(program)

    def test_held_by_another_program_is_left_to_it(self):
        self.start_known_to_user().end()
        self.bring_another_to_front()
        self.assertTrue(self.other.grab("l", X.Mod4Mask))
        program = self.program("conflict").start()
        self.wait_until_it_answers(program)
        self.other.press(*SHORTCUT)
        self.until(lambda: self.other.code("l") in self.other.keys(), "its holder has it")
        time.sleep(A_WHILE)
        self.assertIsNone(program.panel())
        # Not even the other states of the locks were kept.
        self.assertTrue(self.other.grab("l", X.Mod4Mask | X.LockMask))
        self.assertEqual(program.end(), 0, program.output())
        self.other.ungrab("l", X.AnyModifier)

        self.edit_store({"settings.shortcutModifiers": COMMAND_SHIFT})
        program = self.program("released").start()
        self.wait_until_it_answers(program)
        self.other.press("Super_L", "Shift_L", "l")
        self.assert_open(program)
        self.other.press(*SHORTCUT)
        time.sleep(A_WHILE)
        self.assertIsNotNone(program.panel())
        self.assertEqual(program.end(), 0, program.output())

        # What the other program has let go is the program's again.
        self.edit_store({"settings.shortcutModifiers": COMMAND})
        program = self.program("again").start()
        self.wait_until_it_answers(program)
        self.assertFalse(self.other.grab("l", X.Mod4Mask))
        self.assert_toggles(program)

    def test_is_left_to_the_portal_beside_a_compositor(self):
        # An X server beside it knows nothing of the keys that the compositor's windows get.
        self.wait_until_it_answers(
            self.start_known_to_user(WAYLAND_DISPLAY="wayland-0", QT_QPA_PLATFORM="xcb"))
        self.bring_another_to_front()
        self.assertTrue(self.other.grab("l", X.Mod4Mask))

    def test_is_grabbed_in_a_session_of_x11_that_names_a_compositor_of_another(self):
        self.wait_until_it_answers(self.start_known_to_user(
            WAYLAND_DISPLAY="wayland-0", XDG_SESSION_TYPE="x11", QT_QPA_PLATFORM="xcb"))
        self.bring_another_to_front()
        self.assertFalse(self.other.grab("l", X.Mod4Mask))

    def test_follows_the_settings_file_while_it_runs(self):
        program = self.start_beside_another()
        self.assert_toggles(program)
        self.edit_store({"settings.shortcutModifiers": COMMAND_SHIFT})
        self.until(lambda: self.other.grab("l", X.Mod4Mask), "the old keys are free")
        self.other.ungrab("l", X.Mod4Mask)
        self.until(lambda: not self.other.grab("l", X.Mod4Mask | X.ShiftMask),
                   "the new keys are taken")
        self.other.press("Super_L", "Shift_L", "l")
        self.assert_open(program)
        self.other.press("Super_L", "Shift_L", "l")
        self.assert_closed(program)
        self.assertEqual(program.output(), "")

    def test_is_given_back_at_the_end(self):
        program = self.start_beside_another()
        self.assertFalse(self.other.grab("l", X.Mod4Mask))
        self.assertEqual(program.end(), 0)
        self.assertTrue(self.other.grab("l", X.Mod4Mask))


main()
