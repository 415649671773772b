#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Makes Tarnwick.icns beside itself from the drawing that Linux desktops show, too.

Run it again when the drawing has changed:
    packaging/macos/make_icon.py build/release/packaging/linux/draw_icon
"""

import pathlib
import re
import subprocess
import sys
import tempfile

from PIL import Image

HERE = pathlib.Path(__file__).resolve().parent
DRAWING = HERE.parent / "linux/org.tarnwick.Tarnwick.svg"
# The icon's grid on macOS: a rounded square that leaves a tenth of the picture free on each side.
# The drawing has that square at its place on this grid, and shows less of what is free.
SIZE = 1024


def main():
    draw_icon, = sys.argv[1:]
    drawing, changed = re.subn(r'viewBox="[\d ]*"', f'viewBox="0 0 {SIZE} {SIZE}"',
                               DRAWING.read_text())
    assert changed == 1, DRAWING
    with tempfile.TemporaryDirectory() as folder:
        whole = pathlib.Path(folder, "whole.svg")
        picture = pathlib.Path(folder, "picture.png")
        whole.write_text(drawing)
        subprocess.run([draw_icon, whole, str(SIZE), picture], check=True)
        with Image.open(picture) as image:
            image.save(HERE / "Tarnwick.icns")


if __name__ == "__main__":
    main()
