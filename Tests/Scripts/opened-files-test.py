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

# The table of the page: what it names, and the paths that it means. HERE is the installation, HOME the user's, OUT the
# output folder.
LISTED = {
    "libraries": r"/(usr/)?(local/)?lib(64|32)?/.*",
    "`/etc/ld.so.cache`": r"/etc/ld\.so\.cache",
    "`/etc/ld.so.preload`": r"/etc/ld\.so\.preload",
    "`/proc`": r"/proc(/.*)?",
    "`/sys/devices/system/cpu`": r"/sys/devices/system/cpu/.*",
    "`Resources`": r"HERE(/lib/snipbench)?/Resources/.*",
    "`/usr/share/X11`": r"/usr/share/X11/.*",
    "icons of pointers below `/usr/share`": r"/usr/share/(icons|pixmaps)/.*",
    "`~/.icons`": r"HOME/\.icons.*",
    "`~/.Xdefaults`": r"HOME/\.Xdefaults",
    "`~/.Xdefaults-<host>`": r"HOME/\.Xdefaults-[^/]*",
    "the locale's and the time zone's files": r"/usr/share/(locale|zoneinfo)/.*|/etc/localtime",
    "`~/.Xauthority`": r"HOME/\.Xauthority",
    "the output folder": r"OUT(/.*)?",
    "`~/.orvik/Logs`": r"HOME/\.orvik(/.*)?",
    "`~/.cache`": r"HOME/\.cache(/.*)?",
    "`/dev/shm`": r"/dev/shm(/.*)?",
    "memory without a name": r"/memfd.*",
}
OF_OPENGL = {
    "drivers of OpenGL": r"/(usr/share|usr/local/share|etc)/(glvnd|egl|drirc|drirc\.d)(/.*)?",
    "the home directory": r"HOME(/\.drirc)?",
    "`/sys`": r"/sys/.*",
    "`/run/udev`": r"/run/udev/.*",
    "`/dev/dri`": r"/dev/dri.*",
    "`/dev/udmabuf`": r"/dev/udmabuf",
    "`/etc/passwd`": r"/etc/passwd",
    "`/etc/group`": r"/etc/group",
    "`/etc/nsswitch.conf`": r"/etc/nsswitch\.conf",
}
PAGE = "Docs/Support.md"
WRITTEN = [LISTED[name] for name in ("the output folder", "`~/.orvik/Logs`", "`/dev/shm`")]
WRITTEN_OF_OPENGL = [LISTED["`~/.cache`"], OF_OPENGL["`/dev/dri`"], OF_OPENGL["`/dev/udmabuf`"]]
DISPLAY_SOCKET = r"@?/tmp/\.X11-unix/X\d+"
OPEN_FOR_WRITING = re.compile(r"O_(WRONLY|RDWR|CREAT|TRUNC|APPEND)")


class OpenedFiles:
    """What each way of drawing may do; `renderer` chooses the way, `sockets` are what it may connect to;
    `read_too` and `written_too` are patterns of paths."""

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
        """Each file that a call has opened, made or looked for in vain, with whether it was for writing."""
        for line in self.lines:
            if "<unfinished" in line:
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
        self.assert_listed(read, [*LISTED.values(), *self.read_too])

    def test_files_that_are_written(self):
        written = [path for path, writes in self.list_opened() if writes]
        self.assertGreaterEqual(len([path for path in written if path.startswith("OUT/")]), 2)
        self.assert_listed(written, [*WRITTEN, *self.written_too])

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


class ThePage(unittest.TestCase):
    """Names what the patterns here mean, and nothing else."""

    def test_the_page_lists_the_same(self):
        text = (ROOT / PAGE).read_text(encoding="utf-8").split("## What a run opens")[1].split("##")[0]
        table = "\n".join(line for line in text.splitlines() if line.startswith("|"))
        names = [*LISTED, *OF_OPENGL]
        self.assertEqual([name for name in names if name not in table], [])
        paths = set(re.findall(r"`[~/][^`]*`", table.replace("below `/usr/share`, `/etc` and", "below")))
        self.assertEqual([path for path in paths if not any(path in name for name in names)], [])


class ByTheProgramItself(OpenedFiles, unittest.TestCase):
    renderer = "raster"
    sockets = [DISPLAY_SOCKET]
    read_too = written_too = ()


class ByOpenGL(OpenedFiles, unittest.TestCase):
    renderer = "opengl"
    sockets = [DISPLAY_SOCKET, r"/run/dbus/.*", r"/(var/)?run/nscd/socket"]
    read_too = OF_OPENGL.values()
    written_too = WRITTEN_OF_OPENGL


if __name__ == "__main__":
    run_tests()
