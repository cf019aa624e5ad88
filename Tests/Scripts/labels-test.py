#!/usr/bin/env python3
"""One run of a person who labels, with everything that a configuration adds, and the way of its files through the second
program: five labelled boxes, one of them taken back, a polygon, a look by `check`, three formats out and in.

    labels-test.py PROGRAM DATA_PROGRAM
"""
import json
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from desktop_helper import Display, ROOT, missing_tools, run_tests, wait_for

DATA = (ROOT / sys.argv.pop(2)).resolve()
PROGRAM = (ROOT / sys.argv.pop(1)).resolve()
LABELS = ["button", "text field", "Menü", "icon"]
ON = {"size": True, "bright": True, "marks": True, "undo": True, "edges": True, "toggle": True, "hints": True,
      "contrast": True, "labels": LABELS}
SIZE = (640, 480)


def install(folder):
    """A copy of its own: the program ends others of its name when it starts."""
    copy = folder / "Binaries" / "Linux-x64" / "LabellingSnipBench"
    copy.parent.mkdir(parents=True)
    shutil.copy2(PROGRAM, copy)
    shutil.copytree(ROOT / "Resources", folder / "Resources")
    return copy


@unittest.skipIf(missing_tools("Xvfb", "xdotool"), "needs Xvfb and xdotool")
class Labels(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="labels-test-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.program = install(self.folder)
        self.display = Display("{}x{}".format(*SIZE))
        self.addCleanup(self.display.close)
        self.home = self.folder / "home"
        self.home.mkdir()

    def start(self, section, *options):
        environment = {**self.display.environment, "HOME": str(self.home)}
        environment.pop("WAYLAND_DISPLAY", None)
        configuration = json.dumps({"configuration": {"SnipBench": section}})
        run = subprocess.Popen([self.program, "-cj", configuration, *options], env=environment,
                               stdout=subprocess.PIPE, text=True)
        self.addCleanup(run.stdout.close)
        self.addCleanup(run.kill)
        return run

    def finish(self, run):
        output, _ = run.communicate(timeout=60)
        return run.returncode, output

    def drag(self, box):
        """Holds the button from corner to corner."""
        left, top, right, bottom = box
        self.display.xdotool("mousemove", left, top, "sleep", 0.05, "mousedown", 1, "sleep", 0.05,
                             "mousemove", right, bottom, "sleep", 0.05, "mouseup", 1, "sleep", 0.05)

    def click(self, *corners):
        for x, y in corners:
            self.display.xdotool("mousemove", x, y, "sleep", 0.05, "click", 1, "sleep", 0.05)

    def read(self, folder, count):
        """The annotations, once the file has so many."""
        def find():
            files = list(folder.glob("*.json"))
            found = json.loads(files[0].read_text("ascii"))["annotations"] if files else []
            return found if len(found) == count else None
        return wait_for(find, f"{count} annotations")

    def data(self, *words):
        return subprocess.run([DATA, *map(str, words)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              timeout=60, check=False)

    def label(self, folder):
        """The run; what its file says in the end."""
        run = self.start(ON, "-a", "true", "-o", str(folder))
        self.display.wait_for_overlay()
        boxes = [(20, 30, 120, 70), (140, 30, 300, 60), (20, 100, 90, 200), (200, 220, 260, 300), (320, 40, 400, 90)]
        for number, (box, key) in enumerate(zip(boxes, ("1", "2", "3", "4", "2"))):
            self.display.press(key)
            self.drag(box)
            self.read(folder, number + 1)
        self.display.press("BackSpace")
        self.read(folder, 4)
        self.display.press("Tab", "1")
        self.click((420, 200), (520, 210), (470, 320), (424, 204))
        annotations = self.read(folder, 5)
        self.display.press("Escape")
        code, output = self.finish(run)
        self.assertEqual(code, 0, output)
        return boxes, annotations

    def test_from_the_overlay_to_three_formats_and_back(self):
        folder = self.folder / "run"
        boxes, annotations = self.label(folder)
        self.assertEqual([annotation["label"] for annotation in annotations], LABELS + ["button"])
        for box, annotation in zip(boxes, annotations[:4]):
            self.assertEqual(annotation["rectangle"], dict(zip(("xmin", "ymin", "xmax", "ymax"), box)))
            self.assertNotIn("polygon", annotation)
        corners = [(420, 200), (520, 210), (470, 320), (420, 200)]
        self.assertEqual([(corner["x"], corner["y"]) for corner in annotations[4]["polygon"]], corners)

        check = self.data("check", folder)
        self.assertEqual((check.returncode, "findings: 0" in check.stdout), (0, True), check.stdout)
        picture = next(folder.glob("*.png")).read_bytes()
        for form in ("coco", "yolo", "voc"):
            with self.subTest(form=form):
                out, back = self.folder / form, self.folder / (form + "-back")
                export = self.data("export", form, folder, out)
                self.assertEqual(export.returncode, 0, export.stdout)
                imported = self.data("import", form, out, back)
                self.assertEqual(imported.returncode, 0, imported.stdout)
                (file,) = back.glob("*.json")
                restored = json.loads(file.read_text("ascii"))["annotations"]
                keep = ("rectangle", "label", "polygon")
                self.assertEqual([{key: one[key] for key in keep if key in one} for one in restored],
                                 [{key: one[key] for key in keep if key in one} for one in annotations])
                self.assertEqual(next(back.glob("*.png")).read_bytes(), picture)

    def test_a_push_against_the_edges_reaches_the_last_pixel(self):
        folder = self.folder / "edges"
        run = self.start({"edges": True}, "-a", "true", "-o", str(folder))
        self.display.wait_for_overlay()
        width, height = SIZE
        push = ["mousemove_relative", 300, 300, "sleep", 0.1, "mousemove_relative", 3, 3, "sleep", 0.1]
        self.display.xdotool("mousemove", width - 40, height - 30, "sleep", 0.1, "mousedown", 1, "sleep", 0.1, *push,
                             "mouseup", 1)
        (first,) = self.read(folder, 1)
        self.assertEqual(first["rectangle"],
                         {"xmin": width - 40, "ymin": height - 30, "xmax": width, "ymax": height})
        # By the keys alone, from the last but one pixel; and back.
        self.display.xdotool("mousemove", 300, 200, "sleep", 0.1)
        self.display.xdotool("mousemove", width - 50, height - 2, "sleep", 0.1, "mousedown", 1, "sleep", 0.1)
        for _ in range(2):
            self.display.xdotool("key", "Down", "sleep", 0.1)
        self.display.xdotool("key", "Right", "sleep", 0.1, "mouseup", 1)
        annotations = self.read(folder, 2)
        self.assertEqual(annotations[1]["rectangle"],
                         {"xmin": width - 50, "ymin": height - 2, "xmax": width - 49, "ymax": height})
        self.display.press("Escape")
        self.assertEqual(self.finish(run)[0], 0)

    def test_the_last_snip_taken_back_leaves_no_file(self):
        folder = self.folder / "snips"
        run = self.start({"undo": True}, "-o", str(folder))
        self.display.wait_for_overlay()
        for count in (1, 2):
            self.drag((20, 30, 120, 70 + count))
            wait_for(lambda: len(list(folder.glob("*.json"))) == count, "files")
        before = set(folder.iterdir())
        self.display.press("BackSpace")
        wait_for(lambda: len(list(folder.iterdir())) == 2, "end of two files")
        self.assertLess(set(folder.iterdir()), before)
        self.display.press("Escape")
        self.assertEqual(self.finish(run)[0], 0)

    def test_a_region_needs_neither_a_hand_nor_a_display(self):
        picture = next((ROOT / "Docs" / "Pictures").glob("selecting.png"))
        folder = self.folder / "region"
        region = {"x": 10, "y": 20, "width": 30, "height": 40}
        self.display.environment = {key: value for key, value in self.display.environment.items() if key != "DISPLAY"}
        code, output = self.finish(self.start({"region": region}, "-f", str(picture), "-o", str(folder)))
        self.assertEqual(code, 0, output)
        (file,) = folder.glob("*.json")
        self.assertEqual(json.loads(file.read_text())["image"]["size"], {"width": 30, "height": 40})
        region["width"] = 30000
        code, output = self.finish(self.start({"region": region}, "-f", str(picture), "-o", str(folder)))
        self.assertEqual(code, 255)
        self.assertIn("doesn't lie within the picture", output)
        self.assertEqual(len(list(folder.iterdir())), 2)

    def test_without_a_folder_files_go_where_the_guide_says(self):
        self.assertIn("| `.temp/Screenshots` in the folder of the program,", (ROOT / "Docs/UserGuide.md").read_text())
        picture = ROOT / "Docs" / "Pictures" / "selecting.png"
        for options, name in (((), "Screenshots"), (("-a", "true"), "Annotations")):
            code, output = self.finish(self.start({"region": {}}, "-f", str(picture), *options))
            self.assertEqual(code, 0, output)
            self.assertEqual(len(list((self.program.parent / ".temp" / name).iterdir())), 2)

    def test_a_region_of_the_display(self):
        folder = self.folder / "screen"
        section = {"region": {}, "display": 1}
        start = time.monotonic()
        code, output = self.finish(self.start(section, "-o", str(folder), "-d", "300"))
        self.assertEqual(code, 0, output)
        self.assertGreater(time.monotonic() - start, 0.3, "the delay")
        (file,) = folder.glob("*.json")
        self.assertEqual(json.loads(file.read_text())["image"]["size"], dict(zip(("width", "height"), SIZE)))
        code, output = self.finish(self.start({"display": "none of that name"}, "-o", str(folder)))
        self.assertEqual(code, 253)
        self.assertIn("No display is named 'none of that name'.", output)


if __name__ == "__main__":
    run_tests()
