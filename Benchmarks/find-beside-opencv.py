#!/usr/bin/env python3
"""Holds `snipbench-data find` beside OpenCV's matchTemplate, on random templates of the guide's pictures: what both find,
and how long each takes. The one's time is that of a whole process, files included; the other's that of the call alone.

    Benchmarks/find-beside-opencv.py [PROGRAM]

Needs Debian's python3-opencv, and its Python: /usr/bin/python3.
"""
import json
import random
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import cv2
import numpy

ROOT = Path(__file__).resolve().parent.parent
PROGRAM = sys.argv[1] if len(sys.argv) > 1 else ROOT / "Binaries/Linux-x64/snipbench-data"


def find(template, picture, *options):
    begin = time.perf_counter()
    answer = subprocess.run([PROGRAM, "find", template, picture, *options], stdout=subprocess.PIPE, check=False).stdout
    return json.loads(answer), time.perf_counter() - begin


def match(picture, template, mask=None):
    """(best score, its place, seconds)"""
    begin = time.perf_counter()
    scores = cv2.matchTemplate(picture, template, cv2.TM_CCOEFF_NORMED, mask=mask)
    seconds = time.perf_counter() - begin
    scores[~numpy.isfinite(scores)] = 0
    _, best, _, place = cv2.minMaxLoc(scores)
    return best, place, seconds


def pack(picture):
    wide = picture.astype(numpy.uint32)
    return wide[:, :, 0] | wide[:, :, 1] << 8 | wide[:, :, 2] << 16


def find_plainly(picture, template):
    """All equal places: candidates by 40 of the pixels, then all pixels of each."""
    large, small = pack(picture), pack(template)
    rows, columns = large.shape[0] - small.shape[0] + 1, large.shape[1] - small.shape[1] + 1
    candidates = numpy.ones((rows, columns), bool)
    for _ in range(40):
        y, x = random.randrange(small.shape[0]), random.randrange(small.shape[1])
        candidates &= large[y:y + rows, x:x + columns] == small[y, x]
    return {(int(x), int(y)) for y, x in zip(*numpy.nonzero(candidates))
            if (large[y:y + small.shape[0], x:x + small.shape[1]] == small).all()}


def cut(picture):
    height, width = picture.shape[:2]
    across, down = random.randrange(4, min(width, 200)), random.randrange(4, min(height, 150))
    x, y = random.randrange(width - across + 1), random.randrange(height - down + 1)
    return picture[y:y + down, x:x + across]


def compare_exact(folder, count=200):
    wrong, places, own, others = 0, 0, [], []
    for number in range(count):
        path = sorted((ROOT / "Docs/Pictures").glob("*.png"))[number % 7]
        picture = cv2.imread(str(path))
        template = cut(picture)
        cv2.imwrite(f"{folder}/template.png", template)
        answer, seconds = find(f"{folder}/template.png", path, "--exact", "--limit", "100000")
        expected = find_plainly(picture, template)
        wrong += {(place["x"], place["y"]) for place in answer["places"]} != expected
        places += len(expected)
        own.append(seconds)
        others.append(match(picture, template)[2])
    print(f"exact: {count} templates, {places} places, {wrong} templates with a difference; median "
          f"{statistics.median(own) * 1e3:.0f} ms a process, {statistics.median(others) * 1e3:.0f} ms a call")


def compare_alike(folder, size, count=30):
    numbers, differences, own, others = numpy.random.RandomState(3), [], [], []
    picture = cv2.imread(str(ROOT / "Docs/Pictures/annotating.png"))
    picture = cv2.resize(picture, size, interpolation=cv2.INTER_NEAREST)
    cv2.imwrite(f"{folder}/picture.png", picture)
    while len(own) < count:
        template = cut(picture).astype(int)
        if template.std() < 20:  # nothing but noise would be left
            continue
        template = numpy.clip(template + numbers.randint(-12, 13, template.shape), 0, 255).astype(numpy.uint8)
        cv2.imwrite(f"{folder}/template.png", template)
        answer, seconds = find(f"{folder}/template.png", f"{folder}/picture.png", "--score", "0.5")
        best, _, other = match(picture, template)
        if best < 0.5:
            continue
        differences.append(abs(answer["places"][0]["score"] - best) if answer["places"] else 1.0)
        own.append(seconds)
        others.append(other)
    print(f"alike, {size[0]} x {size[1]}: {count} templates, best scores differ by {max(differences):.6f} at most; median "
          f"{statistics.median(own) * 1e3:.0f} ms a process, {statistics.median(others) * 1e3:.0f} ms a call")


def main():
    random.seed(5)
    print(f"OpenCV {cv2.__version__}, {cv2.getNumThreads()} threads")
    with tempfile.TemporaryDirectory() as folder:
        compare_exact(folder)
        compare_alike(folder, (1280, 720))
        compare_alike(folder, (1920, 1080))


if __name__ == "__main__":
    main()
