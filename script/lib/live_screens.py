# SPDX-License-Identifier: MIT
"""Pictures of the real program's pages on this machine: started by script/screens."""

import argparse
import os
import sys
import time

from private_desktop import PrivateDesktop, Program, Timeout, until
from private_desktop.processes import end_on_signals

# The pages, and the button that leads to each from the home page.
_PAGES = (("home", None), ("memory", "What's Using Memory?"),
          ("performance", "Performance & Network"))
# Seconds until the curves have a few samples and nothing moves any more.
_SETTLE = 7.0
_TURN = 1.0


def press(desktop, program, name):
    with desktop.accessibility_bus() as bus:
        def button():
            root = bus.program(program.pid)
            return root and root.find("push button", name)

        until(button, f"there is a button {name}").do("Press")


def take(path, folder, scale, dark):
    with PrivateDesktop(scale=scale, dark=dark, accessibility=True) as desktop:
        program = Program(desktop, [os.path.abspath(path)]).start()
        program.wait_for_item()
        if program.wait_for_greeting():
            program.close_panel()
        program.open_panel()
        desktop.screen.move_pointer(desktop.nowhere)
        until(program.panel_picture, "the panel is drawn")
        time.sleep(_SETTLE)
        for page, button in _PAGES:
            if button is not None:
                press(desktop, program, button)
                time.sleep(_TURN)
            name = f"{page}_{'dark' if dark else 'light'}_{scale}x.png"
            program.panel_picture().save(os.path.join(folder, name))
            if button is not None:
                press(desktop, program, "Back")
                time.sleep(_TURN)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--folder", required=True)
    arguments = parser.parse_args()
    end_on_signals()
    os.makedirs(arguments.folder, exist_ok=True)
    try:
        for scale in (1, 2):
            for dark in (False, True):
                take(arguments.program, arguments.folder, scale, dark)
    except (OSError, RuntimeError, Timeout) as problem:
        sys.exit(f"screens: {problem}")


main()
