"""The settings window used: by mouse, by keyboard and by assistive technology."""

import contextlib
import os
import sqlite3

from gi.repository import GLib
from Xlib import X, XK, display
from Xlib.ext import xtest

from desktop_test_case import DesktopTestCase, main

TITLE = "Tarnwick Settings"
TABS = ("General", "Customize", "About")
# As they are stored, with what they are in a fresh store.
THRESHOLDS = {
    "CPU Usage": (("settings.cpuModerateThreshold", 80), ("settings.cpuHighThreshold", 90)),
    "GPU Usage": (("settings.gpuModerateThreshold", 90), ("settings.gpuHighThreshold", 95)),
    "Memory Usage": (("settings.memoryModerateThreshold", 80),
                     ("settings.memoryHighThreshold", 90)),
    "Storage Usage": (("settings.storageModerateThreshold", 80),
                      ("settings.storageCriticalThreshold", 90)),
}
ACTIVE = "Shortcut active: ⌘"
CONFLICT = "This shortcut is already in use. Choose a different combination."
NO_COMMAND = "Shortcut must include Command."


class Keyboard:
    """Hands on the keyboard, whichever program has it, and keys taken for another program."""

    def __init__(self, desktop):
        self._display = display.Display(desktop.env["DISPLAY"])
        self._root = self._display.screen().root

    def close(self):
        self._display.close()

    def _code(self, name):
        return self._display.keysym_to_keycode(XK.string_to_keysym(name))

    def press(self, *names):
        for name in names:
            xtest.fake_input(self._display, X.KeyPress, self._code(name))
        for name in reversed(names):
            xtest.fake_input(self._display, X.KeyRelease, self._code(name))
        self._display.sync()

    def grab(self, name, modifiers):
        self._root.grab_key(self._code(name), modifiers, False, X.GrabModeAsync, X.GrabModeAsync)
        self._display.sync()


