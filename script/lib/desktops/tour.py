# SPDX-License-Identifier: MIT
"""Shows the program on one desktop and prints what works: python3 -m desktops.tour NAME FOLDER."""

import json
import os
import subprocess
import sys
import time

from PIL import ImageChops
from private_desktop.program import drawn_panel

from .sessions import SESSIONS

_PANEL_WIDTH = 320
# A colour counts as the icon's own if it is so much stronger than its blue.
_SATURATED = 70
_PATIENCE = 6.0
_SETTLED = 0.8
# The panel is at the item if it is so near to the bar's edge of the screen, in pixels.
_NEAR_THE_BAR = 70
# Command, Shift and M, which no desktop has for itself.
_SHORTCUT = {"settings.shortcutKeyCode": 46, "settings.shortcutModifiers": 0x120000}
# So that the icon seldom changes.
_THRESHOLDS = {f"settings.{metric}{level}Threshold": value
               for level, value in (("Moderate", 99.0), ("High", 100.0), ("Critical", 100.0))
               for metric in ("cpu", "gpu", "memory", "storage")}


_NO_TRAY = "tarnwick: no tray was found; start Tarnwick again to open its panel\n"


class Tour:
    def __init__(self, name, folder):
        self._name = name
        self._folder = folder
        self._session = SESSIONS[name](folder)
        self._before = None
        self._item = None
        self._shots = 0
        self._failed = 0

    def run(self):
        self._session.start()
        self._before = self._shot("desktop")
        self._write_settings()
        self._start_program()
        if self._session.has_portal_shortcut:
            self._check("shortcut is asked for", lambda: self._session.agree_to_shortcut() or True)
        if self._session.has_tray:
            if not self._check("icon", self._find_item):
                return 1
            self._use_item()
        if self._session.has_portal_shortcut or not self._session.wayland_display:
            self._check("shortcut opens and closes", self._toggle_by_shortcut)
        self._check("second start opens the panel", self._open_by_second_start)
        if self._session.has_tray:
            self._check("icon is back after a restart of its host", self._restart_host)
        self._check("dark", self._turns_dark)
        self._check("says nothing on standard error", lambda: self._said() == self._expected())
        return 1 if self._failed else 0

    def _use_item(self):
        self._session.move(self._nowhere())
        time.sleep(_SETTLED)
        if self._session.shows_text:
            self._check("text beside the icon", self._text_is_beside)
        self._check("click opens the panel", self._open)
        self._check("panel is at the item", self._is_at_item)
        self._check("Escape closes", self._close_by_escape)
        self._check("press outside closes", lambda: self._open() and self._close_by_press())
        if self._session.clicks_to_open == 1:
            self._check("second click closes", lambda: self._open() and self._close_by_click())
        else:
            self._check("one click opens a menu with the panel", self._open_by_menu)
            self._check("middle click leaves no busy pointer", self._is_idle_after_middle_click)

    def _expected(self):
        return "" if self._session.has_tray else _NO_TRAY

    def _check(self, what, works):
        try:
            result = works()
        except Exception as error:  # A tour goes on with its next point.
            result = None
            what += f" ({error})"
        self._shot(what)
        self._failed += not result
        print(f"{self._name}: {'ok    ' if result else 'FAILED'} {what}", flush=True)
        return result

    def _shot(self, what):
        self._shots += 1
        name = "".join(letter if letter.isalnum() else "-" for letter in what)[:48]
        return self._session.shot(os.path.join(self._folder, f"{self._shots:02}-{name}.png"))

    def _picture(self):
        return self._session.shot(os.path.join(self._folder, "last.png"))

    @staticmethod
    def _until(condition):
        end = time.monotonic() + _PATIENCE
        while time.monotonic() < end:
            if result := condition():
                return result
            time.sleep(0.2)
        return None

    def _write_settings(self):
        path = os.path.expanduser("~/.config/tarnwick/settings.json")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="ascii") as file:
            json.dump({"settings.hasPresentedInitialSettings": True, **_SHORTCUT, **_THRESHOLDS},
                      file)

    def _environment(self):
        changes = self._session.program_environment()
        return {name: value for name, value in {**os.environ, **changes}.items() if value}

    def _start_program(self):
        with open(os.path.join(self._folder, "tarnwick.log"), "wb") as log:
            subprocess.Popen(["tarnwick"], env=self._environment(), stderr=log)

    def _said(self):
        with open(os.path.join(self._folder, "tarnwick.log"), encoding="utf-8") as log:
            return log.read()

    def _find_item(self):
        self._item = self._until(self._place_of_item)
        return self._item

    def _place_of_item(self):
        """The middle of the green, yellow or red pixels that are new in a bar."""
        now = self._picture()
        new = ImageChops.difference(now, self._before).load()
        pixels = now.load()
        places = [(x, y) for y in range(now.height) for x in range(now.width)
                  if (y < self._session.bar or y >= now.height - self._session.bar)
                  and max(new[x, y]) > 40 and max(pixels[x, y]) - pixels[x, y][2] >= _SATURATED]
        if len(places) < 30:
            return None
        return tuple(sorted(place[axis] for place in places)[len(places) // 2] for axis in (0, 1))

    def _nowhere(self):
        width, height = self._picture().size
        return width // 3, height // 2

    def _text_is_beside(self):
        x, y = self._item
        strip = self._picture().crop((x + 12, y - 8, x + 70, y + 8))
        colours = strip.getcolors(strip.width * strip.height)
        ground = max(colours)[1]
        return sum(count for count, colour in colours
                   if max(abs(a - b) for a, b in zip(colour, ground)) > 100) > 40

    def _panel(self):
        return drawn_panel(self._picture(), _PANEL_WIDTH)

    def _opens(self):
        return self._until(self._panel)

    def _closes(self):
        closed = self._until(lambda: not self._panel())
        # A click right after a press means the same as that press.
        time.sleep(_SETTLED)
        return closed and not self._panel()

    def _open(self):
        # Another text may have moved it.
        if not self._find_item():
            return False
        self._session.click(self._item, self._session.clicks_to_open)
        return self._opens()

    def _is_at_item(self):
        panel = self._panel()
        height = self._picture().height
        x, y = self._item
        edge = panel.y if y < height / 2 else height - panel.y - panel.height
        return panel.x <= x <= panel.x + panel.width and edge <= _NEAR_THE_BAR

    def _close_by_escape(self):
        self._session.key("Escape")
        return self._closes()

    def _close_by_press(self):
        self._session.click(self._nowhere())
        return self._closes()

    def _close_by_click(self):
        self._session.click(self._item)
        return self._closes()

    def _open_by_menu(self):
        self._session.click(self._item)
        time.sleep(2)
        self._shot("menu")
        self._session.key("Down")
        self._session.key("Return")
        return self._opens() and self._is_at_item() and self._close_by_escape()

    def _toggle_by_shortcut(self):
        self._session.key(*self._session.shortcut_keys)
        if not self._opens():
            return False
        self._session.key(*self._session.shortcut_keys)
        return self._closes()

    def _second_start(self):
        subprocess.run(["tarnwick"], env=self._environment(), check=True, timeout=10)

    def _open_by_second_start(self):
        self._second_start()
        return self._opens() and self._close_by_escape()

    def _is_idle_after_middle_click(self):
        self._session.click(self._item, button=2)
        time.sleep(_SETTLED)
        return self._until(lambda: not self._session.is_busy())

    def _turns_dark(self):
        self._session.set_dark()
        time.sleep(2)
        if self._session.has_tray:
            # The bar is as new as the item now.
            self._session.click(self._item, self._session.clicks_to_open)
        else:
            self._second_start()
        if not self._opens():
            return False
        panel = self._panel()
        ground = self._picture().getpixel((panel.x + 4, panel.y + panel.height // 2))
        self._shot("dark panel")
        return max(ground) < 0x40 and self._close_by_escape()

    def _restart_host(self):
        self._session.restart_host()
        self._session.move(self._nowhere())
        return self._open() and self._close_by_escape()


def main():
    name, folder = sys.argv[1:]
    sys.exit(Tour(name, folder).run())


if __name__ == "__main__":
    main()
