#!/usr/bin/env python3
"""What a run opens and connects to: nothing beyond the list in Docs/Support.md, and nothing of the network.

    opened-files-test.py PROGRAM

Skipped where strace isn't there, or may not look at a process.
"""
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

from desktop_helper import LIMIT, ROOT, missing_tools, run_tests
from installed_helper import Installed

PROGRAM = ROOT / sys.argv.pop(1)

# The list of the page, as patterns of whole paths; HERE is the installation, HOME the user's, OUT the output folder.
READ = [
    r"/(usr/)?lib(64|32)?/.*", r"/etc/ld\.so\.(cache|preload)", r"/proc(/.*)?", r"/sys/.*", r"/dev/(null|urandom|dri.*)",
    r"/usr/share/(X11|icons|glvnd|drirc\.d|locale|zoneinfo|egl)(/.*)?", r"/etc/(drirc|localtime|nsswitch\.conf|passwd|group)",
    r"/etc/glvnd(/.*)?", r"/usr/local/(lib|share|etc)/.*", r"HERE(/.*)?", r"HOME/\.Xauthority", r"HOME/\.drirc",
    r"HOME/\.icons.*", r"HOME/\.cache(/.*)?", r"HOME", r"/run/udev/.*", r"/dev/shm(/.*)?", r"WORK(/.*)?", r"/memfd.*", r"/", r"OUT(/.*)?",
    r"HOME/\.orvik(/.*)?",
]
WRITTEN = [r"HOME/\.orvik(/.*)?", r"OUT(/.*)?", r"/dev/(null|dri.*)", r"/proc/self/.*", r"HOME/\.cache(/.*)?",
           r"/dev/shm(/.*)?"]
DISPLAY_SOCKET = r"@?/tmp/\.X11-unix/X\d+"
OPEN_FOR_WRITING = re.compile(r"O_(WRONLY|RDWR|CREAT|TRUNC|APPEND)")


class OpenedFiles:
    """What each way of drawing may do; `renderer` chooses the way, `sockets` are what it may connect to."""

    @classmethod
    def setUpClass(cls):
        missing = missing_tools("strace", "xdotool")
        if missing:
            raise unittest.SkipTest(f"{missing[0]} isn't there")
        if subprocess.run(["strace", "-o", "/dev/null", "true"], check=False, capture_output=True).returncode != 0:
            raise unittest.SkipTest("strace may not look at a process")
        cls.installed = Installed(PROGRAM)
        cls.lines = cls.trace()

    @classmethod
    def tearDownClass(cls):
        cls.installed.close()

    @classmethod
    def trace(cls):
        """The calls of a run that snips the screen."""
        here = cls.installed
        log = here.folder / "calls"
        program = next((here.prefix / "lib/snipbench/Binaries/Linux-x64").glob("Snip????????"))
        cls.output = here.folder / "output"
        command = ["strace", "-f", "-qq", "-s", "4096", "-o", log, "-e", "trace=%file,socket,connect,bind,sendto,execve",
                   program, "-s", "true", "-o", cls.output]
        # The driver takes the home from the list of users, unless the cache is named.
        environment = {**here.environment, "ORVIK_RENDERER": cls.renderer, "XDG_CACHE_HOME": str(here.home / ".cache")}
        with subprocess.Popen(command, env=environment, cwd=here.work, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              encoding="utf-8") as process:
            try:
                here.display.wait_for_overlay()
                cls.drag_until_it_ends(process)
                output, errors = process.communicate(timeout=LIMIT)
            except BaseException:
                process.kill()
                raise
        if process.returncode != 0 or len(list(cls.output.glob("*.png"))) != 1:
            raise RuntimeError(f"the run failed: {process.returncode} {output} {errors}")
        return log.read_text(encoding="utf-8", errors="replace").splitlines()

    @classmethod
    def drag_until_it_ends(cls, process):
        """Traced, and with OpenGL in software, the overlay is there long before it takes a drag."""
        for _ in range(LIMIT):
            cls.installed.display.drag((100, 120), (180, 160))
            try:
                process.wait(timeout=1)
                return
            except subprocess.TimeoutExpired:
                pass

    def name(self, path):
        """With the test's own folders by their names on the list."""
        path = re.sub(r"/(\./)+", "/", path)
        here = self.installed
        for folder, name in ((self.output, "OUT"), (here.home, "HOME"), (here.work, "WORK"), (here.prefix, "HERE"),
                             (ROOT / "Resources", "HERE")):
            if path == str(folder) or path.startswith(f"{folder}/"):
                return name + path[len(str(folder)):]
        return path

    def list_opened(self):
        """Each file that a call has opened or made, with whether it was for writing."""
        for line in self.lines:
            if " = -1 " in line or "<unfinished" in line:
                continue
            opened = re.search(r'\bopen(?:at)?\((?:AT_FDCWD, |\d+, )?"([^"]*)", ([A-Z_|]+)', line)
            if opened and opened[1].startswith("/"):
                yield self.name(opened[1]), bool(OPEN_FOR_WRITING.search(opened[2]))
            made = re.search(r'\b(?:mkdir|rename|unlink|creat|symlink|link|rmdir)(?:at2?)?\((?:AT_FDCWD, )?"([^"]*)"', line)
            if made and made[1].startswith("/"):
                yield self.name(made[1]), True

    def assert_listed(self, paths, patterns):
        unknown = sorted({path for path in paths if not any(re.fullmatch(pattern, path) for pattern in patterns)})
        self.assertEqual(unknown, [])

    def test_files_that_are_read(self):
        read = [path for path, writes in self.list_opened() if not writes]
        self.assertGreater(len(read), 20)
        self.assert_listed(read, READ)

    def test_files_that_are_written(self):
        written = [path for path, writes in self.list_opened() if writes]
        self.assertGreaterEqual(len([path for path in written if path.startswith("OUT/")]), 2)
        self.assert_listed(written, WRITTEN)

    def test_nothing_is_connected_but_the_display(self):
        families = {match[1] for line in self.lines if (match := re.search(r"\bsocket\((\w+),", line))}
        self.assertIn("AF_UNIX", families)
        self.assertLessEqual(families, {"AF_UNIX", "AF_NETLINK"})
        connected = [match[1] for line in self.lines
                     if (match := re.search(r'\bconnect\(.*sun_path=(@?"[^"]*")', line))]
        self.assert_listed([path.replace('"', "") for path in connected], self.sockets)
        self.assertNotIn("AF_INET", "\n".join(self.lines))

    def test_no_program_is_started(self):
        started = [line for line in self.lines if "execve(" in line]
        self.assertEqual(len(started), 1, started)


class ByTheProgramItself(OpenedFiles, unittest.TestCase):
    renderer = "raster"
    sockets = [DISPLAY_SOCKET]


class ByOpenGL(OpenedFiles, unittest.TestCase):
    renderer = "opengl"
    sockets = [DISPLAY_SOCKET, r"/run/dbus/.*", r"/(var/)?run/nscd/socket"]


if __name__ == "__main__":
    run_tests()
