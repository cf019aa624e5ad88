#!/usr/bin/env python3
"""Tests of Scripts/count-instructions.py, with a counter and a program of which only the answers are there."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "Scripts/count-instructions.py"


class CountInstructions(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.root = Path(scratch.name)
        self.baseline = self.root / "instructions.txt"
        bash = shutil.which("bash")
        # The counter's number of a row stands in a file of the row's name.
        self.add_program("valgrind", f'#!{bash}\nread -r number <"{self.root}/${{!#}}.count"\n'
                                     '[ "$number" != broken ] || { echo "no such row" >&2; exit 1; }\n'
                                     'echo "==7== Collected : $number" >&2\n')
        self.add_program("Rows", f'#!{bash}\nif [ "${{1:-}}" = --compiler ]; then echo "GNU 12"; exit; fi\n'
                                 'printf "one\\ntwo\\n"\n')
        self.set_counts(one=1000, two=2000)

    def add_program(self, name, text):
        path = self.root / name
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def set_counts(self, **counts):
        for row, number in counts.items():
            (self.root / f"{row}.count").write_text(f"{number}\n", encoding="utf-8")

    def store(self, *lines):
        self.baseline.write_text("\n".join(("# a comment", *lines)) + "\n", encoding="utf-8")

    def run_script(self, *options):
        return subprocess.run([sys.executable, SCRIPT, *options, self.root / "Rows", self.baseline],
                              env={"PATH": str(self.root)}, capture_output=True, text=True, check=False)

    def check(self, returncode, last_line, *options):
        result = self.run_script(*options)
        self.assertEqual(result.returncode, returncode, result.stdout + result.stderr)
        self.assertEqual(result.stdout.splitlines()[-1], last_line)
        return result.stdout

    def test_equal_counts_pass(self):
        self.store("compiler: GNU 12", "one: 1000", "two: 2000")
        self.assertNotIn("--renew", self.check(0, "2 passed, 0 failed"))

    def test_up_to_five_percent_more_pass(self):
        self.store("compiler: GNU 12", "one: 1000", "two: 2000")
        self.set_counts(one=1050)
        self.check(0, "2 passed, 0 failed")

    def test_more_than_that_fails_by_name(self):
        self.store("compiler: GNU 12", "one: 1000", "two: 2000")
        self.set_counts(two=2101)
        output = self.check(1, "1 passed, 1 failed")
        self.assertIn("More than 5 % more instructions than stored: two\n", output)
        self.assertNotIn("than stored: one", output)

    def test_fewer_pass_with_a_hint(self):
        self.store("compiler: GNU 12", "one: 1000", "two: 2000")
        self.set_counts(one=949)
        self.assertIn("--renew", self.check(0, "2 passed, 0 failed"))

    def test_row_that_is_not_stored_is_skipped_with_a_hint(self):
        self.store("compiler: GNU 12", "one: 1000")
        self.assertIn("--renew", self.check(0, "1 passed, 0 failed, 1 skipped"))

    def test_row_that_is_gone_gives_a_hint(self):
        self.store("compiler: GNU 12", "one: 1000", "two: 2000", "three: 3000")
        self.assertIn("--renew", self.check(0, "2 passed, 0 failed"))

    def test_other_compiler_fails_on_nothing(self):
        for compiler in ("GNU 13", "GNU 1", "Clang 12"):
            with self.subTest(compiler=compiler):
                self.store(f"compiler: {compiler}", "one: 10", "two: 20")
                self.assertIn(f"are of {compiler}", self.check(0, "0 passed, 0 failed, 2 skipped"))

    def test_renewed_counts_are_those_of_the_next_run(self):
        self.store("compiler: GNU 13", "one: 1", "three: 3")
        self.check(0, "2 passed, 0 failed", "--renew")
        self.assertEqual([line for line in self.baseline.read_text(encoding="utf-8").splitlines()
                          if not line.startswith("#")], ["compiler: GNU 12", "one: 1000", "two: 2000"])
        self.check(0, "2 passed, 0 failed")

    def test_row_that_can_not_be_counted_fails(self):
        self.store("compiler: GNU 12", "one: 1000", "two: 2000")
        for number in ("broken", "0"):
            with self.subTest(number=number):
                self.set_counts(two=number)
                self.assertNotEqual(self.run_script().returncode, 0)


if __name__ == "__main__":
    unittest.main()
