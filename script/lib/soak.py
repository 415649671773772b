# SPDX-License-Identifier: MIT
"""Uses the program on a private desktop for a long time, fast: started by script/soak."""

import argparse
import json
import os
import subprocess
import sys
import time

from private_desktop import PrivateDesktop, Program, Timeout, until, usage
from private_desktop.processes import end_on_signals
from soak_growth import Sample, growth

# Seconds.
_SETTLE = 5.0
# A hidden program refreshes within this time, and lets go of the processes' files then.
_REST = 13.0
# A click within this time after a press that closed the panel belongs to that press.
_SAME_CLICK = 0.55
_CLICKS = 3
_CLICK_WAIT = 3.0
# How often something happens, in panels opened.
_PAGES = 4
_SETTINGS = 9
_SECOND_START = 7
_SCHEME = 11
_REWRITE = 13
_HOST = 40
_HOST_NAME = "xfce4-panel"
_SETTINGS_SIZE = (520, 500)


class Soak:
    def __init__(self, desktop, path):
        self.desktop = desktop
        self.path = path
        self.program = Program(desktop, [path], "tarnwick")
        self.place = None
        self.panels = 0
        self.dark = desktop.dark

    def start(self):
        """Starts the program hidden. This is not its first start, so it does not greet."""
        self.program.start()
        self.program.wait_for_item()
        time.sleep(_SETTLE)
        self.program.end()
        self.program.start()
        self.program.wait_for_item()
        self.place = until(self.program.settled_item_place, "the item is on the screen")

    def wait_open(self):
        until(self.program.panel, "the panel opens")
        self.panels += 1

    def wait_closed(self):
        until(lambda: self.program.panel() is None, "the panel closes")
        time.sleep(_SAME_CLICK)

    def click_away(self):
        """Closes the panel by a click outside. One that comes before the panel holds the pointer is
        not the panel's; a user clicks again."""
        for _ in range(_CLICKS):
            self.desktop.screen.click(self.desktop.nowhere)
            try:
                until(lambda: self.program.panel() is None, "the panel closes", _CLICK_WAIT)
                break
            except Timeout:
                continue
        self.wait_closed()

    def keys(self, *names):
        for name in names:
            self.desktop.screen.press_key(*name.split("+"))
            time.sleep(0.05)

    def by_click(self):
        self.desktop.screen.click(self.place)
        self.wait_open()
        if self.panels % _PAGES == 0:
            # Both other pages, each by its button and back by its own.
            self.keys("Tab", "Tab", "space", "space", "Tab", "space", "Escape")
        self.click_away()

    def by_second_start(self):
        for wait in (self.wait_open, self.wait_closed):
            subprocess.run([self.path, "--toggle"], env=self.desktop.env, check=True, timeout=20)
            wait()

    def settings_window(self):
        return any(window.top_level and (window.width, window.height) == _SETTINGS_SIZE
                   for window in self.desktop.screen.windows(self.program.pid))

    def by_settings(self):
        """Opens the settings window by the panel's first button, turns its tabs and closes it."""
        self.desktop.screen.click(self.place)
        self.wait_open()
        self.keys("Tab", "space")
        self.wait_closed()
        until(self.settings_window, "the settings window is open")
        self.keys("Control_L+Tab", "Control_L+Tab", "Alt_L+F4")
        until(lambda: not self.settings_window(), "the settings window is closed")

    def change_scheme(self):
        self.dark = not self.dark
        self.desktop.settings.set_dark(self.dark)

    def rewrite_settings(self):
        """Changes the file as an editor does, which replaces it."""
        path = self.desktop.path("home/.config/tarnwick/settings.json")
        with open(path, encoding="utf-8") as file:
            stored = json.load(file)
        stored["settings.cpuHighThreshold"] = 80 + self.panels % 10
        with open(path + "~", "w", encoding="utf-8") as file:
            json.dump(stored, file)
        os.replace(path + "~", path)

    def restart_host(self):
        self.desktop.kill_host()
        self.desktop.start_host(_HOST_NAME)
        self.program.wait_for_item()
        self.place = until(self.program.settled_item_place, "the item is on the screen again")

    def turn(self):
        """Opens at least one panel, and does what else is due."""
        # By the panels before this one: the number of those that follow depends on what is due.
        before = self.panels
        if before % _SETTINGS == 0:
            self.by_settings()
        elif before % _SECOND_START == 0:
            self.by_second_start()
        else:
            self.by_click()
        if before % _SCHEME == 0:
            self.change_scheme()
        if before % _REWRITE == 0:
            self.rewrite_settings()
        if before % _HOST == _HOST - 1:
            self.restart_host()

    def sample(self):
        """What the program holds a while after its panel was closed."""
        time.sleep(_REST)
        if not self.program.runs():
            raise Timeout(f"the program ended with status {self.program.process.returncode}: "
                          + self.program.output().strip())
        folder = f"/proc/{self.program.pid}"
        return Sample(usage.memory(self.program.pid).anonymous, len(os.listdir(folder + "/fd")),
                      len(os.listdir(folder + "/task")), self.panels)


def soak(path, minutes):
    samples = []
    with PrivateDesktop(_HOST_NAME) as desktop:
        each = Soak(desktop, path)
        each.start()
        for minute in range(1, minutes + 1):
            end = time.monotonic() + 60 - _REST
            while time.monotonic() < end:
                each.turn()
            sample = each.sample()
            samples.append(sample)
            print(f"minute {minute}: {sample.anonymous:,} kB anonymous, "
                  f"{sample.descriptors} descriptors, {sample.threads} threads, "
                  f"{sample.panels:,} panels opened", flush=True)
        status = each.program.end()
        if status != 0 or each.program.output():
            raise Timeout(f"the program ended with status {status}: {each.program.output()}")
    return samples


def main():
    parser = argparse.ArgumentParser(prog="script/soak", description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--minutes", type=int, required=True)
    arguments = parser.parse_args()
    end_on_signals()
    try:
        grown = growth(soak(arguments.program, arguments.minutes))
    except (OSError, RuntimeError, subprocess.SubprocessError, Timeout) as problem:
        sys.exit(f"soak: {problem}")
    if grown:
        sys.exit(f"soak: the program grows: {grown}")


if __name__ == "__main__":
    main()
