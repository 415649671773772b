# SPDX-License-Identifier: MIT
"""What the desktop tests share."""

import contextlib
import json
import os
import re
import shutil
import time
import unittest

from gi.repository import GLib
from private_desktop import PrivateDesktop, Program, Timeout, hosts, until
from private_desktop.processes import end_on_signals

# The panel's background.
LIGHT = (0xFB, 0xFB, 0xFC)
DARK = (0x23, 0x23, 0x26)
# Seconds; many times what a normal end takes. A program that waits for something would take longer.
ENDS_WITHIN = 5.0
# The host that must exist on every machine.
_FIRST_HOST = "xfce4-panel"
# What the program prints if no tray shows its item.
NO_TRAY = "tarnwick: no tray was found; start Tarnwick again to open its panel\n"
# More bytes than waking up reads, fewer than a refresh reads.
REFRESH_BYTES = 1000
# Seconds in which a running refresh reads something, even on a busy machine.
_CALM = 1.0
_GREETING_ATTEMPTS = 5
# kB; the text has the same length whatever the figures are.
_MEMORY = 16_000_000
_MEMINFO = f"""\
MemTotal:       {_MEMORY:8d} kB
MemFree:        {{free:8d}} kB
MemAvailable:   {{free:8d}} kB
Buffers:               0 kB
Cached:                0 kB
SwapTotal:             0 kB
SwapFree:              0 kB
AnonPages:      {{used:8d}} kB
"""


