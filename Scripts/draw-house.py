#!/usr/bin/env python3
"""Draws the layers of Docs/Architecture.md as Docs/Pictures/House.svg: a floor for each layer, a room for each folder.

    Scripts/draw-house.py           draws it
    Scripts/draw-house.py --check   says whether the picture fits the table
"""
import re
import sys
from html import escape
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGE = ROOT / "Docs/Architecture.md"
PICTURE = ROOT / "Docs/Pictures/House.svg"

WIDTH = 1120
LEFT = 210 # left edge of the rooms; the floor's name is left of it
GAP = 10
ROOM_HEIGHT = 34
LETTER = 8.4 # about the width of one
FLOORS = ("#e8eef7", "#dde7f3", "#d2dfef", "#c7d8eb", "#bcd0e7", "#b1c9e3")


def read_floors():
    """(number, folders, their meaning) of each row of the table of layers."""
    rows = re.findall(r"^\| (\d+) \| (.*?) \| (.*?) \|$", PAGE.read_text(encoding="utf-8"), re.MULTILINE)
    return [(int(number), re.findall(r"`([^`]+)`", folders), what) for number, folders, what in rows]


def shorten(folder):
    return folder.removeprefix("Core/")


def place_rooms(folders):
    """(left edge, row, width, text) of each room, in rows that are no wider than the picture."""
    x, row = LEFT, 0
    for folder in folders:
        text = shorten(folder)
        width = round(len(text) * LETTER) + 24
        if x + width > WIDTH - GAP:
            x, row = LEFT, row + 1
        yield x, row, width, text
        x += width + GAP


def wrap(text, length):
    lines = [""]
    for word in text.split():
        if len(lines[-1]) + len(word) >= length:
            lines.append("")
        lines[-1] = (lines[-1] + " " + word).strip()
    return lines


def draw():
    parts, y = [], GAP
    for number, folders, what in sorted(read_floors(), reverse=True):
        rooms = list(place_rooms(folders))
        name = wrap(what, 26)
        height = max((rooms[-1][1] + 1) * (ROOM_HEIGHT + GAP) + GAP, len(name) * 17 + 2 * GAP)
        colour = FLOORS[(number - 1) % len(FLOORS)]
        parts.append(f'<rect x="0" y="{y}" width="{WIDTH}" height="{height}" fill="{colour}"/>')
        parts += [f'<text x="{GAP}" y="{y + 24 + 17 * i}">{escape(line)}</text>' for i, line in enumerate(name)]
        for x, row, width, text in rooms:
            top = y + GAP + row * (ROOM_HEIGHT + GAP)
            parts.append(f'<rect x="{x}" y="{top}" width="{width}" height="{ROOM_HEIGHT}" rx="4" fill="#ffffff" '
                         'stroke="#54657d"/>')
            parts.append(f'<text x="{x + 12}" y="{top + 22}">{escape(text)}</text>')
        y += height + 4
    head = (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{y}" viewBox="0 0 {WIDTH} {y}" '
            'font-family="sans-serif" font-size="14" fill="#1d2a3b">')
    title = "<title>The layers, the program on top: an include points to its own floor or one below</title>"
    ground = '<rect width="100%" height="100%" fill="#ffffff"/>'
    return "\n".join([head, title, ground, *parts, "</svg>", ""])


def main():
    picture = draw()
    if sys.argv[1:] == ["--check"]:
        if PICTURE.exists() and PICTURE.read_text(encoding="utf-8") == picture:
            return 0
        print("Docs/Pictures/House.svg isn't the house that Docs/Architecture.md describes: run Scripts/draw-house.py")
        return 1
    if sys.argv[1:]:
        print(__doc__, file=sys.stderr)
        return 2
    PICTURE.write_text(picture, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
