#!/usr/bin/env python3
"""The example programs: a selection, none, each code, a limit of time.

    examples-test.py PROGRAM [Shell | Python | PowerShell | Cpp]
"""
import os
import shutil
import signal
import subprocess
import sys
import unittest

from desktop_helper import LIMIT, ROOT, run_tests
from installed_helper import Installed

PROGRAM = ROOT / sys.argv.pop(1)
EXAMPLES = ROOT / "Examples"
# What stands where the program would, for the ends that a healthy one doesn't come to.
STAND_IN = """#!/bin/sh
printf '[line]\\n{\\n    "name": "%s",\\n    "code": %s\\n}\\n' "$NAME" "$CODE"
exit $((CODE & 255))
"""


def drag(display):
    display.drag((50, 60), (170, 90))


class Example:
    """What each has to do; `command(limit, program, options...)` is how it is started."""

    @classmethod
    def setUpClass(cls):
        cls.installed = Installed(PROGRAM)

    @classmethod
    def tearDownClass(cls):
        cls.installed.close()

    def run_example(self, *options, program="snipbench", limit=60, drive=None):
        return self.installed.run(*self.command(limit, program, *options), drive=drive)

    def make_temporary_folder(self, name):
        """An own one for a test."""
        folder = self.installed.folder / name
        folder.mkdir(exist_ok=True)
        self.installed.environment["TMPDIR"] = str(folder)
        self.addCleanup(self.installed.environment.update, TMPDIR=str(self.installed.folder))
        return folder

    def test_selection(self):
        for file_type in ("png", "bmp"):
            code, output, errors = self.run_example("-t", file_type, drive=drag)
            self.assertEqual((code, errors), (0, ""))
            image, _, size = output.rstrip("\n").rpartition(" ")
            self.assertEqual(size, "120x30")
            self.assertTrue(image.endswith("." + file_type))
            with open(image, "rb") as file:
                self.assertEqual(file.read(2), b"\x89P" if file_type == "png" else b"BM")

    def test_folder_with_letters_that_the_overlay_has_no_glyph_for(self):
        folder = self.make_temporary_folder("写真")
        code, output, errors = self.run_example(drive=drag)
        self.assertEqual((code, errors, output[:len(str(folder))]), (0, "", str(folder)))

    def test_nothing_selected(self):
        code, output, errors = self.run_example(drive=lambda display: display.press("Escape"))
        self.assertEqual((code, output, errors), (1, "", "Nothing was selected.\n"))

    def test_selection_that_is_not_saved(self):
        # An image without its JSON file stays where the disk is full.
        self.installed.add_tool("stand-in", STAND_IN.replace("\n", '\ntouch "$4/{0}.png"\n', 1))
        self.installed.environment.update(NAME="Success", CODE="0")
        folder = self.make_temporary_folder("unsaved")
        code, output, errors = self.run_example(program="stand-in")
        self.assertEqual((code, output, errors), (1, "", "The selection couldn't be saved.\n"))
        self.assertEqual(list(folder.iterdir()), [])

    def test_limit(self):
        code, output, errors = self.run_example(limit=1)
        self.assertEqual((code, output, errors), (124, "", "No selection within 1 seconds.\n"))

    def test_codes_of_the_program(self):
        ends = ((("-x",), "Wrong Parameter(s)", 255), (("-f", "no.png"), "Failed to load file", 254))
        for options, name, code in ends:
            result = self.run_example(*options)
            self.assertEqual((result[0], result[1]), (code, ""))
            self.assertTrue(result[2].startswith(name + ": "), result[2])
        code, _, errors = self.run_example("-d", "x")
        self.assertEqual(code, 134)
        self.assertIn("An error; ", errors)

    def test_all_codes(self):
        self.installed.add_tool("stand-in", STAND_IN)
        names = ["Wrong Parameter(s)", "Failed to load file", "Failed to initialize systems", "Failed to create window",
                 "Failed to initialize renderer"]
        for code, name in enumerate(names, 1):
            self.installed.environment.update(NAME=name, CODE=str(-code))
            result = self.run_example(program="stand-in")
            self.assertEqual((result[0], result[1]), (256 - code, ""))
            self.assertTrue(result[2].startswith(name + ": "), result[2])

    def test_program_that_is_not_there(self):
        for program in (self.installed.folder / "nothing", self.installed.folder):
            code, output, errors = self.run_example(program=program)
            self.assertEqual((code, output), (127, ""))
            self.assertIn("can't be started", errors)

    def test_failures_leave_no_folder(self):
        folder = self.make_temporary_folder("failures")
        for options, program in ((("-x",), "snipbench"), (("-d", "x"), "snipbench"), ((), "no-such-program")):
            self.assertNotEqual(self.run_example(*options, program=program)[0], 0)
            self.assertEqual(list(folder.iterdir()), [], options)

    def test_control_c(self):
        if "PowerShell" in type(self).__name__:
            self.skipTest("PowerShell ends by Ctrl+C in a way of its own")
        folder = self.make_temporary_folder("interrupted")
        with self.installed.start(*self.command(60, "snipbench"), start_new_session=True) as example:
            self.installed.display.wait_for_overlay()
            os.killpg(example.pid, signal.SIGINT)
            output, _ = example.communicate(timeout=LIMIT)
        self.assertIn(example.returncode, (130, -signal.SIGINT))
        self.assertEqual(output, "")
        self.assertEqual(list(folder.iterdir()), [])

    def test_wrong_calls(self):
        if "PowerShell" in type(self).__name__:
            self.skipTest("PowerShell asks for what is missing")
        example = self.command(60, "snipbench")[:-3]
        for words in ((), ("-l",), ("-l", "5"), ("-l", "0", "snipbench"), ("-l", "soon", "snipbench"),
                      ("-l", "1.5", "snipbench"), ("-l", "99999999999999999999", "snipbench")):
            code, output, errors = self.installed.run(*example, *words)
            self.assertEqual((code, output), (2, ""), words)
            self.assertTrue(errors.startswith("usage: "), errors)

    def test_end_of_another_kind(self):
        self.installed.add_tool("stand-in", "#!/bin/sh\nexit 1\n")
        code, output, errors = self.run_example(program="stand-in")
        self.assertEqual((code, output), (1, ""))
        if "PowerShell" not in type(self).__name__:
            self.assertEqual(errors, "Ended with 1.\n")

    def test_fault(self):
        self.installed.add_tool("stand-in", "#!/bin/sh\nkill -SEGV $$\n")
        code, output, errors = self.run_example(program="stand-in")
        self.assertEqual((code, output), (139, ""))
        if "PowerShell" not in type(self).__name__:
            self.assertIn("Ended by signal 11.", errors)


class Shell(Example, unittest.TestCase):
    def command(self, limit, program, *options):
        return ["sh", EXAMPLES / "snip.sh", "-l", str(limit), program, *options]


class Python(Example, unittest.TestCase):
    def command(self, limit, program, *options):
        return ["python3", EXAMPLES / "snip.py", "-l", str(limit), program, *options]


class PowerShell(Example, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if shutil.which("pwsh") is None:
            raise unittest.SkipTest("pwsh isn't there")
        super().setUpClass()

    def command(self, limit, program, *options):
        path = shutil.which(program, path=self.installed.environment["PATH"]) or program
        return ["pwsh", "-NoProfile", "-File", EXAMPLES / "snip.ps1", "-Limit", str(limit), "-Program", path,
                "-Options", " ".join(options)]


class Cpp(Example, unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.program = cls.installed.folder / "snip"
        subprocess.run(["c++", "-std=c++20", "-Wall", "-Wextra", "-Werror", "-o", cls.program,
                        EXAMPLES / "snip_Linux.cpp"], check=True)

    def command(self, limit, program, *options):
        return [self.program, "-l", str(limit), program, *options]


if __name__ == "__main__":
    run_tests()