class DesktopTestCase(unittest.TestCase):
    """A test with a private desktop, which ends with the test. A picture of its end is kept."""

    def open_desktop(self, **options):
        host = options.get("host", _FIRST_HOST)
        lacking = hosts.missing(host) if host else []
        if lacking:
            message = "this machine lacks " + ", ".join(lacking)
            if host == _FIRST_HOST or os.environ.get("TARNWICK_ALL_HOSTS") == "1":
                self.fail(message)
            self.skipTest(message)
        self.desktop = self.enterContext(PrivateDesktop(**options))
        self.addCleanup(self.keep_picture)
        return self.desktop

    def program(self, log="program", options=(), before=()):
        return Program(self.desktop, [*before, os.environ["TARNWICK"], *options], log)

    def start_known_to_user(self, numbers=None, **changes):
        """Starts the program for the second time, because at its first start it greets its user.

        `numbers` are settings that the user has changed; the rest, changes of the environment.
        """
        first = self.program("first").start(**changes)
        first.wait_for_tray()
        self.until(lambda: self.is_in_store("settings.hasPresentedInitialSettings"),
                   "the greeting is over")
        self.assertEqual(first.end(), 0, first.output())
        self.edit_store(numbers or {})
        program = self.program().start(**changes)
        program.wait_for_tray()
        return program

    def start_greeting(self):
        """Starts the program for the first time; the panel that greets is open."""
        # The greeting waits half a second for the tray, which is sometimes too busy.
        for _ in range(_GREETING_ATTEMPTS):
            program = self.program().start()
            program.wait_for_item()
            if program.wait_for_greeting():
                return program
            self.assertEqual(program.end(), 0, program.output())
            shutil.rmtree(os.path.dirname(self.store()))
        self.fail("no first start has opened the panel")

    def until(self, condition, what):
        try:
            return until(condition, what)
        except Timeout as timeout:
            self.fail(str(timeout))

    def until_equal(self, read, expected, what):
        """Waits until `read` gives what is expected; a failure tells what it gave instead."""
        found = []

        def is_equal():
            found[:] = [read()]
            return found == [expected]

        try:
            until(is_equal, what)
        except Timeout:
            self.fail(f"{what} is {found[0]!r} instead of {expected!r}")

    def with_memory_in_use(self, share):
        """The changes of the environment for a program that finds this share of the memory in use.

        Whatever the machine has and others use; set_memory_in_use() changes it.
        """
        os.makedirs(self.desktop.path("machine/proc"))
        self.set_memory_in_use(share)
        return {"LD_PRELOAD": os.environ["TARNWICK_STUCK_LIBRARY"],
                "TARNWICK_OTHER_FILES": self.desktop.path("machine")}

    def set_memory_in_use(self, share):
        used = round(_MEMORY * share)
        file = os.open(self.desktop.path("machine/proc/meminfo"), os.O_WRONLY | os.O_CREAT, 0o600)
        # In its place, because the program keeps the file open.
        os.pwrite(file, _MEMINFO.format(used=used, free=_MEMORY - used).encode(), 0)
        os.close(file)

    def press(self, program, name):
        """Presses a button of an open window as a screen reader does; the desktop has one."""
        with self.desktop.accessibility_bus() as bus:
            def pressed():
                # A control may disappear while the window changes; then it cannot be pressed.
                with contextlib.suppress(GLib.Error):
                    root = bus.program(program.pid)
                    button = root and root.find("push button", name)
                    if button:
                        button.do("Press")
                        return True
                return False

            self.until(pressed, f"{name} is pressed")

    def choose_settings(self, program):
        """Sends what a tray host sends when the menu's Settings entry is pressed."""
        item = program.wait_for_item()

        def chosen():
            # A busy program may not answer in time.
            with contextlib.suppress(GLib.Error):
                menu = (item.name, self.desktop.bus.item_property(item, "Menu") or "/",
                        "com.canonical.dbusmenu")
                _, (_, _, entries) = self.desktop.bus.call(
                    menu, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
                number = next(each for each, properties, _ in entries
                              if properties.get("label") == "Settings")
                self.desktop.bus.call(menu, "Event", GLib.Variant(
                    "(isvu)", (number, "clicked", GLib.Variant("s", ""), 0)))
                return True
            return False

        self.until(chosen, "the menu's entry is chosen")

    def assert_open(self, program):
        self.until(program.panel_picture, "the panel is open and drawn")

    def assert_ground(self, program, colour):
        """The panel is open, and its background has this colour."""

        def has_ground():
            picture = program.panel_picture()
            return picture is not None and ground(picture) == colour

        self.until(has_ground, f"the panel's ground is {colour}")

    def wait_for_refresh(self, program):
        """Waits for a refresh, and until it is over: the next one by itself is seconds away."""
        self.wait_until_calm(program)
        start = bytes_read(program)
        self.until(lambda: bytes_read(program) >= start + REFRESH_BYTES, "a refresh by itself")
        self.wait_until_calm(program)

    def wait_until_calm(self, program):
        """Waits until the program reads no more than waking up does."""

        def is_calm():
            start = bytes_read(program)
            time.sleep(_CALM)
            return bytes_read(program) < start + REFRESH_BYTES // 10

        self.until(is_calm, "the program is calm")

    def assert_closed(self, program):
        self.until(lambda: program.panel() is None, "the panel is closed")

    def assert_one_line(self, program, word):
        """The program has printed one line, and `word` is in it."""
        self.until(lambda: program.output().endswith("\n"), "the program says something")
        lines = program.output().splitlines()
        self.assertEqual(len(lines), 1, lines)
        self.assertTrue(lines[0].startswith("tarnwick: "), lines)
        self.assertIn(word, lines[0])

    def assert_ends(self, program, succeeds=True):
        """The program ends by itself, soon and with success or not, and its store is whole."""
        begin = time.monotonic()
        self.until(lambda: not program.runs(), "the program ends")
        took = time.monotonic() - begin
        print(f"{self.id().rpartition('.')[2]}: ended after {took:.2f} s")
        self.assertLess(took, ENDS_WITHIN)
        if succeeds:
            self.assertEqual(program.process.returncode, 0, program.output())
        else:
            # A negative status would mean that a signal ended it.
            self.assertGreater(program.process.returncode, 0, program.output())
        self.assert_store_is_whole()

    def store(self):
        return self.desktop.path("home/.config/tarnwick/settings.json")

    def stored(self):
        """What is in the file; nothing while there is none. It is whole at any moment."""
        try:
            with open(self.store(), encoding="utf-8") as file:
                return json.load(file)
        except FileNotFoundError:
            return {}

    def is_in_store(self, key):
        """Whether the program has stored a value under a key."""
        return key in self.stored()

    def edit_store(self, changes):
        """Changes values in the file as an editor does, which replaces it."""
        with open(self.store() + "~", "w", encoding="utf-8") as file:
            json.dump({**self.stored(), **changes}, file)
        os.replace(self.store() + "~", self.store())

    def wait_until_up(self, program):
        """Waits until the program has started, tray or no tray."""
        self.until(lambda: self.desktop.bus.owner("org.tarnwick.Tarnwick") == program.pid,
                   "the program is up")

    def assert_store_is_whole(self):
        self.assertTrue(self.is_in_store("settings.hasPresentedInitialSettings"))

    def keep_picture(self, name=None):
        """Keeps a picture of the screen as it is now, under the test's own name unless told."""
        if self.desktop.screen is not None:
            name = name or self.id().rpartition(".")[2]
            self.desktop.screen.picture().save(self._kept(name + ".png"))

    def keep_text(self, name, text):
        """Keeps a text beside the pictures."""
        with open(self._kept(name + ".txt"), "w", encoding="utf-8") as file:
            file.write(text)

    @staticmethod
    def _kept(name):
        folder = os.environ["TARNWICK_SCREENS"]
        os.makedirs(folder, exist_ok=True)
        return os.path.join(folder, name)


def bytes_read(program):
    with open(f"/proc/{program.pid}/io", encoding="ascii") as file:
        return int(file.readline().split()[1])


def process_files(program):
    """How many files about processes the program has open."""
    count = 0
    folder = f"/proc/{program.pid}/fd"
    for name in os.listdir(folder):
        with contextlib.suppress(FileNotFoundError):
            count += bool(re.fullmatch(r"/proc/\d+/stat", os.readlink(f"{folder}/{name}")))
    return count


def ground(picture):
    """The most frequent colour of a picture."""
    return max(picture.getcolors(picture.width * picture.height))[1]


def main():
    end_on_signals()
    unittest.main(verbosity=2)
