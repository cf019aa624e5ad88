"""What the tests of installed programs share: a virtual display and the hand on it, with a limit on every wait."""
import os
import shutil
import subprocess
import sys
import time
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LIMIT = 60  # seconds, for what takes one or two


def wait_for(condition, what, limit=LIMIT):
    """The first result of `condition` that is true."""
    end = time.monotonic() + limit
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise TimeoutError(f"no {what} within {limit} s")
        time.sleep(0.05)


def missing_tools(*names):
    return [name for name in names if shutil.which(name) is None]


class Display:
    """A virtual X server; `environment` is what a program on it needs."""

    def __init__(self, size="640x480"):
        read, write = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", size + "x24", "-noreset", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as numbers:
            self.environment = {**os.environ, "DISPLAY": ":" + numbers.readline().strip()}

    def close(self):
        self._server.terminate()
        self._server.wait(LIMIT)

    def xdotool(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True, timeout=LIMIT, check=False).stdout

    def find_overlay(self):
        """The window of the overlay, once it is shown."""
        # OpenGL puts its version into the window's title, and Wine the program's name for its class.
        return (self.xdotool("search", "--onlyvisible", "--class", "^Orvik::Snipping$").split() or
                self.xdotool("search", "--onlyvisible", "--name", r"^SnipBench [0-9.]+$").split())

    def wait_for_overlay(self):
        return wait_for(self.find_overlay, "overlay")

    def drag(self, start, end):
        """Selects; the overlay takes a motion before each press and release."""
        self.xdotool("mousemove", *start, "sleep", 0.02, "mousedown", 1, "sleep", 0.02, "mousemove", *end, "sleep", 0.02,
                     "mouseup", 1)

    def press(self, *keys):
        self.xdotool("key", *keys)


SKIPPED = 77  # what ctest takes for a test that was skipped


def run_tests():
    """As `unittest.main`; ends with 77 if there was nothing but skipped tests, whose reasons are printed."""
    result = unittest.main(verbosity=2, exit=False).result
    for test, reason in result.skipped:
        print(f"skipped {test.id()}: {reason}")
    if not result.wasSuccessful():
        sys.exit(1)
    # A class that is skipped as a whole counts as one skipped and none run.
    sys.exit(SKIPPED if result.skipped and result.testsRun <= len(result.skipped) else 0)
