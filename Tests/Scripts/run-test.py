#!/usr/bin/env python3
"""./run: what it sets up, builds and starts. What stands for the scripts, cmake and the program notes its calls."""
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
NOTE = '#!/bin/sh\necho "$(basename "$0") $*" >>"$CALLS"\n'
CMAKE = NOTE + """mkdir -p "$TREE/Binaries/Linux-x64"
cp "$TREE/program" "$TREE/Binaries/Linux-x64/SnipBench"
echo "what cmake says"
"""
PROGRAM = NOTE + 'echo "the answer"\nexit 7\n'


class Run(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.tree = self.folder / "a tree"
        (self.tree / "Scripts").mkdir(parents=True)
        shutil.copy2(ROOT / "run", self.tree)
        for name in ("setup-linux.sh", "setup-windows.sh", "configure.sh", "demo.sh", "wine.sh", "package.sh"):
            self.write(self.tree / "Scripts" / name, NOTE)
        self.write(self.tree / "program", PROGRAM)
        (self.folder / "tools").mkdir()
        self.write(self.folder / "tools/cmake", CMAKE)

    @staticmethod
    def write(path, text):
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def run_it(self, *arguments, **variables):
        """(calls by name, exit code, standard output)"""
        calls = self.folder / "calls"
        calls.unlink(missing_ok=True)
        environment = {"PATH": f"{self.folder}/tools:/usr/bin:/bin", "CALLS": str(calls), "TREE": str(self.tree)}
        result = subprocess.run([self.tree / "run", *arguments], capture_output=True, text=True, check=False,
                                env={**environment, **variables}, cwd=self.folder)
        return calls.read_text(encoding="utf-8").splitlines(), result.returncode, result.stdout

    def test_on_any_desktop_it_is_the_program(self):
        for variable in ("DISPLAY", "WAYLAND_DISPLAY"):
            calls, code, output = self.run_it(**{variable: "some-0"})
            self.assertEqual(calls[0], "setup-linux.sh ")
            self.assertEqual(calls[-1], "SnipBench ")
            self.assertEqual((code, output), (7, "the answer\n"))

    def test_without_a_desktop_it_is_the_demonstration(self):
        calls, code, _ = self.run_it()
        self.assertEqual(calls[0], "setup-linux.sh --demo")
        self.assertIn("--target SnipBench SnipDemo", calls[-2])
        self.assertEqual((calls[-1], code), ("demo.sh ", 0))

    def test_options_are_the_programs_without_a_desktop_too(self):
        calls, code, output = self.run_it("-o", "a folder")
        self.assertEqual((calls[-1], code, output), ("SnipBench -o a folder", 7, "the answer\n"))

    def test_for_windows_it_starts_wine(self):
        calls, code, output = self.run_it("windows", "-h")
        self.assertEqual(calls[:2], ["setup-windows.sh ", "configure.sh windows-release -DORVIK_BUILD_TESTS=OFF"])
        self.assertEqual(calls[-1], f"wine.sh --display {self.tree}/Binaries/Windows-x64/SnipBench.exe -h")
        self.assertEqual((code, output), (0, ""))

    def test_packages_have_a_script(self):
        self.assertEqual(self.run_it("package", "linux")[0], ["package.sh linux"])


if __name__ == "__main__":
    unittest.main()
