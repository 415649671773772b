# SPDX-License-Identifier: MIT
"""One program with a status item and a panel, on a private desktop."""

import signal
import time

from PIL import Image, ImageChops

from .screen import Window
from .wait import Timeout, until

# Width of the panel at a scale of 1, and of its shadow, if the window includes that.
_PANEL_WIDTH = 320
_SHADOW = 28
# Of the panel, light and dark.
_PANEL_GROUNDS = ((0xFB, 0xFB, 0xFC), (0x23, 0x23, 0x26))
# Seconds. A click within this time after a press that closed the panel belongs to that press.
_SAME_CLICK = 0.5
# A colour counts as the icon's own if its strongest and weakest part differ at least by this.
_SATURATED = 70
# Pixels of the icon that must be visible: an icon of 16 pixels has some hundred.
_FEWEST_PIXELS = 20


class Program:
    def __init__(self, desktop, argv, log="program"):
        self.desktop = desktop
        self._argv = list(argv)
        self._log = log
        self.process = None

    @property
    def pid(self):
        return self.process.pid

    def start(self, **changes):
        """Starts the program. `changes` apply to its environment; None removes a variable."""
        env = {name: value for name, value in {**self.desktop.env, **changes}.items()
               if value is not None}
        self.process = self.desktop.processes.start(self._argv, env, self._log)
        return self

    def runs(self):
        return self.process.poll() is None

    def output(self):
        """What the program has printed since its first start."""
        return self.desktop.log(self._log)

    def end(self, number=signal.SIGTERM):
        """Ends the program with a signal; its exit status."""
        return self.desktop.processes.end(self.process, number, patience=20)

    def wait_for_tray(self):
        """Waits until the host, of whichever kind, has taken the item."""
        if self.desktop.host_watches:
            self.wait_for_item()
        else:
            until(self.docked_window, "the tray holds the icon")

    def wait_for_item(self):
        """The registered item, once the host lists it."""

        def registered():
            if not self.runs():
                raise Timeout(f"the program ended with status {self.process.returncode}: "
                              + self.output().strip())
            return self.desktop.bus.item_of(self.pid)

        return until(registered, "the item is registered")

    def _windows(self):
        return self.desktop.screen.windows(self.pid)

    def panel(self):
        """The open panel without its shadow, or None."""
        width = _PANEL_WIDTH * self.desktop.scale
        for margin in (0, _SHADOW * self.desktop.scale):
            for window in self._windows():
                if window.top_level and window.width == width + 2 * margin:
                    return window.without(margin)
        # A compositor does not tell of a panel on a layer above the windows.
        return drawn_panel(self.desktop.screen.picture(), width) if self.desktop.is_wayland else None

    def docked_window(self):
        """The item's window within an XEmbed tray, or None."""
        return next((window for window in self._windows() if not window.top_level), None)

    def item_place(self):
        """Where the item can be clicked, or None while it is not on the screen."""
        docked = self.docked_window()
        if docked is not None:
            # The tray shows the window before the program knows; a click meanwhile is lost.
            picture = self.desktop.screen.picture(docked.box)
            painted = sum(max(pixel) - min(pixel) >= _SATURATED for pixel in picture.getdata())
            return docked.centre if painted >= _FEWEST_PIXELS else None
        item = self.desktop.bus.item_of(self.pid) if self.desktop.bus else None
        colour = item and icon_colour(self.desktop.bus.item_property(item, "IconPixmap"))
        if not colour:
            return None
        for window in self.desktop.host_windows():
            place = _middle_of(self.desktop.screen.picture(window.box), colour)
            if place is not None:
                return max(window.x, 0) + place[0], max(window.y, 0) + place[1]
        return None

    def settled_item_place(self):
        """Where the item can be clicked, or None while it is not shown yet or still moves."""
        place = self.item_place()
        return place if place is not None and place == self.item_place() else None

    def wait_for_greeting(self, patience=3.0):
        """Whether a first start opens the panel by itself. It does so soon or never."""
        try:
            return bool(until(self.panel, "the panel greets", patience))
        except Timeout:
            return False

    def open_panel(self):
        """Opens the closed panel by a click on the item; the panel, which has the input by then."""
        self.click_item()
        until(self.panel_picture, "the panel opens after a click on the item")
        return self.panel()

    def close_panel(self):
        """Closes the panel by a click on an empty place."""
        # It is on the screen before it has the input, and drawn after that.
        until(self.panel_picture, "the panel is drawn")
        self.desktop.screen.click(self.desktop.nowhere)
        until(lambda: self.panel() is None, "the panel closes after a click outside")
        time.sleep(_SAME_CLICK)

    def click_item(self, button=1, hold=0):
        place = until(self.settled_item_place, "the item is on the screen")
        self.desktop.screen.click(place, button, hold)

    def panel_picture(self):
        """A picture of the panel on the screen, or None if it is closed or empty."""
        panel = self.panel()
        if panel is None:
            return None
        picture = self.desktop.screen.picture(panel.box)
        return picture if is_drawn(picture) else None


def drawn_panel(picture, width):
    """Where a panel of this width is drawn, or None: by the colour of its ground.

    That is most of each of its rows and columns; letters elsewhere may have it, too.
    """
    for ground in _PANEL_GROUNDS:
        mask = ImageChops.difference(picture, Image.new("RGB", picture.size, ground))
        mask = mask.convert("L").point(lambda value: 0 if value else 255)
        least = 255 * width // (3 * picture.width)
        rows = mask.resize((1, picture.height), Image.BOX).point(
            lambda share, least=least: 255 if share > least else 0).getbbox()
        if not rows:
            continue
        top, bottom = rows[1], rows[3]
        columns = mask.crop((0, top, picture.width, bottom)).resize(
            (picture.width, 1), Image.BOX).point(lambda share: 255 if share > 85 else 0).getbbox()
        # A hairline goes around it.
        if columns and abs(columns[2] - columns[0] - width) <= 4 and bottom - top >= width // 2:
            return Window(0, columns[0], top, columns[2] - columns[0], bottom - top, 0, False)
    return None


def icon_colour(pictures):
    """The most frequent colour of an item's pictures, without greys; None if there is none."""
    counts = {}
    for _width, _height, pixels in pictures or []:
        data = bytes(pixels)
        for at in range(0, len(data), 4):
            alpha, *colour = data[at:at + 4]
            if alpha == 0xFF and max(colour) - min(colour) >= _SATURATED:
                counts[tuple(colour)] = counts.get(tuple(colour), 0) + 1
    return max(counts, key=counts.get) if counts else None


def is_drawn(picture):
    """Whether a picture shows a panel: letters and bars on an even ground.

    One or a few even colours count as nothing. So does the gradient of the screen, which shows
    through a window until that is painted.
    """
    size = picture.width * picture.height
    colours = picture.getcolors(size)
    ground = max(count for count, _ in colours)
    return len(colours) >= 32 and 0.3 * size < ground < 0.99 * size


def _middle_of(picture, colour):
    """The middle of the pixels with about this colour, or None if there are too few."""
    near = 48
    pixels = picture.load()
    places = [(x, y) for y in range(picture.height) for x in range(picture.width)
              if max(abs(a - b) for a, b in zip(pixels[x, y], colour)) <= near]
    if len(places) < _FEWEST_PIXELS:
        return None
    columns = sorted(x for x, _ in places)
    rows = sorted(y for _, y in places)
    return columns[len(columns) // 2], rows[len(rows) // 2]
