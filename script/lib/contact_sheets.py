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
                sheet(paths[first:first + size]).save(
                    os.path.join(arguments.folder, f"{name}{part}.png"))


main()