class SettingsTourTest(DesktopTestCase):
    def setUp(self):
        self.open_desktop(accessibility=True)
        self.program = self.start_known_to_user()
        self.keyboard = Keyboard(self.desktop)
        self.addCleanup(self.keyboard.close)
        self.bus = self.enterContext(self.desktop.accessibility_bus())
        self.choose_settings()
        self.control("page tab", "General")
        self.until(lambda: self.is_focused("page tab", "General"), "the window has the keyboard")

    def choose_settings(self):
        """What a tray host says of a press on the menu's entry."""
        item = self.desktop.bus.item_of(self.program.pid)
        menu = (item.name, self.desktop.bus.item_property(item, "Menu"), "com.canonical.dbusmenu")
        _, (_, _, entries) = self.desktop.bus.call(
            menu, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        number = next(each for each, properties, _ in entries
                      if properties.get("label") == "Settings")
        self.desktop.bus.call(menu, "Event", GLib.Variant(
            "(isvu)", (number, "clicked", GLib.Variant("s", ""), 0)))

    # What can be seen of the window.

    def find(self, role, name):
        """What is shown of that role and name, or None."""
        with contextlib.suppress(GLib.Error):
            root = self.bus.program(self.program.pid)
            for window in root.children() if root else ():
                if window.name == TITLE:
                    return next((each for each in window.descendants()
                                 if each.role == role and each.name == name
                                 and "showing" in each.states()), None)
        return None

    def control(self, role, name):
        return self.until(lambda: self.find(role, name), f"{name} is shown")

    def is_focused(self, role, name):
        found = self.find(role, name)
        return found is not None and "focused" in found.states()

    def assert_said(self, text):
        self.control("label", text)

    def assert_not_said(self, text):
        self.until(lambda: self.find("label", text) is None, f"{text} is not said any more")

    def assert_state(self, role, name, state, expected=True):
        def has():
            found = self.find(role, name)
            return found is not None and (state in found.states()) == expected

        self.until(has, f"{name} is {'' if expected else 'not '}{state}")

    # What is stored.

    def stored(self):
        with contextlib.closing(sqlite3.connect(f"file:{self.store()}?mode=ro", uri=True)) as store:
            return {key: value for key, _, value in store.execute("SELECT * FROM defaults")}

    def assert_stored(self, key, value):
        self.until(lambda: self.stored().get(key) == value,
                   f"{key} is stored as {value}, not as {self.stored().get(key)}")

    def threshold(self, card, thumb):
        key, fresh = THRESHOLDS[card][thumb == "high"]
        return self.stored().get(key, fresh)

    def assert_threshold(self, card, thumb, value):
        self.until(lambda: self.threshold(card, thumb) == value,
                   f"the {thumb} threshold of {card} is {value},"
                   f" not {self.threshold(card, thumb)}")

    # What is done to it by mouse.

    def centre(self, role, name):
        x, y, width, height = self.control(role, name).place()
        return x + width // 2, y + height // 2

    def click(self, role, name):
        self.desktop.screen.click(self.centre(role, name))

    def drag(self, thumb, other, to):
        """Drags a thumb of a slider to a place on its track, in percent, by way of half the way."""
        thumb.do("SetFocus")
        tabs = self.tabs.place()

        def in_view():
            _, y, _, height = thumb.place()
            return tabs[1] + tabs[3] <= y and y + height <= tabs[1] + 500

        self.until(in_view, "the thumb is scrolled into view")
        x, y, width, height = thumb.place()
        percent = (other.place()[0] - x) / (other.value()[1] - thumb.value()[1])
        start = (x + width // 2, y + height // 2)
        end = round(start[0] + (to - thumb.value()[1]) * percent)
        self.desktop.screen.drag(start, ((start[0] + end) // 2, start[1]), (end, start[1]))

    def test_shortcut_is_recorded_rejected_lost_and_cleared(self):
        self.assert_said(ACTIVE + "L")
        self.click("push button", "Global shortcut recorder")
        self.until(lambda: self.is_focused("push button", "Global shortcut recorder"),
                   "the recorder has the keyboard")
        self.keyboard.press("Super_L", "k")
        self.assert_said(ACTIVE + "K")
        self.assert_stored("settings.shortcutKeyCode", 40)
        self.assert_stored("settings.shortcutModifiers", 0x100000)
        # Whichever program has the keyboard.
        self.desktop.screen.open_window()
        self.until(lambda: not self.is_focused("push button", "Global shortcut recorder"),
                   "another program has the keyboard")
        self.keyboard.press("Super_L", "k")
        self.assert_open(self.program)
        self.keyboard.press("Super_L", "k")
        self.assert_closed(self.program)
        # What is rejected says why, and takes nothing away.
        self.choose_settings()
        self.click("push button", "Global shortcut recorder")
        self.until(lambda: self.is_focused("push button", "Global shortcut recorder"),
                   "the recorder has the keyboard")
        self.keyboard.press("j")
        self.assert_said(NO_COMMAND)
        self.assert_said(ACTIVE + "K")
        self.keyboard.press("Escape")
        self.assert_not_said(NO_COMMAND)
        self.assert_stored("settings.shortcutKeyCode", 40)
        self.keyboard.press("Super_L", "k")
        self.assert_open(self.program)
        self.keyboard.press("Super_L", "k")
        self.assert_closed(self.program)
        # Another program has the next one while the capital letters are locked; a shortcut is had
        # in every state of the locks or not at all.
        self.keyboard.grab("j", X.Mod4Mask | X.LockMask)
        self.choose_settings()
        self.click("push button", "Global shortcut recorder")
        self.until(lambda: self.is_focused("push button", "Global shortcut recorder"),
                   "the recorder has the keyboard")
        self.keyboard.press("Super_L", "j")
        self.assert_said(CONFLICT)
        self.assert_stored("settings.shortcutKeyCode", 38)
        self.keep_picture("settings_shortcut")
        self.click("push button", "Clear")
        self.assert_not_said(CONFLICT)
        self.until(lambda: self.find("push button", "Clear") is None, "nothing is left to clear")
        self.assert_stored("settings.shortcutKeyCode", -1)
        self.assert_stored("settings.shortcutModifiers", 0)
        self.assertEqual(self.program.output(), "")

    def test_mouse_changes_everything(self):
        self.assert_state("radio button", "Advanced", "checked")
        self.click("radio button", "Icon Only")
        self.assert_state("radio button", "Icon Only", "checked")
        self.assert_state("radio button", "Advanced", "checked", False)
        self.assert_stored("settings.menuBarDisplayMode", "iconOnly")
        entry = self.desktop.path("home/.config/autostart/tarnwick.desktop")
        self.click("check box", "Launch on login")
        self.until(lambda: os.path.exists(entry), "the program starts at login")
        self.assert_state("check box", "Launch on login", "checked")
        self.click("check box", "Launch on login")
        self.until(lambda: not os.path.exists(entry), "the program does not start at login")
        self.assert_state("check box", "Launch on login", "checked", False)
        # Not even the superuser can put an entry into a file.
        os.rmdir(os.path.dirname(entry))
        with open(os.path.dirname(entry), "w", encoding="utf-8"):
            pass
        self.click("check box", "Launch on login")
        self.assert_stored("settings.launchOnLogin", 0)
        self.assert_state("check box", "Launch on login", "checked", False)
        self.click("page tab", "Customize")
        self.click("check box", "Remind restart after a week")
        self.assert_stored("settings.remindRestartAfterWeek", 1)
        self.tabs = self.control("page tab list", "")
        for card in THRESHOLDS:
            normal, high = (self.control("slider", f"{card} {thumb} threshold")
                            for thumb in ("normal", "high"))
            self.drag(normal, high, 110)
            self.assert_threshold(card, "normal", self.threshold(card, "high") - 1)
            self.drag(high, normal, 110)
            self.assert_threshold(card, "high", 100)
            least = 50 if card == "Storage Usage" else 10
            self.drag(normal, high, -10)
            self.assert_threshold(card, "normal", least)
            self.drag(high, normal, -10)
            self.assert_threshold(card, "high", least + 1)
        self.keep_picture("settings_thumbs")
        self.click("push button", "Reset to Defaults")
        for card, thresholds in THRESHOLDS.items():
            for thumb, (_, fresh) in zip(("normal", "high"), thresholds):
                self.assert_threshold(card, thumb, fresh)
        self.assert_stored("settings.menuBarDisplayMode", "iconOnly")
        self.assert_stored("settings.remindRestartAfterWeek", 1)
        self.assert_store_is_whole()

    def test_keyboard_alone_changes_everything(self):
        def go_to(role, name, steps):
            for _ in range(steps):
                self.keyboard.press("Tab")
            self.until(lambda: self.is_focused(role, name), f"the keyboard is at {name}")

        go_to("radio button", "Icon Only", 3)
        self.keyboard.press("space")
        self.assert_stored("settings.menuBarDisplayMode", "iconOnly")
        go_to("radio button", "Advanced", 1)
        self.keyboard.press("Return")
        self.assert_stored("settings.menuBarDisplayMode", "advanced")
        go_to("check box", "Launch on login", 1)
        self.keyboard.press("space")
        self.assert_state("check box", "Launch on login", "checked")
        go_to("push button", "Global shortcut recorder", 1)
        self.keyboard.press("space")
        self.keyboard.press("Super_L", "Shift_L", "k")
        self.assert_said("Shortcut active: ⇧⌘K")
        go_to("push button", "Clear", 1)
        self.keyboard.press("space")
        self.assert_stored("settings.shortcutKeyCode", -1)
        self.until(lambda: self.is_focused("push button", "Global shortcut recorder"),
                   "the keyboard stays at the recorder")
        self.keyboard.press("Control_L", "Tab")
        go_to("page tab", "Customize", 0)
        go_to("check box", "Remind restart after a week", 2)
        self.keyboard.press("space")
        self.assert_stored("settings.remindRestartAfterWeek", 1)
        for card, (normal, high) in THRESHOLDS.items():
            go_to("slider", f"{card} normal threshold", 1)
            for key in ("Down", "Left", "Up", "Left"):
                self.keyboard.press(key)
            self.assert_threshold(card, "normal", normal[1] - 2)
            go_to("slider", f"{card} high threshold", 1)
            for key in ("Right", "Up", "Down"):
                self.keyboard.press(key)
            self.assert_threshold(card, "high", high[1] + 1)
        self.keep_picture("settings_keyboard")
        go_to("push button", "Reset to Defaults", 1)
        self.keyboard.press("Return")
        self.assert_threshold("Storage Usage", "high", 90)
        self.assert_threshold("CPU Usage", "normal", 80)

    def test_assistive_technology_alone_changes_everything(self):
        self.control("radio button", "Icon Only").do("Press")
        self.assert_stored("settings.menuBarDisplayMode", "iconOnly")
        self.assert_state("radio button", "Icon Only", "checked")
        self.control("check box", "Launch on login").do("Toggle")
        self.assert_state("check box", "Launch on login", "checked")
        self.assert_stored("settings.launchOnLogin", 1)
        self.control("push button", "Clear").do("Press")
        self.assert_stored("settings.shortcutKeyCode", -1)
        self.control("page tab", "Customize").do("Press")
        self.control("check box", "Remind restart after a week").do("Toggle")
        self.assert_stored("settings.remindRestartAfterWeek", 1)
        for card in THRESHOLDS:
            high = self.threshold(card, "high")
            normal = self.threshold(card, "normal")
            self.control("slider", f"{card} high threshold").do("Increase")
            self.assert_threshold(card, "high", high + 1)
            slider = self.control("slider", f"{card} normal threshold")
            slider.do("Decrease")
            self.assert_threshold(card, "normal", normal - 1)
            self.assertEqual(slider.description, f"{normal - 1:g} percent")
            slider.set_value(0)
            self.assert_threshold(card, "normal", slider.value()[0])
        self.control("push button", "Reset to Defaults").do("Press")
        for card, thresholds in THRESHOLDS.items():
            for thumb, (_, fresh) in zip(("normal", "high"), thresholds):
                self.assert_threshold(card, thumb, fresh)
        self.control("page tab", "About").do("Press")
        self.assert_said("Private by design")


main()
