#!/usr/bin/env python3
"""The recipes and the examples of the pages, each as it is printed, in an empty folder.

    recipes-test.py PROGRAM [Recipes | RecipesWithTools.test_... | Scripting | Problems | Configuration]

Stand-ins are there only for what needs a desktop that isn't here: GNOME's settings, and Wayland's clipboard.
"""
import importlib.util
import json
import os
import pwd
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as xml
from collections import Counter
from pathlib import Path

from desktop_helper import LIMIT, ROOT, run_tests, wait_for
from installed_helper import Installed

PROGRAM = ROOT / sys.argv.pop(1)
# Words on a form, shown as large as the display is.
PAGE = ROOT / "Docs/Pictures/saved.png"
BUTTON = (1088, 288), (1200, 320)
WORDS = (896, 236), (1044, 266)

OPENBOX = """<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc"><keyboard>{}</keyboard></openbox_config>
"""


def read_blocks(page):
    """(heading, language, text) of each block of code."""
    blocks, heading, lines = [], "", None
    for line in (ROOT / page).read_text(encoding="utf-8").splitlines():
        if lines is not None and line == "```":
            blocks.append((heading, language, "\n".join(lines) + "\n"))
            lines = None
        elif lines is not None:
            lines.append(line)
        elif line.startswith("```"):
            language, lines = line[3:], []
        elif line.startswith("#"):
            heading = line.lstrip("# ")
    return blocks


def escape(display):
    display.press("Escape")


def drag(start, end):
    return lambda display: display.drag(start, end)


class Pages(unittest.TestCase):
    PAGE = None

    @classmethod
    def setUpClass(cls):
        cls.blocks = read_blocks(cls.PAGE)

    def setUp(self):
        self.installed = Installed(PROGRAM, "1280x720")
        self.addCleanup(self.installed.close)

    def block(self, heading, language, number=0):
        return [text for *place, text in self.blocks if place == [heading, language]][number]

    def need(self, *tools):
        for tool in tools:
            if shutil.which(tool) is None:
                self.skipTest(f"{tool} isn't there")

    def run_bash(self, text, drive=None):
        """(code, standard output, standard error), by way of files: a tool that stays, as xclip does, keeps pipes open.
        """
        outputs = [self.installed.folder / name for name in ("out", "err")]
        with open(outputs[0], "w") as out, open(outputs[1], "w") as err:
            with subprocess.Popen(["bash", "-c", text], env=self.installed.environment, cwd=self.installed.work,
                                  stdout=out, stderr=err) as process:
                try:
                    if drive:
                        self.installed.display.wait_for_overlay()
                        drive(self.installed.display)
                    process.wait(LIMIT)
                except BaseException:
                    process.kill()
                    raise
        return process.returncode, *(path.read_text(encoding="utf-8") for path in outputs)

    def assert_starts_a_run(self, command):
        """A command as a key binding holds it; `sh` is what such programs start commands with."""
        code, _, errors = self.installed.run("sh", "-c", command, drive=drag((100, 100), (140, 120)))
        self.assertEqual((code, errors), (0, ""))
        self.assertEqual(len(list((self.installed.home / "Bilder/Screenshots").glob("*.png"))), 1)


