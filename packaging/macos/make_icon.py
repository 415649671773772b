#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Makes Tarnwick.icns beside itself from the project's drawing of the symbol that means all is well.

Run it again when the drawing has changed.
"""

import pathlib
import re
import xml.etree.ElementTree

from PIL import Image, ImageDraw

HERE = pathlib.Path(__file__).resolve().parent
DRAWING = HERE.parents[1] / "ui/symbols/checkmark.circle.fill.svg"
SVG = "{http://www.w3.org/2000/svg}"
# The icon's grid: a rounded square that leaves a tenth of the picture free on each side.
SIZE = 1024
PLATE = (100, 100, 924, 924)
PLATE_CORNER = 185
PLATE_TOP, PLATE_BOTTOM = (250, 251, 252), (214, 219, 226)
GREEN = (48, 176, 84)
# The symbol's side on the plate.
SYMBOL = 560
# Drawn so many times as large, for smooth edges.
SCALE = 4


def plate():
    """The square, a little darker towards its foot."""
    shade = Image.new("RGBA", (1, 256))
    for y in range(256):
        mixed = (round(a + (b - a) * y / 255) for a, b in zip(PLATE_TOP, PLATE_BOTTOM))
        shade.putpixel((0, y), (*mixed, 255))
    mask = Image.new("L", (SIZE * SCALE, SIZE * SCALE), 0)
    ImageDraw.Draw(mask).rounded_rectangle([side * SCALE for side in PLATE], PLATE_CORNER * SCALE,
                                           fill=255)
    picture = Image.new("RGBA", mask.size, (0, 0, 0, 0))
    picture.paste(shade.resize(mask.size), mask=mask)
    return picture


def draw_symbol(picture):
    """A disc and the strokes on it, which is all that the drawing has."""
    root = xml.etree.ElementTree.parse(DRAWING).getroot()
    unit = SYMBOL * SCALE / float(root.get("viewBox").split()[2])
    origin = (SIZE - SYMBOL) / 2 * SCALE
    draw = ImageDraw.Draw(picture)

    def disc(x, y, radius, fill):
        box = [origin + unit * side for side in (x - radius, y - radius, x + radius, y + radius)]
        draw.ellipse(box, fill=fill)

    circle = root.find(f"{SVG}circle")
    disc(*(float(circle.get(name)) for name in ("cx", "cy", "r")), fill=GREEN)
    for path in root.findall(f"{SVG}path"):
        numbers = [float(each) for each in re.findall(r"[\d.]+", path.get("d"))]
        points = list(zip(numbers[::2], numbers[1::2]))
        width = float(path.get("stroke-width"))
        draw.line([(origin + unit * x, origin + unit * y) for x, y in points],
                  fill="white", width=round(width * unit))
        # Round ends and joins.
        for x, y in points:
            disc(x, y, width / 2, "white")


def main():
    picture = plate()
    draw_symbol(picture)
    picture.resize((SIZE, SIZE), Image.LANCZOS).save(HERE / "Tarnwick.icns")


if __name__ == "__main__":
    main()
