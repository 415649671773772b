# SPDX-License-Identifier: MIT
"""Puts many pictures on few sheets, each with its name: started by script/screens."""

import argparse
import os
import re

from PIL import Image, ImageDraw

_MARGIN = 16
_CAPTION = 20
_PAPER = (0xF0, 0xF0, 0xF0)
_INK = (0x20, 0x20, 0x20)
# How many pictures are beside each other on a sheet, and how many below each other.
_COLUMNS = 6
_ROWS = 2
# The first part of a picture's name selects its sheet. Each machine has a sheet of its own.
_KIND = re.compile(r"machine_[^_]+|[^_]+")
_LOOK = re.compile(r"_(light|dark)_([\d.]+)x$")
# These sheets have every colour of the program.
_COLOURFUL = re.compile(r"panel_machine_workstation_(light|dark)_1x$|"
                        r"panel_home_(light|dark)_1x$|settings_settings_(light|dark)_1x$")
# Each row makes one of the channels seen, red, green and blue, from those of the picture: linear
# light, and the cone missing altogether (Machado, Oliveira and Fernandes, 2009).
_VISIONS = {
    "protanopia": ((0.152286, 1.052583, -0.204868),
                   (0.114503, 0.786281, 0.099216),
                   (-0.003882, -0.048116, 1.051998)),
    "deuteranopia": ((0.367322, 0.860646, -0.227968),
                     (0.280085, 0.672501, 0.047413),
                     (-0.011820, 0.042940, 0.968881)),
    "tritanopia": ((1.255528, -0.076749, -0.178779),
                   (-0.078411, 0.930809, 0.147602),
                   (0.004733, 0.691367, 0.303900)),
}


def sheets(folder):
    """The pictures of a folder, as names of sheets with the paths that belong on each."""
    found = {}
    for file in sorted(os.listdir(folder)):
        name, suffix = os.path.splitext(file)
        look = _LOOK.search(name)
        if suffix == ".png" and look:
            kind = _KIND.match(name).group()
            found.setdefault(f"{os.path.basename(folder)}_{kind}{look.group()}", []).append(
                os.path.join(folder, file))
    return found


def sheet(paths):
    pictures = [Image.open(path).convert("RGB") for path in paths]
    width = max(picture.width for picture in pictures) + _MARGIN
    height = max(picture.height for picture in pictures) + _MARGIN + _CAPTION
    rows = -(-len(pictures) // _COLUMNS)
    paper = Image.new("RGB", (width * min(len(pictures), _COLUMNS) + _MARGIN,
                              height * rows + _MARGIN), _PAPER)
    draw = ImageDraw.Draw(paper)
    for number, (path, picture) in enumerate(zip(paths, pictures)):
        x = _MARGIN + number % _COLUMNS * width
        y = _MARGIN + number // _COLUMNS * height
        draw.text((x, y), os.path.splitext(os.path.basename(path))[0], _INK)
        paper.paste(picture, (x, y + _CAPTION))
    return paper


def linear(channel):
    return channel / 12.92 if channel <= 0.04045 else ((channel + 0.055) / 1.055) ** 2.4


def encoded(light):
    return light * 12.92 if light <= 0.0031308 else 1.055 * light ** (1 / 2.4) - 0.055


def seen_by(vision, picture):
    """The picture's colours as somebody with that kind of vision sees them."""
    to_light = [linear(level / 255) for level in range(256)]
    known = {}
    for _, colour in picture.getcolors(picture.width * picture.height):
        light = [to_light[channel] for channel in colour]
        seen = (sum(share * part for share, part in zip(row, light)) for row in _VISIONS[vision])
        known[colour] = tuple(round(255 * encoded(min(max(part, 0), 1))) for part in seen)
    result = picture.copy()
    result.putdata([known[colour] for colour in picture.getdata()])
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--folder", required=True, help="where the sheets go")
    parser.add_argument("sources", nargs="+", help="folders with pictures")
    arguments = parser.parse_args()
    os.makedirs(arguments.folder, exist_ok=True)
    size = _COLUMNS * _ROWS
    for source in arguments.sources:
        for name, paths in sheets(os.path.normpath(source)).items():
            for first in range(0, len(paths), size):
                part = f"_{first // size + 1}" if len(paths) > size else ""
                paper = sheet(paths[first:first + size])
                paper.save(os.path.join(arguments.folder, f"{name}{part}.png"))
                for vision in _VISIONS if _COLOURFUL.match(name) else ():
                    seen_by(vision, paper).save(
                        os.path.join(arguments.folder, f"{name}{part}_{vision}.png"))


main()
