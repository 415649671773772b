# SPDX-License-Identifier: MIT
"""Shows the program on a private desktop and keeps pictures of it: started by script/run."""

import argparse
import os
import sys
import time

from private_desktop import PrivateDesktop, Program, Timeout, hosts, until
from private_desktop.processes import end_on_signals

# Seconds. Rates need two samples: after this time the panel has them, whatever it showed at first.
_SETTLE = 5.0
_FRESH = 2.0
# The margin around the panel on a picture for a page.
_MARGIN = 24


def save(picture, path):
    """Writes a picture in one step, so that a viewer never sees half of it."""
    folder, name = os.path.split(os.path.abspath(path))
    os.makedirs(folder, exist_ok=True)
    part = os.path.join(folder, "." + name)
    picture.save(part, "PNG", optimize=True)
    os.replace(part, path)


class Pictures:
    def __init__(self, desktop, program, folder):
        self._desktop = desktop
        self._program = program
        self.screen = os.path.join(folder, "screen.png")
        self.panel = os.path.join(folder, "panel.png")

    def take(self):
        """Keeps fresh pictures. Raises Timeout when the item or the panel is not there."""
        program = self._program
        if not self._desktop.bus.item_of(program.pid):
            raise Timeout("the item is not registered with the tray")
        if program.item_place() is None:
            raise Timeout("the tray does not show the item's icon")
        panel = program.panel_picture()
        if panel is None:
            raise Timeout("the panel is not open, or nothing is drawn on it")
        save(self._desktop.screen.picture(), self.screen)
        save(panel, self.panel)

    def remove_old(self):
        for path in (self.screen, self.panel):
            if os.path.exists(path):
                os.remove(path)

    def page(self):
        """The corner of the screen with the item and the panel."""
        panel = self._program.panel()
        margin = _MARGIN * self._desktop.scale
        return self._desktop.screen.picture(
            (panel.x - margin, 0, panel.x + panel.width + margin,
             panel.y + panel.height + margin))


def show(arguments):
    with PrivateDesktop(arguments.host, arguments.scale, arguments.dark) as desktop:
        program = Program(desktop, [arguments.program]).start()
        pictures = Pictures(desktop, program, arguments.folder)
        pictures.remove_old()
        program.wait_for_item()
        if program.wait_for_greeting():
            program.close_panel()
        program.open_panel()
        desktop.screen.move_pointer(desktop.nowhere)
        until(program.panel_picture, "the panel is drawn")
        time.sleep(_SETTLE)
        pictures.take()
        if arguments.screenshot:
            save(pictures.page(), arguments.screenshot)
        print(f"run: shown on a private desktop, see {pictures.screen} and {pictures.panel}", flush=True)
        while not arguments.once:
            time.sleep(_FRESH)
            if not program.runs():
                raise Timeout("the program ended: " + program.output().strip())
            pictures.take()


def main():
    parser = argparse.ArgumentParser(prog="script/run", description=__doc__)
    parser.add_argument("--program", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--folder", default="build/screens", help="where the pictures go")
    parser.add_argument("--once", action="store_true", help="end after the first pictures")
    parser.add_argument("--screenshot", metavar="FILE", help="keep a picture for a page, too")
    parser.add_argument("--host", choices=hosts.WATCHING, default="xfce4-panel",
                        help="the program that shows the tray")
    parser.add_argument("--scale", type=int, choices=(1, 2), default=1)
    parser.add_argument("--dark", action="store_true")
    arguments = parser.parse_args()
    end_on_signals()
    try:
        show(arguments)
    except (RuntimeError, Timeout) as problem:
        sys.exit(f"run: {problem}")


main()
