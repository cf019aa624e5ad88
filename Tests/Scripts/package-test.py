#!/usr/bin/env python3
"""The packages for Linux, made of the built program: what is in them, what checkers say, and a snip from each.

    package-test.py PROGRAM
"""
import gzip
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from desktop_helper import LIMIT, ROOT, Display, run_tests
from installed_helper import give_own_name

PROGRAM = ROOT / sys.argv.pop(1)
METADATA = "usr/share/metainfo/invalid.orvik.snipbench.metainfo.xml"


def run(*command, timeout=LIMIT, **options):
    return subprocess.run(command, capture_output=True, text=True, timeout=timeout, check=False, **options)


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        for tool in ("rsvg-convert", "dpkg-shlibdeps", "patchelf", "man"):
            if shutil.which(tool) is None:
                raise unittest.SkipTest(f"{tool} isn't there")
        if PROGRAM != ROOT / "Binaries/Linux-x64/SnipBench":
            raise unittest.SkipTest("packages are made of the optimised program")
        cls.folder = Path(tempfile.mkdtemp())
        cls.deb, cls.archive = (cls.make(script) for script in ("package-deb.sh", "package-tar.sh"))
        cls.root = cls.folder / "root of a system"
        subprocess.run(["dpkg-deb", "--extract", cls.deb, cls.root], check=True)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    @classmethod
    def make(cls, script):
        result = run(ROOT / "Scripts" / script, timeout=2 * LIMIT)  # it compresses all that is installed
        if result.returncode != 0:
            raise RuntimeError(result.stderr)
        return Path(result.stdout.strip())

    def check(self, *command, **options):
        """The checker ends with 0 and has nothing to say."""
        if shutil.which(command[0]) is None:
            self.skipTest(f"{command[0]} isn't there")
        result = run(*command, **options)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def snip(self, prefix):
        """Where the files of a snip by the command below `prefix` go, in a home of a new user."""
        home = self.folder / "home of Zoë"
        shutil.rmtree(home, ignore_errors=True)
        (home / "Fotos").mkdir(parents=True)
        (home / ".config").mkdir()
        (home / ".config/user-dirs.dirs").write_text('XDG_PICTURES_DIR="$HOME/Fotos"\n', encoding="utf-8")
        display = Display()
        environment = {**display.environment, "HOME": str(home)}
        environment.pop("XDG_CONFIG_HOME", None)
        with subprocess.Popen([prefix / "bin/snipbench", "-s", "true"], env=environment, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", errors="replace") as process:
            display.wait_for_overlay()
            display.drag((100, 120), (180, 160))
            output, errors = process.communicate(timeout=LIMIT)
        display.close()
        self.assertEqual((process.returncode, errors), (0, ""), output)
        return sorted(re.sub(r"\{.*\}", "{}", path.relative_to(home).as_posix()) for path in home.rglob("{*"))

    def test_lintian(self):
        # Kinds below: the font stands among the program's resources; words that are parts of binary data.
        self.check("lintian", "--allow-root", "--fail-on", "error,warning", "--tag-display-limit", "0", self.deb)

    def test_desktop_entry(self):
        self.check("desktop-file-validate", self.root / "usr/share/applications/snipbench.desktop")

    # KWin looks for the entry whose whole "Exec" is the path of the program that asks.
    def test_desktop_entry_for_kwin(self):
        entry = self.root / "usr/share/applications/snipbench-kwin.desktop"
        values = dict(line.split("=", 1) for line in entry.read_text(encoding="utf-8").splitlines() if "=" in line)
        self.assertEqual(values["X-KDE-DBUS-Restricted-Interfaces"], "org.kde.KWin.ScreenShot2")
        self.assertEqual(values["NoDisplay"], "true")
        self.assertTrue(os.access(self.root / values["Exec"].removeprefix("/"), os.X_OK), values["Exec"])
        self.check("desktop-file-validate", entry)

    def check_metadata(self, file, homepage):
        text = file.read_text(encoding="utf-8")
        self.assertIn(f'<url type="homepage">{homepage}</url>', text)
        pictures = re.findall(rf"<image>{homepage}/(.*)</image>", text)
        self.assertEqual(len(pictures), 3)
        for picture in pictures:
            self.assertTrue((ROOT / picture).is_file(), picture)
        if shutil.which("appstreamcli") is None:
            self.skipTest("appstreamcli isn't there")
        result = run("appstreamcli", "validate", "--no-net", file)
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertNotRegex(result.stdout, r"(?m)^[EW]: ")

    def test_metadata(self):
        self.check_metadata(self.root / METADATA, "https://orvik.invalid/snipbench")

    def test_metadata_of_a_release(self):
        stage = self.folder / "stage"
        subprocess.run([ROOT / "Scripts/stage-linux.sh", stage], check=True, timeout=LIMIT,
                       env={**os.environ, "ORVIK_HOMEPAGE": "https://example.org/tree"})
        self.check_metadata(stage / METADATA.removeprefix("usr/"), "https://example.org/tree")

    def test_shell_scripts(self):
        scripts = [ROOT / "run", ROOT / "test", *(ROOT / "Scripts").glob("*.sh"), ROOT / "Examples/snip.sh",
                   ROOT / "Packaging/Linux/snipbench.sh"]
        self.check("shellcheck", "--exclude=SC1090,SC1091,SC2015,SC2148,SC2154", *scripts)

    def test_completions_are_clean(self):
        for command in ("snipbench", "snipbench-data"):
            self.check("shellcheck", "-s", "bash", self.root / "usr/share/bash-completion/completions" / command)

    def test_the_manual_page_of_the_second_program_is_clean(self):
        page = self.root / "usr/share/man/man1/snipbench-data.1.gz"
        result = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        text = gzip.decompress(page.read_bytes()).decode()
        for verb in ("check", "crop", "mask", "draw", "sheet", "export", "import", "stats", "find"):
            self.assertIn(f".SS {verb}\n", text)

    def test_the_second_program_needs_no_library_of_a_desktop(self):
        libraries = run("ldd", self.root / "usr/lib/snipbench/Binaries/Linux-x64/snipbench-data").stdout
        self.assertNotRegex(libraries, "libX|libEGL|libGL|libOpenGL|libxcb|libwayland")
        self.assertNotIn("not found", libraries)

    def test_the_library_of_the_message_bus_is_loaded_only_where_it_is_asked(self):
        libraries = run("ldd", self.root / "usr/lib/snipbench/Binaries/Linux-x64/SnipBench").stdout
        self.assertNotIn("libsystemd", libraries)
        self.assertIn("libwayland-client", libraries)

    def test_the_second_program_draws_with_the_packages_font(self):
        folder = self.folder / "empty"
        folder.mkdir(exist_ok=True)
        result = run(self.root / "usr/bin/snipbench-data", "draw", folder, folder / "out", env={})
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_layout(self):
        usr = self.root / "usr"
        for path in ("bin/snipbench", "lib/snipbench/Binaries/Linux-x64/SnipBench",
                     "bin/snipbench-data", "lib/snipbench/Binaries/Linux-x64/snipbench-data",
                     "share/man/man1/snipbench-data.1.gz", "share/bash-completion/completions/snipbench-data",
                     "share/zsh/vendor-completions/_snipbench-data",
                     "share/fish/vendor_completions.d/snipbench-data.fish", "share/doc/snipbench/DataSets.md",
                     "lib/snipbench/Resources/UI/Textures/Mulish-Regular.ttf", "share/man/man1/snipbench.1.gz",
                     "share/bash-completion/completions/snipbench", "share/zsh/vendor-completions/_snipbench",
                     "share/fish/vendor_completions.d/snipbench.fish", "share/doc/snipbench/copyright",
                     "share/doc/snipbench/UserGuide.md", "share/icons/hicolor/scalable/apps/snipbench.svg"):
            self.assertTrue((usr / path).is_file(), path)
        for icon in usr.glob("share/icons/hicolor/*x*/apps/snipbench.png"):
            size = int(icon.parts[-3].partition("x")[0])
            self.assertEqual(icon.read_bytes()[16:24], 2 * size.to_bytes(4, "big"))
        resources = {path.relative_to(ROOT / "Resources") for path in (ROOT / "Resources").rglob("*")}
        installed = {path.relative_to(usr / "lib/snipbench/Resources")
                     for path in (usr / "lib/snipbench/Resources").rglob("*")}
        self.assertEqual({path.name for path in resources - installed}, {"Mulish-LICENSE.txt"})

    def test_links_of_the_pages_lead_to_files(self):
        documents = self.root / "usr/share/doc/snipbench"
        count = 0
        for page in documents.glob("*.md"):
            for target in re.findall(r"\]\(([^)#]+)\)", page.read_text(encoding="utf-8")):
                self.assertTrue((page.parent / target).exists(), f"{page.name}: {target}")
                count += 1
        self.assertGreater(count, 30)

    def test_depends_on_what_it_is_linked_with(self):
        depends = run("dpkg-deb", "--field", self.deb, "Depends").stdout
        for library in ("libc6", "libfmt", "libx11-6", "libegl1", "libpng16-16"):
            self.assertIn(library, depends)

    def check_supply_list(self, prefix, bundled):
        """Each library that a program names is a component with a version and a licence, and so is what isn't linked."""
        document = json.loads((prefix / "share/doc/snipbench/sbom.cdx.json").read_text(encoding="utf-8"))
        self.assertEqual((document["bomFormat"], document["specVersion"]), ("CycloneDX", "1.5"))
        self.assertEqual(document["metadata"]["component"]["name"], "SnipBench")
        components = {component["name"]: component for component in document["components"]}
        needed = set()
        for program in (prefix / "lib/snipbench/Binaries/Linux-x64").iterdir():
            needed |= set(re.findall(r"\(NEEDED\).*\[(.+)\]", run("readelf", "-dW", program).stdout))
        # Of the C library's package, the loader has no line of its own in what is linked.
        self.assertGreater(len(needed), 15)
        self.assertLessEqual(needed - {"ld-linux-x86-64.so.2"}, set(components))
        self.assertLessEqual({"RapidJSON", "KISS FFT", "Mulish", "wayland-protocols"}, set(components))
        for component in components.values():
            self.assertTrue(component["version"] and component["licenses"] and component["purl"], component["name"])
        places = {name: {entry["name"]: entry["value"] for entry in component["properties"]}["orvik:place"]
                  for name, component in components.items()}
        inside = {name for name, place in places.items() if place == "in the package"}
        self.assertEqual({re.sub(r"\.so\..*", "", name) for name in inside}, bundled | {"Mulish"})

    def test_supply_list_of_the_package(self):
        self.check_supply_list(self.root / "usr", set())

    def test_supply_list_of_the_archive(self):
        folder = self.folder / "archive for its list"
        folder.mkdir()
        subprocess.run(["tar", "-xzf", self.archive, "-C", folder], check=True)
        self.check_supply_list(next(folder.iterdir()), {"libfmt", "libdeflate"})

    def test_the_same_again(self):
        before = self.deb.read_bytes()
        self.make("package-deb.sh")
        self.assertEqual(self.deb.read_bytes(), before)

    def test_snip_of_the_package(self):
        usr = self.root / "usr"
        give_own_name(usr)
        self.assertEqual(self.snip(usr), ["Fotos/Screenshots/{}.json", "Fotos/Screenshots/{}.png"])

    def test_snip_of_the_archive_wherever_it_is(self):
        for place in ("here", "and there, ünder"):
            folder = self.folder / place
            folder.mkdir()
            subprocess.run(["tar", "-xzf", self.archive, "-C", folder], check=True)
            [prefix] = folder.iterdir()
            give_own_name(prefix)
            self.assertEqual(self.snip(prefix), ["Fotos/Screenshots/{}.json", "Fotos/Screenshots/{}.png"])
        for program in ("SnipBench", "snipbench-data"):
            libraries = run("ldd", prefix / "lib/snipbench/Binaries/Linux-x64" / program).stdout
            self.assertRegex(libraries, r"libfmt\.so\.\d+ => .*/and there, ünder/.*/Libraries/")
            self.assertNotIn("not found", libraries)


if __name__ == "__main__":
    run_tests()
