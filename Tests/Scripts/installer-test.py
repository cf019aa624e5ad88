#!/usr/bin/env python3
"""The installer for Windows under Wine: it installs, its entries start the program, it repairs, and leaves nothing."""
import getpass
import re
import shutil
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from desktop_helper import LIMIT, ROOT, Display, wait_for

PROGRAMS = "AppData/Local/Programs"
INSTALLER_FOLDERS = {"drive_c/windows/Installer",
                     f"drive_c/users/{getpass.getuser()}/AppData/Roaming/Microsoft/Installer"}
ENTRIES = "AppData/Roaming/Microsoft/Windows/Start Menu/Programs/SnipBench"


class Installer(unittest.TestCase):
    """One prefix of Wine's for all steps, in their order: making it takes longest."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp())
        cls.home = cls.folder / "home"
        (cls.home / "Pictures").mkdir(parents=True)
        cls.display = Display()
        cls.environment = {**cls.display.environment, "HOME": str(cls.home), "WINEPREFIX": str(cls.folder / "prefix"),
                           "XDG_CONFIG_HOME": str(cls.home / ".config"), "WINEDEBUG": "-all"}
        cls.wine("--prefix-only")
        cls.user = next(path for path in (cls.folder / "prefix/drive_c/users").iterdir() if path.name != "Public")
        [package] = (ROOT / "build").glob("SnipBench-*-Windows-x64.msi")
        cls.package = "Z:" + str(package).replace("/", "\\")

    @classmethod
    def tearDownClass(cls):
        cls.wine("--end")
        cls.display.close()
        shutil.rmtree(cls.folder)

    @classmethod
    def wine(cls, *arguments):
        # Output goes to a file: what Wine keeps running would hold a pipe open.
        with tempfile.TemporaryFile() as output:
            result = subprocess.run([ROOT / "Scripts/wine.sh", *arguments], env=cls.environment, stdout=output,
                                    stderr=output, timeout=LIMIT, check=False)
            output.seek(0)
            return result.returncode, output.read().decode(errors="replace")

    def install(self, action, *properties):
        code, output = self.wine("msiexec", action, self.package, "/qn", *properties)
        self.assertEqual(code, 0, output)

    def list_files(self):
        """Everything in the prefix, but what Wine itself keeps as temporary."""
        prefix = self.folder / "prefix"
        return {path.relative_to(prefix).as_posix() for path in prefix.rglob("*") if "Temp" not in path.parts}

    def read_registry(self):
        """Keys and values that name the program; Wine writes them to its files as it ends."""
        self.wine("--end")
        text = "".join((self.folder / "prefix" / name).read_text(encoding="utf-8", errors="replace")
                       for name in ("system.reg", "user.reg"))
        return [line for line in text.splitlines() if re.search("snipbench|orvik", line, re.IGNORECASE)]

    def start_entry(self, name):
        """Starts an entry of the Start menu and selects; returns what is in the pictures folder then."""
        before = self.list_pictures()
        entry = self.user / ENTRIES / f"{name}.lnk"
        self.assertEqual(self.wine("start", "/unix", str(entry))[0], 0)
        self.display.wait_for_overlay()
        time.sleep(0.5)  # Wine shows a window before it draws
        self.display.drag((100, 120), (180, 160))
        wait_for(lambda: {path for path in self.list_pictures() - before if path.endswith(".json")}, "JSON file")
        return self.list_pictures() - before

    def list_pictures(self):
        return {path.relative_to(self.home).as_posix() for path in (self.home / "Pictures").rglob("*.*")}

    def end_run(self):
        self.display.press("Escape")
        wait_for(lambda: not self.display.find_overlay(), "end")

    def test_steps(self):
        files = self.list_files()
        program = self.user / PROGRAMS / "SnipBench/Binaries/Windows-x64/SnipBench.exe"
        font = self.user / PROGRAMS / "SnipBench/Resources/UI/Textures/Mulish-Regular.ttf"

        with self.subTest("installs for the user alone"):
            self.install("/i")
            self.assertTrue(program.is_file())
            new = {path for path in self.list_files() - files if "/Installer" not in path}
            self.assertEqual({path for path in new if not path.startswith(f"drive_c/users/{self.user.name}/AppData/")},
                             set())
            self.assertEqual(sorted(path.name for path in (self.user / ENTRIES).iterdir()),
                             ["SnipBench annotation.lnk", "SnipBench one region.lnk", "SnipBench.lnk"])

        with self.subTest("its entries start it and the files go to the pictures folder"):
            taken = self.start_entry("SnipBench one region")
            wait_for(lambda: not self.display.find_overlay(), "end")
            self.assertEqual(sorted(re.sub(r"\{[-0-9A-F]{36}\}", "{}", path) for path in taken),
                             ["Pictures/Screenshots/{}.json", "Pictures/Screenshots/{}.png"])
            settings = self.user / "AppData/Roaming/snipbench"
            settings.mkdir()
            (settings / "config.json").write_text("no JSON", encoding="utf-8")
            taken = self.start_entry("SnipBench annotation")
            self.end_run()
            self.assertEqual(sorted(re.sub(r"\{[-0-9A-F]{36}\}", "{}", path) for path in taken),
                             ["Pictures/Annotations/{}.json", "Pictures/Annotations/{}.png"])
            log = "".join(path.read_text(encoding="utf-8") for path in self.user.glob(".orvik/Logs/*.log"))
            self.assertEqual(log.count("Configuration ignored: "), 1, log)
            shutil.rmtree(settings)
            shutil.rmtree(self.user / ".orvik")

        with self.subTest("repairs"):
            program.unlink()
            font.unlink()
            # What /f does; Wine's has no way to say it of a package.
            self.install("/i", "REINSTALL=ALL", "REINSTALLMODE=amus")
            self.assertTrue(program.is_file())
            self.assertTrue(font.is_file())

        with self.subTest("replaces one that is there"):
            # Another build of the same version is another product to Windows.
            other = self.folder / "other.msi"
            subprocess.run(["wixl", "--arch", "x64", "--output", other, "SnipBench.wxs"], check=True, timeout=LIMIT,
                           cwd=ROOT / "build/package-msi")
            self.package = "Z:" + str(other).replace("/", "\\")
            names = self.read_registry().count('"DisplayName"="SnipBench"')
            self.assertGreater(names, 0)
            self.install("/i")
            self.assertEqual(self.read_registry().count('"DisplayName"="SnipBench"'), names)
            self.assertTrue(program.is_file())

        with self.subTest("leaves nothing"):
            self.install("/x")
            # The folders that the system keeps for its installer are empty again.
            self.assertEqual(self.list_files() - files, INSTALLER_FOLDERS)
            self.assertEqual(self.read_registry(), [])
            self.assertEqual(len(self.list_pictures()), 4)


if __name__ == "__main__":
    unittest.main()
