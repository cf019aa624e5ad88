#!/usr/bin/env python3
"""The command snipbench: what it adds to the user's arguments, and that it becomes the program otherwise."""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

from desktop_helper import LIMIT, ROOT

LAUNCHER = ROOT / "Packaging/Linux/snipbench.sh"
# Stands where the program would, and prints its arguments, or does what the first one says.
STAND_IN = r"""#!/bin/sh
case ${1:-} in
    -exit) printf out; printf err >&2; exit "$2" ;;
    -wait) echo $$; exec sleep 60 ;;
    -read) exec cat ;;
esac
[ $# -eq 0 ] || printf '%s\0' "$@"
"""


class Launcher(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.prefix = self.folder / "a prefix"
        program = self.prefix / "lib/snipbench/Binaries/Linux-x64/SnipBench"
        program.parent.mkdir(parents=True)
        program.write_text(STAND_IN, encoding="utf-8")
        program.chmod(0o755)
        self.command = self.prefix / "bin/snipbench"
        self.command.parent.mkdir()
        shutil.copy2(LAUNCHER, self.command)
        # Each test says what `xdg-user-dir` is.
        self.tools = self.folder / "tools"
        self.tools.mkdir()
        for name in ("sh", "cat", "sleep", "readlink"):
            (self.tools / name).symlink_to(shutil.which(name))
        self.home = self.folder / "home"
        self.environment = {"HOME": str(self.home), "PATH": str(self.tools), "LC_ALL": "C.UTF-8"}
        self.set_home(self.home)

    def set_home(self, home):
        self.home = home
        self.home.mkdir(parents=True, exist_ok=True)
        self.environment["HOME"] = str(home)

    def set_pictures(self, text):
        tool = self.tools / "xdg-user-dir"
        tool.write_text(f'#!/bin/sh\n[ "$1" = PICTURES ] && printf "%s\\n" "{text}"\n', encoding="utf-8")
        tool.chmod(0o755)

    def start(self, *arguments, command=None, **options):
        return subprocess.run([command or self.command, *arguments], env=self.environment, timeout=LIMIT, check=False,
                              capture_output=True, **options)

    def read_arguments(self, *arguments, **options):
        result = self.start(*arguments, **options)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return [os.fsdecode(argument) for argument in result.stdout.split(b"\0")[:-1]]

    def write_configuration(self, folder=None):
        file = (folder or self.home / ".config") / "snipbench/config.json"
        file.parent.mkdir(parents=True)
        file.write_text("{}", encoding="utf-8")
        return str(file)

    def test_files_go_to_the_pictures_folder(self):
        self.set_pictures("/p/Pictures")
        self.assertEqual(self.read_arguments(), ["-o", "/p/Pictures/Screenshots"])
        self.assertEqual(self.read_arguments("-s", "true"), ["-s", "true", "-o", "/p/Pictures/Screenshots"])

    def test_without_a_pictures_folder_they_go_to_the_home(self):
        self.assertEqual(self.read_arguments(), ["-o", f"{self.home}/Screenshots"])
        self.set_pictures("")
        self.assertEqual(self.read_arguments(), ["-o", f"{self.home}/Screenshots"])
        del self.environment["HOME"]
        self.assertEqual(self.read_arguments(), ["-o", "./Screenshots"])

    def test_a_tool_that_complains_isn_t_heard(self):
        tool = self.tools / "xdg-user-dir"
        tool.write_text("#!/bin/sh\necho broken >&2\nexit 1\n", encoding="utf-8")
        tool.chmod(0o755)
        self.assertEqual(self.read_arguments(), ["-o", f"{self.home}/Screenshots"])

    def test_annotations_have_a_folder_of_their_own(self):
        self.set_pictures("/p")
        for name in ("-a", "--a", "-Annotate", "--Annotate"):
            for value in ("true", "True", "t", "yes", "false", "1"):
                folder = "Annotations" if value[0] in "tT" else "Screenshots"
                self.assertEqual(self.read_arguments(name, value)[-2:], ["-o", f"/p/{folder}"], (name, value))
        # Of an option given twice the first counts.
        self.assertEqual(self.read_arguments("-a", "false", "--Annotate", "true")[-1], "/p/Screenshots")
        self.assertEqual(self.read_arguments("-a", "true", "--Annotate", "false")[-1], "/p/Annotations")
        # The value of another option isn't one.
        self.assertEqual(self.read_arguments("-f", "a", "-t", "true")[-1], "/p/Screenshots")

    def test_a_folder_of_the_user_s_own_counts(self):
        self.set_pictures("/p")
        for name in ("-o", "--o", "-OutDirectory", "--OutDirectory"):
            self.assertEqual(self.read_arguments(name, "shots", "-s", "true")[:2], [name, "shots"])
            self.assertNotIn("/p/Screenshots", self.read_arguments(name, "shots")[:2])

    def test_blanks_and_letters_of_all_kinds(self):
        self.set_home(self.folder / "Zoë \\ $(x) *")
        file = self.write_configuration()
        self.set_pictures("/p/Meine Bilder für 写真")
        given = ["-f", "a  b\n*.png", "-cj", '{"a": "\\\\ $HOME `x`"}']
        self.assertEqual(self.read_arguments(*given), [*given, "-o", "/p/Meine Bilder für 写真/Screenshots"])
        (self.tools / "xdg-user-dir").unlink()
        self.assertEqual(self.read_arguments(), ["-c", file, "-o", f"{self.home}/Screenshots"])

    def test_configuration_only_if_it_is_there_and_none_is_given(self):
        self.set_pictures("/p")
        self.assertNotIn("-c", self.read_arguments())
        file = self.write_configuration()
        self.assertEqual(self.read_arguments("-s", "true"), ["-s", "true", "-c", file, "-o", "/p/Screenshots"])
        for name in ("-c", "--c", "-ConfigFile", "--ConfigFile", "-cj", "--cj", "-ConfigJson", "--ConfigJson"):
            self.assertNotIn(file, self.read_arguments(name, "other"), name)
        self.assertEqual(self.read_arguments("-o", "c"), ["-o", "c", "-c", file])
        Path(file).unlink()
        Path(file).mkdir()
        self.assertNotIn("-c", self.read_arguments())

    def test_configuration_of_another_folder_for_settings(self):
        self.environment["XDG_CONFIG_HOME"] = str(self.folder / "settings")
        file = self.write_configuration(self.folder / "settings")
        self.assertEqual(self.read_arguments("-o", "x"), ["-o", "x", "-c", file])

    def test_what_the_program_refuses_is_still_refused(self):
        # A value can't begin with a hyphen: what is added doesn't become one.
        self.set_pictures("/p")
        self.assertEqual(self.read_arguments("-d"), ["-d", "-o", "/p/Screenshots"])
        self.assertEqual(self.read_arguments("-a"), ["-a", "-o", "/p/Screenshots"])
        self.assertEqual(self.read_arguments("", "x"), ["", "x", "-o", "/p/Screenshots"])

    def test_codes_and_streams_are_the_program_s(self):
        for code in (0, 1, 134, 255):
            result = self.start("-exit", str(code))
            self.assertEqual((result.returncode, result.stdout, result.stderr), (code, b"out", b"err"))
        self.assertEqual(self.start("-read", input=b"in").stdout, b"in")

    def test_the_process_becomes_the_program(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGKILL):
            with subprocess.Popen([self.command, "-wait"], env=self.environment, stdout=subprocess.PIPE) as process:
                self.assertEqual(int(process.stdout.readline()), process.pid)
                process.send_signal(number)
                self.assertEqual(process.wait(LIMIT), -number)

    def test_started_through_links_and_by_the_path(self):
        link = self.folder / "link"
        link.symlink_to(self.command)
        second = self.tools / "snip"
        second.symlink_to("../link")
        for command in (link, second, "snip"):
            self.assertEqual(self.read_arguments("-o", "x", command=command), ["-o", "x"])
        self.assertEqual(self.read_arguments("-o", "x", command="./snipbench", cwd=self.command.parent), ["-o", "x"])

    def test_it_costs_a_few_milliseconds(self):
        self.set_pictures("/p")
        program = self.prefix / "lib/snipbench/Binaries/Linux-x64/SnipBench"
        program.unlink()
        program.symlink_to("/bin/true")

        def measure(command):
            times = []
            for _ in range(30):
                begin = time.perf_counter()
                subprocess.run([command, "-s", "true"], env=self.environment, check=True)
                times.append(time.perf_counter() - begin)
            return min(times)

        cost = measure(self.command) - measure(program)
        print(f"The launcher costs {1000 * cost:.1f} ms.", file=sys.stderr)
        self.assertLess(cost, 0.02)


if __name__ == "__main__":
    unittest.main()
