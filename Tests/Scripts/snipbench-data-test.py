#!/usr/bin/env python3
"""Drives the built snipbench-data from outside: with no display, no home and no configuration. What it exports is read by
readers of each format that are written here, from the formats' public descriptions, and share nothing with the program.

    snipbench-data-test.py PROGRAM
"""
import json
import os
import pty
import random
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import uuid
import zlib
from pathlib import Path
from xml.etree import ElementTree

PROGRAM = ""
LABELS = ["button", "text field", "Menü <&> \"x\"", "icon"]


def make_id(numbers):
    return "{" + str(uuid.UUID(int=numbers.getrandbits(128), version=4)).upper() + "}"


def make_png(width, height, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    head = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    data = zlib.compress(b"".join(b"\0" + row for row in rows), 1)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", data) + chunk(b"IEND", b"")


def read_png(data):
    """(width, height, rows) of a file with 8 bits to the channel; rows of bytes, unfiltered."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    place, packed, channels = 8, b"", 0
    while place < len(data):
        length, kind = struct.unpack(">I4s", data[place:place + 8])
        body = data[place + 8:place + 8 + length]
        assert zlib.crc32(kind + body) == struct.unpack(">I", data[place + 8 + length:place + 12 + length])[0]
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", body)
            channels = {2: 3, 6: 4}[colour]
            assert depth == 8 and interlace == 0
        elif kind == b"IDAT":
            packed += body
        place += 12 + length
    raw, stride = zlib.decompress(packed), width * channels
    rows, above = [], bytes(stride)
    for y in range(height):
        kind, row = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            left = row[i - channels] if i >= channels else 0
            corner = above[i - channels] if i >= channels else 0
            if kind == 1:
                row[i] = (row[i] + left) & 255
            elif kind == 2:
                row[i] = (row[i] + above[i]) & 255
            elif kind == 3:
                row[i] = (row[i] + (left + above[i]) // 2) & 255
            elif kind == 4:
                estimate = left + above[i] - corner
                near = min((abs(estimate - left), 0, left), (abs(estimate - above[i]), 1, above[i]),
                           (abs(estimate - corner), 2, corner))
                row[i] = (row[i] + near[2]) & 255
        rows.append(bytes(row))
        above = rows[-1]
    return width, height, rows


def make_set(folder, count):
    """Writes pictures and annotations as the program does; (file name -> (size, [(label, box, ring)]))."""
    numbers, made = random.Random(17), {}
    folder.mkdir()
    for number in range(count):
        width, height, identifier = 40 + numbers.randrange(30), 30 + numbers.randrange(20), make_id(numbers)
        rows = [bytes(numbers.randrange(256) if x % 4 < 3 else 255 for x in range(width * 4)) for _ in range(height)]
        annotations, entries = [], []
        for _ in range(numbers.randrange(1, 6)):
            left, top = numbers.randrange(width - 3), numbers.randrange(height - 3)
            right, bottom = numbers.randrange(left + 3, width + 1), numbers.randrange(top + 3, height + 1)
            label, ring = numbers.choice(LABELS), None
            kind = numbers.randrange(5)
            if kind == 0:
                ring = [(left, top), (right, top), (right, bottom), (left, bottom), (left, top)]
            elif kind == 1:
                ring = [(left, numbers.randint(top, bottom)), (numbers.randint(left, right), top),
                        (right, numbers.randint(top, bottom)), (numbers.randint(left, right), bottom)]
                ring.append(ring[0])
            entries.append((label, (left, top, right, bottom), ring))
            annotation = {"id": make_id(numbers),
                          "rectangle": dict(zip(("xmin", "ymin", "xmax", "ymax"), (left, top, right, bottom))),
                          "label": label}
            if ring:
                annotation["polygon"] = [{"x": x, "y": y} for x, y in ring]
            annotations.append(annotation)
        record = {"version": 1, "id": identifier, "creationDateTime": "2026-11-21T16:49:00.4505602Z",
                  "image": {"size": {"width": width, "height": height}}, "annotations": annotations}
        (folder / f"{identifier}.png").write_bytes(make_png(width, height, rows))
        (folder / f"{identifier}.json").write_text(json.dumps(record, indent=4), encoding="utf-8")
        made[f"{identifier}.png"] = ((width, height), entries)
    return made


def read_set(folder):
    """The same from files of the program."""
    made = {}
    for path in folder.glob("{*.json"):
        record = json.loads(path.read_text(encoding="utf-8"))
        size = record["image"]["size"]
        entries = [(item.get("label"), tuple(item["rectangle"][side] for side in ("xmin", "ymin", "xmax", "ymax")),
                    [(point["x"], point["y"]) for point in item["polygon"]] if "polygon" in item else None)
                   for item in record["annotations"]]
        made[path.stem + ".png"] = ((size["width"], size["height"]), entries)
    return made


def read_coco(folder, name="annotations.json"):
    data = json.loads((folder / name).read_text(encoding="utf-8"))
    assert set(data) == {"info", "licenses", "categories", "images", "annotations"}
    categories = {entry["id"]: entry["name"] for entry in data["categories"]}
    assert len(categories) == len(data["categories"])
    made, files = {}, {}
    for image in data["images"]:
        assert image["id"] not in files and (folder / "images" / image["file_name"]).is_file()
        files[image["id"]] = image["file_name"]
        made[image["file_name"]] = ((image["width"], image["height"]), [])
    seen = set()
    for entry in data["annotations"]:
        assert entry["id"] not in seen and entry["iscrowd"] == 0
        seen.add(entry["id"])
        left, top, width, height = entry["bbox"]
        ring = None
        if entry["segmentation"]:
            [flat] = entry["segmentation"]
            ring = list(zip(flat[::2], flat[1::2]))
            area = abs(sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(ring, ring[1:] + ring[:1]))) / 2
            ring.append(ring[0])
        else:
            area = width * height
        assert entry["area"] == area
        made[files[entry["image_id"]]][1].append(
            (categories[entry["category_id"]], (left, top, left + width, top + height), ring))
    return made


def read_yolo(folder):
    """Lines of one file are boxes, or all are segments; a segment of a box's four corners alone is that box."""
    lines = (folder / "data.yaml").read_text(encoding="utf-8").splitlines()
    names = {}
    for line in lines[lines.index("names:") + 1:]:
        number, _, name = line.strip().partition(": ")
        names[int(number)] = json.loads(name)  # a JSON text is a quoted text of YAML
    assert sorted(names) == list(range(len(names)))
    made = {}
    for picture in (folder / "images").iterdir():
        width, height, _ = read_png(picture.read_bytes())
        rows = [line.split() for line in (folder / "labels" / (picture.stem + ".txt")).read_text().splitlines()]
        entries, are_segments = [], any(len(row) > 6 for row in rows)
        for row in rows:
            values = [float(value) for value in row[1:]]
            assert all(0 <= value <= 1 for value in values)
            ring = None
            if are_segments:
                points = [(round(x * width), round(y * height)) for x, y in zip(values[::2], values[1::2])]
                xs, ys = [x for x, _ in points], [y for _, y in points]
                box = (min(xs), min(ys), max(xs), max(ys))
                if points != [(box[0], box[1]), (box[2], box[1]), (box[2], box[3]), (box[0], box[3])]:
                    ring = points if points[0] == points[-1] else points + points[:1]
            else:
                x, y, across, down = values
                box = (round((x - across / 2) * width), round((y - down / 2) * height),
                       round((x + across / 2) * width), round((y + down / 2) * height))
            entries.append((names[int(row[0])], box, ring))
        made[picture.name] = ((width, height), entries)
    return made


def read_voc(folder):
    made = {}
    for path in (folder / "Annotations").iterdir():
        root = ElementTree.parse(path).getroot()
        assert root.tag == "annotation"
        size, entries = root.find("size"), []
        for entry in root.iter("object"):
            # Pixels from 1, the last one within the box.
            sides = [int(entry.find("bndbox").findtext(side)) for side in ("xmin", "ymin", "xmax", "ymax")]
            polygon = entry.find("polygon")
            ring = polygon and [(int(point.findtext("x")), int(point.findtext("y"))) for point in polygon]
            entries.append((entry.findtext("name"), (sides[0] - 1, sides[1] - 1, sides[2], sides[3]), ring))
        made[root.findtext("filename")] = ((int(size.findtext("width")), int(size.findtext("height"))), entries)
    return made


class Data(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.source = self.folder / "source"
        self.expected = make_set(self.source, 25)

    def run_program(self, *words, code=0):
        """Without what a program with windows needs; its home is a folder that stays empty."""
        home = self.folder / "home"
        home.mkdir(exist_ok=True)
        result = subprocess.run([PROGRAM, *map(str, words)], env={"HOME": str(home)}, cwd=self.folder,
                                stdin=subprocess.DEVNULL, capture_output=True, encoding="utf-8", timeout=100,
                                check=False)
        self.assertEqual(result.returncode, code, result.stdout + result.stderr)
        self.assertEqual(list(home.iterdir()), [])
        return result

    def test_a_set_is_clean(self):
        self.assertEqual(json.loads(self.run_program("check", self.source, "--json").stdout)["findings"], [])

    def test_every_format_is_read_by_another_reader_and_comes_back(self):
        for name, reader in (("coco", read_coco), ("yolo", read_yolo), ("voc", read_voc)):
            with self.subTest(name):
                out, back = self.folder / name, self.folder / f"back-{name}"
                self.run_program("export", name, self.source, out, "--split", "70,20,10", "--seed", "3")
                self.assertEqual(reader(out), self.expected)
                self.run_program("import", name, out, back)
                self.assertEqual(read_set(back), self.expected)
                for picture in self.expected:
                    self.assertEqual((back / picture).read_bytes(), (self.source / picture).read_bytes())
                self.run_program("check", back)

    def test_a_split_stays_when_files_are_added(self):
        def list_parts(out):
            return {name: [line.rpartition("/")[2] for line in (out / f"{name}.txt").read_text().splitlines()]
                    for name in ("train", "val", "test")}
        few = self.folder / "few"
        few.mkdir()
        for path in sorted(self.source.iterdir())[:24]:
            shutil.copy(path, few)
        options = ("--split", "60,20,20", "--seed", "7")
        self.run_program("export", "yolo", few, self.folder / "a", *options)
        self.run_program("export", "yolo", self.source, self.folder / "b", *options)
        first, second = list_parts(self.folder / "a"), list_parts(self.folder / "b")
        self.assertEqual(sum(map(len, second.values())), 25)
        for name, pictures in first.items():
            self.assertLessEqual(set(pictures), set(second[name]))

    def test_parts_of_coco_make_the_whole(self):
        out = self.folder / "coco"
        self.run_program("export", "coco", self.source, out, "--split", "60,20,20")
        parts = {}
        for name in ("train", "val", "test"):
            part = read_coco(out, f"annotations-{name}.json")
            self.assertFalse(parts.keys() & part.keys())
            parts.update(part)
        self.assertEqual(parts, self.expected)

    def test_crops_and_masks_have_the_pixels(self):
        self.run_program("crop", self.source, self.folder / "crop", "--keep-mask")
        self.run_program("mask", self.source, self.folder / "mask")
        for path in self.source.glob("*.json"):
            record = json.loads(path.read_text(encoding="utf-8"))
            width, height, rows = read_png(path.with_suffix(".png").read_bytes())
            for item in record["annotations"]:
                left, top, right, bottom = (item["rectangle"][side] for side in ("xmin", "ymin", "xmax", "ymax"))
                crop = read_png((self.folder / "crop" / (item["id"] + ".png")).read_bytes())
                self.assertEqual(crop[2], [row[left * 4:right * 4] for row in rows[top:bottom]])
                mask = read_png((self.folder / "mask" / (item["id"] + ".png")).read_bytes())
                self.assertEqual(mask[:2], (width, height))
                if "polygon" not in item:
                    black, white = b"\0\0\0", b"\xff\xff\xff"
                    inside = black * left + white * (right - left) + black * (width - right)
                    self.assertEqual(mask[2], [inside if top <= y < bottom else black * width for y in range(height)])

    def test_a_broken_file_is_named_and_skipped(self):
        broken = sorted(self.source.glob("*.json"))[3]
        broken.write_text("{", encoding="utf-8")
        result = self.run_program("export", "coco", self.source, self.folder / "coco", code=1)
        self.assertIn(broken.name, result.stderr)
        self.assertEqual(len(read_coco(self.folder / "coco")), 24)

    def test_a_snip_is_found_on_its_screen(self):
        name, ((width, height), _) = sorted(self.expected.items())[0]
        _, _, rows = read_png((self.source / name).read_bytes())
        part = self.folder / "part.png"
        part.write_bytes(make_png(12, 9, [row[5 * 4:17 * 4] for row in rows[7:16]]))
        answer = json.loads(self.run_program("find", part, self.source / name).stdout)
        self.assertEqual(answer["places"], [{"x": 5, "y": 7, "width": 12, "height": 9, "score": 1.0}])
        other = sorted(self.expected)[1]
        self.run_program("find", part, self.source / other, code=1)

    def test_a_bar_is_shown_on_a_terminal_alone(self):
        """The findings fill a pipe that nothing reads from for a while, so that the run surely lasts long enough."""
        many = self.folder / "many"
        numbers = random.Random(5)
        many.mkdir()
        text = sorted(self.source.glob("*.json"))[0].read_text(encoding="utf-8")
        for _ in range(4000):
            identifier = make_id(numbers)
            record = {**json.loads(text), "id": identifier}
            (many / f"{identifier}.json").write_text(json.dumps(record), encoding="utf-8")
        main, side = pty.openpty()
        with subprocess.Popen([PROGRAM, "check", str(many)], stdout=subprocess.PIPE, stderr=side) as process:
            os.close(side)
            select.select([process.stdout], [], [], 100)  # the work has begun
            time.sleep(1)
            findings = process.stdout.read()
            shown = b""
            try:
                while block := os.read(main, 65536):
                    shown += block
            except OSError:  # the other side is closed
                pass
            os.close(main)
            self.assertEqual(process.wait(100), 1)
        self.assertEqual(findings.count(b"has no picture beside it"), 4000)
        self.assertIn(b"/4000", shown)
        self.assertEqual(self.run_program("check", many, code=1).stderr, "")

    def test_others_of_its_name_are_left_alone(self):
        first = self.folder / "snipbench-data"
        shutil.copy("/bin/sleep", first)
        with subprocess.Popen([str(first), "100"]) as process:
            self.run_program("check", self.source)
            self.assertIsNone(process.poll())
            process.kill()

    def test_a_missing_font_is_named(self):
        alone = self.folder / "alone"
        alone.mkdir()
        shutil.copy(PROGRAM, alone)
        for verb, target in (("draw", "drawn"), ("sheet", "sheet.png")):
            result = subprocess.run([alone / Path(PROGRAM).name, verb, self.source, self.folder / target],
                                    capture_output=True, encoding="utf-8", timeout=100, check=False)
            self.assertEqual(result.returncode, 1)
            self.assertEqual(result.stderr, "Mulish-Regular.ttf: the font isn't there; the pictures bear no names\n")
            self.assertTrue((self.folder / target).exists())

    def test_output_that_cannot_be_written_is_an_error(self):
        with open("/dev/full", "wb") as full:
            result = subprocess.run([PROGRAM, "check", str(self.source)], stdout=full, check=False)
        self.assertEqual(result.returncode, 3)


if __name__ == "__main__":
    PROGRAM = str(Path(sys.argv.pop(1)).resolve())
    unittest.main()