class Recipes(Pages):
    PAGE = "Docs/Recipes.md"

    def test_key_of_gnome(self):
        self.installed.add_tool("gsettings", '#!/bin/sh\nprintf "%s\\n" "$@" >>"$HOME/settings"\n')
        self.assertEqual(self.run_bash(self.block("Bind it to a key", "bash")), (0, "", ""))
        lines = (self.installed.home / "settings").read_text(encoding="utf-8").splitlines()
        calls = [lines[index:index + 4] for index in range(0, len(lines), 4)]
        base = "org.gnome.settings-daemon.plugins.media-keys"
        path = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/snipbench/"
        self.assertEqual(calls, [["set", base, "custom-keybindings", f"['{path}']"],
                                 ["set", f"{base}.custom-keybinding:{path}", "name", "SnipBench"],
                                 ["set", f"{base}.custom-keybinding:{path}", "command", "snipbench -s true"],
                                 ["set", f"{base}.custom-keybinding:{path}", "binding", "<Control>Print"]])
        self.assert_starts_a_run(calls[2][3])

    def test_keys_of_i3_and_sway(self):
        for manager in ("i3", "sway"):
            text = self.block("Bind it to a key", manager)
            command = re.fullmatch(r"bindsym (?:--release )?Shift\+Print exec (?:--no-startup-id )?(.*)\n", text)[1]
            shutil.rmtree(self.installed.home / "Bilder/Screenshots", ignore_errors=True)
            self.assert_starts_a_run(command)

    def test_no_recipe_is_left_out(self):
        """Each block is read by a test, whatever tools that one needs."""
        source = Path(__file__).read_text(encoding="utf-8")
        read = {(heading, language, int(number or 0)) for heading, language, number in
                re.findall(r'self\.block\("([^"]+)",\s*"(\w+)"(?:, (\d))?\)', source)}
        read |= {("Bind it to a key", name, 0) for name in re.findall(r'check_configuration\("(\w+)"[,)]', source)}
        seen = Counter()
        for heading, language, _ in self.blocks:
            self.assertIn((heading, language, seen[heading, language]), read)
            seen[heading, language] += 1

    def test_key_of_openbox(self):
        text = self.block("Bind it to a key", "xml")
        self.assertEqual(xml.fromstring(text).get("key"), "S-Print")
        self.need("openbox")
        configuration = self.installed.folder / "rc.xml"
        configuration.write_text(OPENBOX.format(text), encoding="utf-8")
        with subprocess.Popen(["openbox", "--sm-disable", "--config-file", configuration],
                              env=self.installed.environment, cwd=self.installed.work) as manager:
            display = self.installed.display

            def press():
                display.press("shift+Print")
                time.sleep(0.3)
                return display.find_overlay()

            wait_for(press, "overlay")
            display.drag((100, 100), (140, 120))
            wait_for(lambda: list((self.installed.home / "Bilder/Screenshots").glob("*.json")), "JSON file")
            wait_for(lambda: not display.find_overlay(), "end")
            manager.terminate()

    def test_clipboard_of_wayland(self):
        self.installed.add_tool("wl-copy", '#!/bin/sh\n[ "$*" = "--type image/png" ] && cat >"$HOME/clipboard"\n')
        block = self.block("One region into the clipboard", "bash", 1)
        self.assertEqual(self.run_bash(block, drag((100, 100), (140, 120))), (0, "", ""))
        self.assertEqual((self.installed.home / "clipboard").read_bytes()[16:24], b"\0\0\0\x28\0\0\0\x14")

    def test_coordinates(self):
        block = self.block("Ask for a region and get its coordinates", "bash")
        self.assertEqual(self.run_bash(block, drag((300, 200), (100, 150))), (0, "100 150 200 50\n", ""))
        self.assertEqual(self.run_bash(block, escape), (0, "nothing was selected\n", ""))

    def test_twenty_boxes(self):
        shutil.copy(PAGE, self.installed.work / "page.png")
        boxes = [(50 * x + 10, 40 * y + 10, 50 * x + 40, 40 * y + 30) for y in range(4) for x in range(5)]

        def draw(display):
            for count, (left, top, right, bottom) in enumerate(boxes, 1):
                display.drag((left, top), (right, bottom))
                wait_for(lambda: self.count_boxes() == count, "box")
            display.press("Escape")

        self.assertEqual(self.run_bash(self.block("Twenty boxes on one picture", "bash"), draw)[0], 0)
        program = self.block("Twenty boxes on one picture", "python")
        table = self.installed.run("python3", "-c", program)
        self.assertEqual(table, (0, "".join(f"{number}\t{left}\t{top}\t{right}\t{bottom}\n" for
                                            number, (left, top, right, bottom) in enumerate(boxes, 1)), ""))

    def count_boxes(self):
        files = list((self.installed.work / "labels").glob("*.json"))
        return len(json.loads(files[0].read_text(encoding="utf-8"))["annotations"]) if files else 0

    def test_actions_are_those_of_the_desktop_entry(self):
        names = re.findall("^Name=(.*)$", (ROOT / "Packaging/Linux/snipbench.desktop").read_text(encoding="utf-8"),
                           re.MULTILINE)
        page = " ".join((ROOT / self.PAGE).read_text(encoding="utf-8").split())
        for name in re.findall('actions "(.*?)" and "(.*?)"', page)[0]:
            self.assertIn(name, names)

    def test_limit(self):
        block = self.block("A limit of time", "bash")
        output = self.run_bash(block, escape)
        self.assertEqual((output[1].splitlines()[-1], output[2]), ("ended by the user", ""))
        shortened = block.replace("foreground 60", "foreground 1")
        self.assertNotEqual(shortened, block)
        self.assertEqual(self.run_bash(shortened)[1].splitlines()[-1], "no selection within a minute")
        self.installed.environment["DISPLAY"] = ""
        self.assertEqual(self.run_bash(block)[1].splitlines()[-1], "failed")

    def test_wrong_option(self):
        self.assertEqual(self.run_bash(self.block("Which option was wrong?", "bash"))[1].splitlines()[-1], "code 255")


