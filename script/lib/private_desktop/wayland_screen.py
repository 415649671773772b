# SPDX-License-Identifier: MIT
"""A Wayland session without a display: the compositor sway, controlled from outside."""

import io
import json
import os
import subprocess

from PIL import Image

from .screen import Window
from .wait import until
from .wayland_input import WaylandInput

_SOCKET = "wayland-1"
_CONFIG = """\
xwayland disable
output HEADLESS-1 resolution {width}x{height} scale {scale}
output HEADLESS-1 background {background} solid_color
"""


def _hex(colour):
    return "#" + "".join(f"{part:02x}" for part in colour)


class WaylandScreen:
    """The same as Screen, but for sway instead of an X display, as far as the tests need it."""

    def __init__(self, desktop, size, background):
        self.size = size
        self._scale = desktop.scale
        self._env = desktop.env
        self._ipc = desktop.path("runtime/sway")
        config = desktop.path("sway.conf")
        with open(config, "w", encoding="ascii") as file:
            file.write(_CONFIG.format(width=size[0], height=size[1], scale=desktop.scale,
                                      background=_hex(background)))
        argv = ["sway", "--config", config]
        if os.geteuid() == 0:
            # sway refuses to run as root.
            argv = ["unshare", "--user", "--map-user=1000", "--map-group=1000", *argv]
        self.process = desktop.processes.start(
            argv, {**self._env, "SWAYSOCK": self._ipc, "WLR_BACKENDS": "headless",
                   "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1"}, "sway")

        def is_ready():
            if self.process.poll() is not None:
                raise RuntimeError("sway did not start: " + desktop.log("sway").strip())
            return os.path.exists(desktop.path("runtime/" + _SOCKET)) and self._outputs()

        until(is_ready, "the compositor runs")
        self._env["WAYLAND_DISPLAY"] = _SOCKET
        self._env["XDG_SESSION_TYPE"] = "wayland"
        self._input = WaylandInput(desktop.path("runtime/" + _SOCKET), size)

    def close(self):
        self._input.close()

    def _ask(self, what):
        answer = subprocess.run(["swaymsg", "--socket", self._ipc, "--raw", "--type", what],
                                env=self._env, capture_output=True, check=False)
        return json.loads(answer.stdout) if answer.returncode == 0 else None

    def _outputs(self):
        return self._ask("get_outputs")

    def windows(self, pid):
        """The windows of one process, without bars and menus."""
        found = []
        nodes = [self._ask("get_tree")]
        while nodes:
            node = nodes.pop()
            nodes += node["nodes"] + node["floating_nodes"]
            if node.get("pid") == pid and node["visible"]:
                frame, inner = node["rect"], node["window_rect"]
                place = (frame["x"] + inner["x"], frame["y"] + inner["y"],
                         inner["width"], inner["height"])
                # These are in points, but pictures are in pixels.
                found.append(Window(node["id"], *(each * self._scale for each in place), pid,
                                    True))
        return found

    def active_window(self):
        """Number of the window that has the keyboard, or None."""
        nodes = [self._ask("get_tree")]
        while nodes:
            node = nodes.pop()
            nodes += node["nodes"] + node["floating_nodes"]
            if node.get("pid") and node["focused"]:
                return node["id"]
        return None

    def move_pointer(self, place):
        self._input.move_pointer(place)

    def click(self, place, button=1, hold=0):
        self._input.move_pointer(place)
        self._input.click(button, hold)

    def press_key(self, name):
        self._input.press_key(name)

    def picture(self, box=None):
        taken = subprocess.run(["grim", "-t", "ppm", "-"], env=self._env, capture_output=True,
                               check=True)
        whole = Image.open(io.BytesIO(taken.stdout)).convert("RGB")
        if box is None:
            return whole
        left, top, right, bottom = box
        width, height = self.size
        return whole.crop((max(left, 0), max(top, 0), min(right, width), min(bottom, height)))
