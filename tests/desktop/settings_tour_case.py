# SPDX-License-Identifier: MIT
"""What the tours of the settings window share: the window, the store, hands, other programs."""

import colorsys
import configparser
import contextlib
import json
import os
import subprocess

from gi.repository import GLib
from Xlib import X, XK, display
from Xlib.ext import xtest

from desktop_test_case import DesktopTestCase
from private_desktop.program import icon_colour

TITLE = "Tarnwick Settings"
RECORDER = ("push button", "Global shortcut recorder")
# The stored keys, with their values in a fresh store.
THRESHOLDS = {
    "CPU Usage": (("settings.cpuModerateThreshold", 80), ("settings.cpuHighThreshold", 90)),
    "GPU Usage": (("settings.gpuModerateThreshold", 90), ("settings.gpuHighThreshold", 95)),
    "Memory Usage": (("settings.memoryModerateThreshold", 80),
                     ("settings.memoryHighThreshold", 90)),
    "Storage Usage": (("settings.storageModerateThreshold", 80),
                      ("settings.storageCriticalThreshold", 90)),
}
THUMBS = ("normal", "high")
# With these values memory is above its upper threshold, and the other metrics are hardly ever above
# theirs. So the item and the panel report memory.
HIGH_MEMORY = {key: value for card, keys in THRESHOLDS.items() for (key, _), value in
               zip(keys, (1.0, 2.0) if card == "Memory Usage" else (99.0, 100.0))}
# The share of the memory that is in use.
_USED = 0.3
# The colour of the recorder's outline while it records.
_RECORDING = (0x08, 0x5F, 0xD0)
# Diameter of a thumb. Its centre moves from one end of the track to the other.
_THUMB = 20
_FOLLOW_LINK = """\
#!/bin/sh
printf '%s\\n' "$*" >> "$HOME/followed"
"""


def least_of(card):
    return 50 if card == "Storage Usage" else 10


class Keyboard:
    """Types on the keyboard, whichever program has it, and grabs keys as another program."""

    def __init__(self, desktop):
        self._display = display.Display(desktop.env["DISPLAY"])
        self._root = self._display.screen().root

    def close(self):
        self._display.close()

    def _code(self, name):
        return self._display.keysym_to_keycode(XK.string_to_keysym(name))

    def press(self, *names, times=1):
        """Presses keys one after the other and lets them go, the last one first."""
        for _ in range(times):
            with self.held(*names):
                pass

    @contextlib.contextmanager
    def held(self, *names):
        for name in names:
            xtest.fake_input(self._display, X.KeyPress, self._code(name))
        self._display.sync()
        try:
            yield
        finally:
            for name in reversed(names):
                xtest.fake_input(self._display, X.KeyRelease, self._code(name))
            self._display.sync()

    def take_from_all(self, name):
        """Grabs Command and a key as another program, but only for the state with Caps Lock on, so
        that the user can still record it. The program needs a shortcut in every state of the
        locks, so it cannot register this one.
        """
        self._root.grab_key(self._code(name), X.Mod4Mask | X.LockMask, False, X.GrabModeAsync,
                            X.GrabModeAsync)
        self._display.sync()