class RecipesWithTools(Pages):
    """Each needs a tool that is missing on many a machine, and is a test of its own to the one who runs them all."""

    PAGE = "Docs/Recipes.md"

    def test_clipboard_of_x11(self):
        block = self.block("One region into the clipboard", "bash")
        self.need("xclip")
        self.assertEqual(self.run_bash(block, drag((100, 100), (140, 120))), (0, "", ""))
        image = subprocess.run(["xclip", "-selection", "clipboard", "-target", "image/png", "-out"], check=True,
                               env=self.installed.environment, stdout=subprocess.PIPE, timeout=LIMIT).stdout
        self.assertEqual((image[:8], image[16:24]), (b"\x89PNG\r\n\x1a\n", b"\0\0\0\x28\0\0\0\x14"))
        self.run_bash(block, escape)  # nothing selected: nothing to put there, and no complaint

    def test_template(self):
        shutil.copy(PAGE, self.installed.work / "page.png")
        self.assertEqual(self.run_bash(self.block("A template for a test, and finding it again", "bash"),
                                       drag(*BUTTON))[0], 0)
        program = self.block("A template for a test, and finding it again", "python")
        if importlib.util.find_spec("cv2") is None:
            self.skipTest("python3-opencv isn't there")
        self.assertEqual(self.installed.run("python3", "-c", program), (0, "found at 1088,288, 112x32\n", ""))
        (self.installed.work / "page.png").write_bytes((ROOT / "Docs/Pictures/annotating.png").read_bytes())
        self.assertEqual(self.installed.run("python3", "-c", program), (0, "not found\n", ""))

    def show_page(self):
        """The command takes the page in place of the empty screen."""
        shutil.copy(PAGE, self.installed.work / "page.png")
        command = self.installed.prefix / "bin/snipbench"
        self.installed.add_tool("snipbench", f'#!/bin/sh\nexec "{command}" -f "{PAGE}" "$@"\n')

    def test_text(self):
        block = self.block("Text recognition of a region", "bash")
        self.need("tesseract")
        self.show_page()
        code, output, _ = self.run_bash(block, drag(*WORDS))
        self.assertEqual((code, output.strip()), (0, "Deliver on Saturday"))

    def check_configuration(self, manager, run=(), environment=None):
        text = self.block("Bind it to a key", manager)
        self.need(manager)
        configuration = self.installed.folder / "config"
        configuration.write_text(("# i3 config file (v4)\n" if manager == "i3" else "") + text, encoding="utf-8")
        result = subprocess.run([*run, manager, "-C", "-c", configuration], capture_output=True, text=True, check=False,
                                env={**self.installed.environment, **(environment or {})}, timeout=LIMIT)
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_i3(self):
        self.check_configuration("i3")

    def test_sway(self):
        """It starts its own display to look at a configuration, and never as root."""
        with tempfile.TemporaryDirectory() as runtime:
            run = ()
            if os.geteuid() == 0:
                other = pwd.getpwnam("nobody")
                for path in (runtime, self.installed.folder):
                    os.chown(path, other.pw_uid, other.pw_gid)
                run = ("setpriv", f"--reuid={other.pw_uid}", f"--regid={other.pw_gid}", "--clear-groups")
            self.check_configuration("sway", run, {"XDG_RUNTIME_DIR": runtime, "WLR_BACKENDS": "headless",
                                                   "WLR_RENDERER": "pixman", "LIBSEAT_BACKEND": "noop"})

    def test_powershell(self):
        blocks = [self.block("Bind it to a key", "powershell"),
                  self.block("One region into the clipboard", "powershell")]
        installer = (ROOT / "Scripts/make-installer.py").read_text(encoding="utf-8")
        self.assertIn('("SnipBench one region", "-s true"', installer)
        self.assertIn(r"\SnipBench\SnipBench one region.lnk", blocks[0])
        self.assertIn(r"\Programs\SnipBench\Binaries\Windows-x64\SnipBench.exe", blocks[1])
        self.need("pwsh")
        for block in blocks:
            script = self.installed.folder / "block.ps1"
            script.write_text(block, encoding="utf-8")
            parse = f"[void][ScriptBlock]::Create((Get-Content -Raw '{script}'))"
            subprocess.run(["pwsh", "-NoProfile", "-Command", parse], check=True, timeout=LIMIT)


