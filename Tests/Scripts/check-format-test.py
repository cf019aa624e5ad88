#!/usr/bin/env python3
"""Tests of Scripts/check-format.sh, with formatters of which only the version and the answer are there."""
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "Scripts/check-format.sh"
TOOLS = ("bash", "dirname", "env", "find", "xargs")
PINNED = 14
SKIPPED = 77


class CheckFormat(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = Path(scratch.name)
        for folder in ("Scripts", "Source", "Tests", "bin"):
            (self.root / folder).mkdir()
        shutil.copy(SCRIPT, self.root / "Scripts")
        (self.root / "Source/A.cpp").touch()
        (self.root / "Tests/B.h").touch()
        for tool in TOOLS:
            (self.root / "bin" / tool).symlink_to(shutil.which(tool))

    def add_formatter(self, name, major, result=0):
        """It writes the files that it is given into a list beside it."""
        path = self.root / "bin" / name
        path.write_text(f'#!{shutil.which("bash")}\n'
                        f'if [ "$1" = --version ]; then echo "Debian clang-format version {major}.0.6"; exit; fi\n'
                        f'printf "%s\\n" "$@" >>"$0.list"\nexit {result}\n', encoding="utf-8")
        path.chmod(0o755)

    def check(self):
        return subprocess.run([self.root / "Scripts/check-format.sh"], env={"PATH": str(self.root / "bin")},
                              capture_output=True, text=True, check=False)

    def read_files(self, name):
        """The files that a formatter has been given; none if it hasn't been asked to format."""
        path = self.root / "bin" / (name + ".list")
        lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        return sorted(line for line in lines if not line.startswith("--"))

    def test_pinned_version_checks_every_source(self):
        self.add_formatter("clang-format", PINNED)
        self.assertEqual(self.check().returncode, 0)
        self.assertEqual(self.read_files("clang-format"), ["Source/A.cpp", "Tests/B.h"])

    def test_source_of_another_format_fails(self):
        self.add_formatter("clang-format", PINNED, result=1)
        self.assertNotIn(self.check().returncode, (0, SKIPPED))

    def test_other_version_is_skipped_by_name(self):
        for major in (PINNED - 1, PINNED + 5, PINNED * 10):
            with self.subTest(major=major):
                self.add_formatter("clang-format", major, result=1)
                result = self.check()
                self.assertEqual(result.returncode, SKIPPED)
                self.assertIn(f"clang-format {PINNED} alone", result.stdout)
                self.assertIn(f"version {major}.0.6", result.stdout)
                self.assertEqual(self.read_files("clang-format"), [])

    def test_pinned_version_is_found_beside_another(self):
        self.add_formatter("clang-format", PINNED + 5, result=1)
        self.add_formatter(f"clang-format-{PINNED}", PINNED)
        self.assertEqual(self.check().returncode, 0)
        self.assertEqual(self.read_files(f"clang-format-{PINNED}"), ["Source/A.cpp", "Tests/B.h"])

    def test_no_formatter_fails(self):
        self.assertNotIn(self.check().returncode, (0, SKIPPED))


if __name__ == "__main__":
    unittest.main()
