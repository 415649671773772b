# SPDX-License-Identifier: MIT
"""How long a program lets its user wait: from its start to its item, from a click to the panel."""

import statistics
import time

from PIL import ImageChops

from private_desktop import Timeout

# Seconds. A program that needs longer is broken.
_PATIENCE = 10.0
# Seconds, so that what came before is over.
_SETTLE = 1.0
# Pixels of the panel's width that are looked at: more would take longer than the panel itself.
_STRIP = 48


def _elapsed(begin, condition, what):
    """Milliseconds from `begin` to the first moment when the condition holds; never sleeps."""
    while not condition():
        if time.monotonic() - begin > _PATIENCE:
            raise Timeout(f"{what}: not within {_PATIENCE:g} s")
    return (time.monotonic() - begin) * 1000


def start_to_item(program, count):
    """The median time from the start of the process until the host has its item, in milliseconds.

    The program must not run, and does not run afterwards."""
    times = []
    for _ in range(count):
        begin = time.monotonic()
        program.start()
        times.append(_elapsed(begin, lambda: program.desktop.bus.item_of(program.pid),
                              "the item is registered"))
        # The host shows an item before it lets go of it.
        time.sleep(_SETTLE)
        program.end()
    return statistics.median(times)


def _mostly_differs(picture, other):
    difference = ImageChops.difference(picture, other).convert("L").point(
        lambda value: 255 if value else 0)
    return difference.histogram()[0] < picture.width * picture.height / 2


def click_to_painted(program, count):
    """The median time from a click on the item until the panel is painted, in milliseconds.

    The toolkit puts a new window's whole content on the screen at once, and nothing before that."""
    screen = program.desktop.screen
    panel = program.open_panel()
    left = panel.x + panel.width // 4
    strip = (left, panel.y, left + _STRIP, panel.y + panel.height)
    program.close_panel()
    place = program.settled_item_place()
    times = []
    for _ in range(count):
        time.sleep(_SETTLE)
        closed = screen.picture(strip)
        begin = time.monotonic()
        screen.click(place)
        times.append(_elapsed(begin, lambda: _mostly_differs(screen.picture(strip), closed),
                              "the panel is painted"))
        program.close_panel()
    return statistics.median(times)
