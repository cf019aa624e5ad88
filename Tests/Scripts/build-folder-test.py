#!/usr/bin/env python3
"""Scripts/configure.sh: which build folder is configured, kept, and made anew. What stands for cmake notes its calls."""
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
CMAKE = """#!/bin/sh
echo "cmake $*" >>calls
mkdir -p build/some-preset
echo "CMAKE_HOME_DIRECTORY:INTERNAL=$(pwd -P)" >build/some-preset/CMakeCache.txt
: >build/some-preset/build.ninja
"""


class BuildFolder(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.tools = self.folder / "tools"
        self.tools.mkdir()
        (self.tools / "cmake").write_text(CMAKE, encoding="utf-8")
        (self.tools / "cmake").chmod(0o755)
        self.tree = self.folder / "a tree"
        (self.tree / "Scripts").mkdir(parents=True)
        shutil.copy2(ROOT / "Scripts/configure.sh", self.tree / "Scripts")

    def configure(self, *arguments, tree=None):
        """(calls of cmake, standard error) of one call."""
        tree = tree or self.tree
        (tree / "calls").unlink(missing_ok=True)
        result = subprocess.run([tree / "Scripts/configure.sh", *arguments], capture_output=True, text=True, check=True,
                                env={"PATH": f"{self.tools}:/usr/bin:/bin"}, cwd=self.folder)
        calls = tree / "calls"
        return calls.read_text(encoding="utf-8").splitlines() if calls.exists() else [], result.stderr

    def test_is_configured_once(self):
        self.assertEqual(self.configure("some-preset", "-DA=1"), (["cmake --preset some-preset -DA=1"], ""))
        self.assertEqual(self.configure("some-preset", "-DA=1"), ([], ""))
        self.assertEqual(self.configure("--always", "some-preset", "-DA=2"), (["cmake --preset some-preset -DA=2"], ""))

    def test_one_that_was_cut_off_is_configured_again(self):
        self.configure("some-preset")
        (self.tree / "build/some-preset/build.ninja").unlink()
        self.assertEqual(self.configure("some-preset")[0], ["cmake --preset some-preset"])

    def test_of_a_tree_that_moved_or_was_copied_is_made_anew(self):
        for method in (shutil.copytree, shutil.move):
            shutil.rmtree(self.tree / "build", ignore_errors=True)
            self.configure("some-preset")
            (self.tree / "build/some-preset/old.o").touch()
            (self.tree / "build/other").mkdir()
            other = self.folder / f"other, {method.__name__}"
            method(self.tree, other)
            calls, said = self.configure("some-preset", tree=other)
            self.assertEqual(calls, ["cmake --preset some-preset"])
            self.assertEqual(said, "The folder build/some-preset was made for a tree in another place. "
                                   "It is made anew.\n")
            self.assertFalse((other / "build/some-preset/old.o").exists())
            self.assertTrue((other / "build/other").exists())
            self.assertEqual(self.configure("some-preset", tree=other), ([], ""))
            self.assertTrue(method is shutil.move or (self.tree / "build/some-preset/old.o").exists())

    def test_the_same_place_by_another_name_is_kept(self):
        self.configure("some-preset")
        link = self.folder / "link"
        link.symlink_to(self.tree)
        cache = self.tree / "build/some-preset/CMakeCache.txt"
        cache.write_text(f"CMAKE_HOME_DIRECTORY:INTERNAL={link}\n", encoding="utf-8")
        self.assertEqual(self.configure("some-preset"), ([], ""))

    def test_every_script_configures_by_it(self):
        for script in [ROOT / "run", ROOT / "test", *(ROOT / "Scripts").glob("*.sh")]:
            if script.name != "configure.sh":
                self.assertNotIn("cmake --preset", script.read_text(encoding="utf-8"), script.name)


if __name__ == "__main__":
    unittest.main()