class SettingsTourCase(DesktopTestCase):
    def start_tour(self, host="xfce4-panel", numbers=None):
        """The program on a desktop with assistive technology, its settings window open."""
        self.open_desktop(host=host, accessibility=True)
        # The program that opens an address.
        os.mkdir(self.desktop.path("bin"))
        with open(self.desktop.path("bin/xdg-open"), "w", encoding="utf-8") as file:
            file.write(_FOLLOW_LINK)
        os.chmod(self.desktop.path("bin/xdg-open"), 0o700)
        self.program = self.start_known_to_user(
            numbers, PATH=self.desktop.path("bin") + ":" + self.desktop.env["PATH"],
            **self.with_memory_in_use(_USED))
        self.keyboard = Keyboard(self.desktop)
        self.addCleanup(self.keyboard.close)
        self.bus = self.enterContext(self.desktop.accessibility_bus())
        # The controls found in the window, by role and name.
        self.known = {}
        self.name = self.id().rpartition(".")[2]
        self.keep_store("before")
        self.addCleanup(self.keep_store, "after")
        self.choose_settings(self.program)
        self.wait_for_window()

    def wait_for_window(self):
        self.assert_state("page tab", "General", "selected")
        self.until(lambda: self.is_focused("page tab", "General"), "the window has the keyboard")

    # What the window shows.

    def window(self, title=TITLE):
        root = self.bus.program(self.program.pid)
        return next((each for each in (root.children() if root else ()) if each.name == title),
                    None)

    def look(self, question):
        """The answer of `question` about the window (None for no window). Asks again if a control
        disappears meanwhile."""
        answer = []

        def is_answered():
            with contextlib.suppress(GLib.Error):
                answer[:] = [question(self.window())]
            return answer

        return self.until(is_answered, "the window can be looked at")[0]

    @staticmethod
    def _parts(window):
        """All controls below a window, except those on tabs that are not shown."""
        for content in window.children():
            for part in content.children():
                if "showing" in part.states():
                    yield part
                    yield from part.descendants()

    def find(self, role, name):
        """The shown control of that role and name, or None."""
        def asked(window):
            for part in self._parts(window) if window else ():
                if part.name == name and part.role == role and "showing" in part.states():
                    self.known[role, name] = part
                    return part
            return None

        # Most controls are where they were the last time; a new search takes hundreds of calls.
        known = self.known.pop((role, name), None)
        with contextlib.suppress(GLib.Error):
            if known and known.name == name and "showing" in known.states():
                self.known[role, name] = known
                return known
        return self.look(asked)

    def control(self, role, name):
        return self.until(lambda: self.find(role, name), f"{name} is shown")

    def states(self, role, name):
        found = self.find(role, name)
        with contextlib.suppress(GLib.Error):
            return found.states() if found else set()
        return set()

    def is_focused(self, role, name):
        return "focused" in self.states(role, name)

    def assert_said(self, text):
        self.control("label", text)

    def assert_not_said(self, text):
        self.until(lambda: self.find("label", text) is None, f"{text} is not said any more")

    def assert_state(self, role, name, state, expected=True):
        self.control(role, name)
        self.until(lambda: (state in self.states(role, name)) == expected,
                   f"{name} is {'' if expected else 'not '}{state}")

    def wait_until_recording(self):
        """The recording shows in the colours, in the spoken text and as the state of a button."""
        def is_recording():
            x, y, width, height = self.control(*RECORDER).place()
            recorder = self.desktop.screen.picture((x, y, x + width, y + height))
            return _RECORDING in recorder.getdata() and \
                {"focused", "pressed"} <= self.states(*RECORDER)

        self.until(is_recording, "a shortcut is recorded")
        self.assert_recorder_reads("Press ⌘ + key…")

    def assert_recorder_reads(self, text):
        self.until_equal(lambda: self.control(*RECORDER).text(), text, "the recorder's text")

    def wait_until_closed(self):
        self.until(lambda: self.look(lambda window: window is None), "the window is closed")

    # What is stored.

    def keep_store(self, when):
        self.keep_text(f"{self.name}_store_{when}", json.dumps(self.stored(), indent=2) + "\n")

    def keep_tree(self, tab):
        """Keeps the shown tab as a text, as assistive technology finds it."""
        def lines(each, depth):
            value = each.value()
            parts = [each.role, f'"{each.name}"', each.description and f"({each.description})",
                     value and "{:g} of {:g} to {:g}".format(value[1], value[0], value[2]),
                     each.text() and f"reads {each.text()}", " ".join(sorted(
                         each.states() & {"checked", "focusable", "focused", "selected"})),
                     "/".join(each.actions())]
            yield "  " * depth + ", ".join(part for part in parts if part)
            for child in each.children():
                if "showing" in child.states():
                    yield from lines(child, depth + 1)

        self.keep_text(f"{self.name}_tree_{tab.lower()}",
                       self.look(lambda window: "\n".join(lines(window, 0)) + "\n"))

    def assert_stored(self, key, value):
        self.until_equal(lambda: self.stored().get("settings." + key), value, key)

    def threshold(self, card, thumb):
        key, fresh = THRESHOLDS[card][THUMBS.index(thumb)]
        return self.stored().get(key, fresh)

    def assert_threshold(self, card, thumb, value):
        """It is stored and shown in every place."""
        self.until_equal(lambda: self.threshold(card, thumb), value,
                         f"the {thumb} threshold of {card}")
        self.assert_threshold_shown(card, thumb, value)

    def assert_threshold_shown(self, card, thumb, value):
        name = f"{card} {thumb} threshold"

        def shown():
            with contextlib.suppress(GLib.Error):
                slider = self.control("slider", name)
                pill = self.known.get(slider)
                if pill is None:
                    # The pill with the value in words stands above, on the same card.
                    pill = next(each for each in slider.parent().parent().children()
                                if each.name.startswith(thumb.capitalize() + " "))
                    self.known[slider] = pill
                return slider.value()[1], slider.description, pill.name
            return None

        self.until_equal(shown, (value, f"{value:g} percent",
                                 f"{thumb.capitalize()} {value:g}%"), name)

    def assert_fresh_thresholds(self):
        for card, thresholds in THRESHOLDS.items():
            for thumb, (_, fresh) in zip(THUMBS, thresholds):
                self.assert_threshold(card, thumb, fresh)

    def assert_shows_what_is_stored(self, choose_tab):
        """The window, its first tab open, shows what is stored; `choose_tab` goes to another."""
        stored = self.stored()
        mode = stored["settings.menuBarDisplayMode"]
        self.assert_state("radio button", "Icon Only", "checked", mode == "iconOnly")
        self.assert_state("radio button", "Advanced", "checked", mode == "advanced")
        self.assert_state("check box", "Launch on login", "checked",
                          bool(stored["settings.launchOnLogin"]))
        choose_tab("Customize")
        self.assert_state("check box", "Remind restart after a week", "checked",
                          bool(stored["settings.remindRestartAfterWeek"]))
        for card, keys in THRESHOLDS.items():
            for thumb, (key, _) in zip(THUMBS, keys):
                self.assert_threshold_shown(card, thumb, stored[key])

    # The effects outside the window.

    def item(self):
        """What the status item is: (first word of its text, colour, sizes of its pictures)."""
        item = self.desktop.bus.item_of(self.program.pid)
        properties = self.desktop.bus.item_properties(item) if item else {}
        head, _, text = properties.get("Title", "").partition("Tarnwick status: ")
        colour = icon_colour(properties.get("IconPixmap"))
        if head or colour is None:
            return None
        hue = colorsys.rgb_to_hsv(*colour)[0] * 360
        # The icon has one of three colours.
        name = "red" if hue < 25 or hue > 335 else "yellow" if hue < 75 else "green"
        return text.partition(" ")[0], name, [each[:2] for each in properties["IconPixmap"]]

    def assert_toggles_panel(self, *keys):
        self.keyboard.press(*keys)
        self.assert_open(self.program)
        self.keyboard.press(*keys)
        self.assert_closed(self.program)

    def entry(self):
        return self.desktop.path("home/.config/autostart/org.tarnwick.Tarnwick.desktop")

    def assert_starts_at_login(self):
        self.until(lambda: os.path.exists(self.entry()), "the program starts at login")
        self.assert_state("check box", "Launch on login", "checked")
        self.assert_stored("launchOnLogin", 1)
        subprocess.run(["desktop-file-validate", self.entry()], check=True)
        parser = configparser.ConfigParser(interpolation=None, delimiters="=")
        parser.optionxform = str
        parser.read(self.entry(), encoding="utf-8")
        entry = parser["Desktop Entry"]
        self.assertEqual(
            {key: entry[key] for key in ("Type", "Name", "Icon", "Terminal")},
            {"Type": "Application", "Name": "Tarnwick", "Icon": "org.tarnwick.Tarnwick", "Terminal": "false"})
        self.assertNotIn("Hidden", entry)
        self.assertEqual(GLib.shell_parse_argv(entry["Exec"])[1],
                         [os.path.realpath(os.environ["TARNWICK"])])

    def assert_does_not_start_at_login(self):
        self.until(lambda: not os.path.exists(self.entry()), "the program does not start at login")
        self.assert_state("check box", "Launch on login", "checked", False)
        self.assert_stored("launchOnLogin", 0)

    def assert_login_snaps_back(self, flip, do_more):
        """`flip` tries to switch on and fails; `do_more` runs then and waits for its own effect."""
        # Not even the superuser can create an entry below a file.
        folder = os.path.dirname(self.entry())
        os.rmdir(folder)
        with open(folder, "w", encoding="utf-8"):
            pass
        flip()
        do_more()
        self.assertEqual(self.stored()["settings.launchOnLogin"], 0)
        self.assert_state("check box", "Launch on login", "checked", False)
        os.remove(folder)

    def followed(self):
        """The addresses that were opened."""
        with contextlib.suppress(FileNotFoundError), \
                open(self.desktop.path("home/followed"), encoding="utf-8") as file:
            return file.read().splitlines()
        return []

    def assert_about(self, follow):
        """The tab tells what it should, and its links lead where they should."""
        address = "https://brantlow.example/"
        for text in ("Tarnwick", "Version", os.environ["TARNWICK_VERSION"], "Private by design",
                     "Quietly in the background", "Resource conscious", "Privacy & Security"):
            self.assert_said(text)
        self.keep_tree("About")
        for count, name in enumerate(("Learn More", "More from Brantlow"), 1):
            follow(name)
            self.until_equal(self.followed, [address] * count, f"what {name} opens")

    # Actions with the mouse.

    def view(self):
        """The top and the bottom of the visible part of a tab's content, on the screen."""
        _, top, _, height = self.control("page tab list", "").place()
        _, y, _, whole = self.look(lambda window: window.place())
        return top + height, y + whole

    def scroll_to(self, control):
        """Turns the wheel until the control is in view."""
        top, bottom = self.view()
        x = self.look(lambda window: window.place())[0] + 8
        while True:
            _, y, _, height = before = control.place()
            if top <= y and y + height <= bottom:
                return
            self.desktop.screen.click((x, (top + bottom) // 2), button=4 if y < top else 5)
            self.until(lambda: control.place() != before, "the content is scrolled")

    def click(self, role, name):
        control = self.control(role, name)
        if role != "page tab":
            self.scroll_to(control)
        x, y, width, height = control.place()
        self.desktop.screen.click((x + width // 2, y + height // 2))

    @contextlib.contextmanager
    def dragged(self, card, thumb, to):
        """Drags a thumb to a place on its track, in percent, by way of half the way."""
        control = self.control("slider", f"{card} {thumb} threshold")
        self.scroll_to(control)
        x, y, width, height = control.place()
        start = (x + width // 2, y + height // 2)
        left, _, whole, _ = control.parent().place()
        end = round(left + _THUMB / 2 + (whole - _THUMB) * to / 100)
        with self.desktop.screen.dragged(start, ((start[0] + end) // 2, start[1]),
                                         (end, start[1])):
            yield

    def drag(self, card, thumb, to, value):
        with self.dragged(card, thumb, to):
            self.assert_threshold(card, thumb, value)