class Scripting(Pages):
    PAGE = "Docs/Scripting.md"

    def setUp(self):
        super().setUp()
        (self.installed.work / "run").symlink_to(self.installed.prefix / "bin/snipbench")

    def test_shell(self):
        block = self.block("From a shell", "bash")
        code, output, errors = self.run_bash(block, drag((10, 10), (60, 40)))
        self.assertEqual((code, errors), (0, ""))
        self.assertRegex(output, r"^/.*/\{[-0-9A-F]{36}\}\.png\n$")
        self.assertEqual(self.run_bash(block, escape), (0, "nothing was selected\n", ""))
        self.installed.environment["DISPLAY"] = ""
        self.assertIn('"code": -3', self.run_bash(block)[1])

    def test_python(self):
        program = self.block("From Python", "python")
        code, output, errors = self.installed.run("python3", "-c", program, drive=drag((10, 10), (60, 40)))
        self.assertEqual((code, errors), (0, ""))
        self.assertIn("'size': {'width': 50, 'height': 30}", output)
        # The image is the one that is there, whatever its format.
        program = program.replace('snip("./run")', 'snip("./run", "-t", "bmp")[0].read_bytes()[:2]')
        self.assertEqual(self.installed.run("python3", "-c", program, drive=drag((10, 10), (60, 40))),
                         (0, "b'BM'\n", ""))

    def test_python_reads_labels(self):
        code, _, _ = self.installed.run("snipbench", "-a", "true", "-s", "true", "-o", "labels",
                                        drive=drag((10, 20), (60, 40)))
        self.assertEqual(code, 0)
        code, output, errors = self.installed.run("python3", "-c", self.block("From Python", "python", 1))
        self.assertEqual((code, errors), (0, ""))
        self.assertRegex(output, r"^labels/\{[-0-9A-F]{36}\}\.png 10 20 60 40\n$")


class Problems(Pages):
    PAGE = "Docs/Problems.md"

    def test_what_to_send(self):
        code, output, errors = self.run_bash(self.block("What to send", "bash"))
        self.assertEqual((code, errors), (0, ""))
        self.assertEqual(len(re.findall(r"^PRETTY_NAME=|^Linux |^session ", output, re.MULTILINE)), 3)


class Configuration(Pages):
    PAGE = "Docs/Configuration.md"

    def start(self, configuration):
        """What a run without a display says: no configuration of the page keeps it from that."""
        self.installed.environment["DISPLAY"] = ""
        return self.installed.run("snipbench", "-cj", configuration)

    def test_every_example_is_taken(self):
        blocks = [text for _, language, text in self.blocks if language == "json"]
        self.assertEqual(len(blocks), 7)
        for text in blocks:
            code, output, errors = self.start(text)
            self.assertEqual(code, 253, errors)
            self.assertNotIn("Configuration ignored", output)

    def test_what_a_rule_changes_on_linux(self):
        row = re.search(r"^\| `DisplayCache` .*$", (ROOT / self.PAGE).read_text(encoding="utf-8"), re.MULTILINE)[0]
        without_compositor = {"WAYLAND_DISPLAY": "nothing"}
        for environment, said in (
                ({}, ["No X server to ask for displays."]),
                (without_compositor, ["No X server to ask for displays.", "WAYLAND_DISPLAY is set, but "]),
                ({"ORVIK_DESKTOP": "wayland"}, ["No Wayland compositor to ask for displays: "])):
            self.installed.environment.update(environment)
            for severity, is_there in (("Error", True), ("Critical", False)):
                rule = {"configuration": {"LogSystem": {"streams": {"DisplayCache": {"severity": severity}}}}}
                output = self.start(json.dumps(rule))[1]
                for line in said:
                    self.assertIn(line, row)
                    self.assertEqual(line in output, is_there)
                self.assertEqual("DisplayCache" in output, is_there)
            for name in environment:
                self.installed.environment.pop(name)


del Pages  # has no tests of its own
if __name__ == "__main__":
    run_tests()
