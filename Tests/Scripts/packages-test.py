#!/usr/bin/env python3
"""Tests of Scripts/packages.sh: which release of Debian this is, and how packages are installed."""
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parents[2] / "Scripts"


class Packages(unittest.TestCase):
    def read_release(self, text):
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "os-release"
            if text is not None:
                file.write_text(text, encoding="utf-8")
            # Variables of the same names are often exported, and aren't meant.
            environment = {**os.environ, "OS_RELEASE": str(file), "ID": "debian", "VERSION_ID": "99"}
            command = f'set -euo pipefail; . "{SCRIPTS}/packages.sh"; echo "[$(debian_release)]"'
            result = subprocess.run(["bash", "-c", command], env=environment, capture_output=True, text=True,
                                    check=True)
            return result.stdout.strip()

    def test_release_is_its_number(self):
        for number in ("12", "13"):
            text = f'PRETTY_NAME="Debian GNU/Linux {number} (name)"\nVERSION_ID="{number}"\nID=debian\n'
            self.assertEqual(self.read_release(text), f"[{number}]")

    def test_release_to_come_has_no_number(self):
        self.assertEqual(self.read_release('PRETTY_NAME="Debian GNU/Linux name/sid"\nID=debian\n'), "[]")

    def test_other_system_has_none(self):
        self.assertEqual(self.read_release('ID=other\nID_LIKE=debian\nVERSION_ID="12"\n'), "[]")

    def test_system_that_says_nothing_has_none(self):
        self.assertEqual(self.read_release(None), "[]")

    def test_no_question_is_asked(self):
        with tempfile.TemporaryDirectory() as folder:
            calls = Path(folder) / "calls"
            for name, text in (("apt-get", f'echo "$DEBIAN_FRONTEND: $*" >>"{calls}"'), ("sudo", 'exec "$@"')):
                tool = Path(folder) / name
                tool.write_text(f"#!/bin/sh\n{text}\n", encoding="utf-8")
                tool.chmod(0o755)
            environment = {**os.environ, "PATH": f"{folder}:{os.environ['PATH']}"}
            subprocess.run(["bash", "-c", f'set -euo pipefail; . "{SCRIPTS}/packages.sh"; install_packages one two'],
                           env=environment, capture_output=True, check=True)
            call = calls.read_text(encoding="utf-8").splitlines()[-1]
            self.assertTrue(call.startswith("noninteractive: install -y "), call)
            self.assertIn(" -o Dpkg::Options::=--force-confold ", call)
            self.assertTrue(call.endswith(" one two"), call)


if __name__ == "__main__":
    unittest.main()
