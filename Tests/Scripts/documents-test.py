#!/usr/bin/env python3
"""The manual page, the completions and the user's pages against what the program says of itself.

    documents-test.py PROGRAM
"""
import importlib.util
import json
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from desktop_helper import ROOT, run_tests

PROGRAM = ROOT / sys.argv.pop(1)
sys.path.insert(0, str(ROOT / "Scripts"))
MAKE_HELP = importlib.util.spec_from_file_location("make_help", ROOT / "Scripts/make-help.py")
make_help = importlib.util.module_from_spec(MAKE_HELP)
MAKE_HELP.loader.exec_module(make_help)
import help_files  # noqa: E402: among the scripts

OPTIONS = make_help.read_options(PROGRAM)
CODES = make_help.read_codes(PROGRAM)
PAGES = [ROOT / "README.md", *sorted((ROOT / "Docs").glob("*.md"))]


def read(name):
    return (ROOT / name).read_text(encoding="utf-8")


def read_table(text, head):
    """The rows of the Markdown table whose first line is that, cell by cell."""
    lines = text[text.index(head):].splitlines()[2:]
    rows = []
    for line in lines:
        if not line.startswith("|"):
            break
        rows.append([cell.strip() for cell in line[1:-1].split("|")])
    return rows


class Generated(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp())
        subprocess.run([ROOT / "Scripts/make-help.py", PROGRAM, cls.folder, "2026-11-22"], check=True)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def need(self, *tools):
        for tool in tools:
            if shutil.which(tool) is None:
                self.skipTest(f"{tool} isn't there")

    def run_tool(self, *command, **options):
        return subprocess.run(command, capture_output=True, text=True, timeout=60, check=True, cwd=self.folder,
                              **options).stdout

    def complete_in_bash(self, *words):
        script = ('. ./snipbench.bash; compopt() { :; }; COMP_WORDS=(snipbench "$@"); COMP_CWORD=$#; _snipbench; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        return self.run_tool("bash", "-c", script, "bash", *words).split("\n")[:-1]

    def test_there_are_twelve_options_and_six_codes(self):
        self.assertEqual((len(OPTIONS), len(CODES)), (12, 6))

    def test_manual_page_is_clean(self):
        self.need("man")
        result = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", self.folder / "snipbench.1"],
                                capture_output=True, text=True, check=True, env={"LC_ALL": "C.UTF-8", "PATH":
                                                                                 "/usr/bin:/bin", "MANROFFSEQ": ""})
        self.assertEqual(result.stderr, "")

    def test_manual_page_has_the_options_and_codes(self):
        text = (self.folder / "snipbench.1").read_text(encoding="utf-8").replace("\\-", "-")
        section = text[text.index(".SH OPTIONS"):text.index(".SH KEYS")]
        entries = re.findall(r"^\.TP\n\\fB-(\w+)\\fR, \\fB-(\w+)\\fR(?: \\fI(.+)\\fR)?\n(.*)\.\n(?:Default: (.*)\.\n)?",
                             section, re.MULTILINE)
        self.assertEqual([(name, short, text, default) for name, short, _, text, default in entries],
                         [(option.name, option.short, option.description, option.default or "") for option in OPTIONS])
        self.assertEqual([bool(value) for _, _, value, _, _ in entries],
                         [option.default is not None for option in OPTIONS])
        section = text[text.index(".SH EXIT STATUS"):text.index(".SH STANDARD OUTPUT")]
        codes = re.findall(r"^\\fB(-?\d+)\\fR \(in a shell (\d+)\)\n(.*)$", section, re.MULTILINE)
        self.assertEqual([(int(code), int(low), name) for code, low, name in codes],
                         [(code, code & 0xFF, name) for code, name in CODES])

    def test_manual_page_names_the_members_of_the_formats(self):
        text = (self.folder / "snipbench.1").read_text(encoding="utf-8")
        section = text[text.index(".SH FORMATS"):text.index(".SH ENVIRONMENT")]
        named = {part for word in re.findall(r"^\.BR? (\S+)", section, re.MULTILINE) for part in word.split(".")}
        members = set()
        for schema in ("Snip", "Annotations"):
            for path in list_members(json.loads(read(f"Docs/Schemas/{schema}.json"))):
                members.update(path.replace("[]", "").split("."))
        self.assertEqual(members - named, {"image", "size"} - named)

    def test_bash_completes(self):
        self.need("bash")
        names = [word for option in OPTIONS for word in (f"-{option.name}", f"-{option.short}")]
        self.assertEqual(self.complete_in_bash("-"), names)
        self.assertEqual(self.complete_in_bash("-s", "true", "-De"), ["-Delay"])
        self.assertEqual(self.complete_in_bash("--"), [f"--{option.name}" for option in OPTIONS])
        self.assertEqual(self.complete_in_bash("-s", "true", "--De"), ["--Delay"])
        (self.folder / "a picture.png").touch()
        (self.folder / "other.txt").touch()
        (self.folder / "a folder").mkdir()
        for option in OPTIONS:
            for name in (option.name, option.short):
                for hyphens in ("-", "--"):
                    offered = self.complete_in_bash(hyphens + name, "")
                    if option.value is None:
                        self.assertEqual(offered, names)
                    elif isinstance(option.value, tuple):
                        self.assertEqual(offered, list(option.value))
                    else:
                        self.assertEqual(set(offered) - {""}, {
                            "directory": {"a folder"}, "picture": {"a folder", "a picture.png"}, "milliseconds": set(),
                            "json": set(), "file": {path.name for path in self.folder.iterdir()}}[option.value])

    def test_zsh_completes(self):
        self.need("zsh")
        # `_arguments` is asked what it was called with: one of them for each name.
        script = "_arguments() { print -rl -- \"$@\" }; words=(snipbench); . ./_snipbench"
        specifications = self.run_tool("zsh", "-f", "-c", script).splitlines()
        seen = [re.fullmatch(r"\((-\w+)\)(-\w+)\[(.*)\](:.*)?", line).groups() for line in specifications]
        expected = []
        for option in OPTIONS:
            for one, other in ((option.short, option.name), (option.name, option.short)):
                expected.append(("-" + one, "-" + other, option.description, option.value is not None))
        self.assertEqual([(one, other, text, action is not None) for one, other, text, action in seen], expected)
        for option, line in zip(OPTIONS, seen[::2]):
            if isinstance(option.value, tuple):
                self.assertEqual(line[3], f":value:({' '.join(option.value)})")

    def test_zsh_offers_them(self):
        self.need("zsh")
        # A shell on a pseudo-terminal, as a user has it: Tab lists what may follow.
        last = max(OPTIONS)
        script = """
            zmodload zsh/zpty
            zpty shell zsh -f
            zpty -w shell 'PS1=; fpath=($PWD $fpath); autoload -U compinit; compinit -u -D; COLUMNS=200; LISTMAX=500'
            zpty -w -n shell $'snipbench -\\t'
            for ((i = 0; i < 400; ++i)); do
                zpty -r -t shell more && all+=$more || sleep 0.05
                [[ $all == *"$LAST"* ]] && break
            done
            print -r -- "$all"
        """
        text = self.run_tool("zsh", "-f", "-c", script, env={"HOME": str(self.folder), "TERM": "dumb", "PATH":
                                                             "/usr/bin:/bin", "LAST": last.description})
        for option in OPTIONS:
            self.assertRegex(text, rf"-{option.name}\b")
            self.assertIn(option.description[:30], text)

    def test_fish_completes(self):
        self.need("fish")

        def complete(line):
            text = self.run_tool("fish", "--no-config", "-c", f"source snipbench.fish; complete -C '{line}'",
                                 env={"HOME": str(self.folder), "PATH": "/usr/bin:/bin"})
            return dict((line + "\t").split("\t")[:2] for line in text.splitlines())

        offered = complete("snipbench -")
        expected = {f"-{name}": option.description for option in OPTIONS for name in (option.name, option.short)}
        self.assertEqual(offered, expected)
        for name in ("a.png", "a.bmp", "a.txt"):
            (self.folder / name).touch()
        for option in OPTIONS:
            values = set(complete(f"snipbench -{option.name} "))
            if isinstance(option.value, tuple):
                self.assertEqual(values, set(option.value))
            elif option.value == "picture":
                self.assertEqual(values & {"a.png", "a.bmp"}, {"a.png", "a.bmp"})
            elif option.value in ("milliseconds", "json"):
                self.assertEqual(values, set())

    def test_an_option_without_a_kind_of_value_is_an_error(self):
        program = self.folder / "program"
        program.write_text('#!/bin/sh\nprintf "Usage\\n\\t-New -n  Is new. [Default: 1]\\n"\n', encoding="utf-8")
        program.chmod(0o755)
        result = subprocess.run([ROOT / "Scripts/make-help.py", program, self.folder / "new"], capture_output=True,
                                text=True, check=False)
        self.assertEqual((result.returncode, result.stderr),
                         (1, "make-help.py: which values does -New take? VALUES has to say it.\n"))


class Guide(unittest.TestCase):
    def test_options_defaults_and_texts(self):
        rows = read_table(read("Docs/UserGuide.md"), "| Option | Short |")
        self.assertEqual([row[:2] for row in rows], [[f"`-{option.name}`", f"`-{option.short}`"] for option in OPTIONS])
        for row, option in zip(rows, OPTIONS):
            self.assertEqual(row[2] != "", option.default is not None, row)
            if option.default:
                self.assertEqual(row[3], f"`{option.default}`")
            elif row[3]:
                self.assertEqual(row[3], "see above")
            self.assertTrue(row[4].startswith(option.description + "."), f"{row[4]} / {option.description}")

    def test_words_for_values_are_those_of_the_completions(self):
        rows = read_table(read("Docs/UserGuide.md"), "| Option | Short |")
        for row, option in zip(rows, OPTIONS):
            if option.name == "OutFileType":
                self.assertEqual(tuple(re.findall(r"`(\w+)`", row[2])), option.value)
            elif isinstance(option.value, tuple):
                self.assertEqual((row[2], option.value), ("boolean", ("true", "false")))


class Pages(unittest.TestCase):
    def test_command_lines_have_options_that_are_there(self):
        """Of every page, and what each needs as a value."""
        known = {name: option for option in OPTIONS for name in (option.name, option.short)}
        count = 0
        for page in PAGES:
            for line in re.findall(r"(?:^|[ `$(])(?:\./run|snipbench|SnipBench)((?: +-\S+(?: +[^-\s|>`]\S*)?)+)",
                                   page.read_text(encoding="utf-8"), re.MULTILINE):
                if "Frobnicate" in line:
                    continue  # shows what comes of a wrong one
                for name, value in re.findall(r" +--?(\w+)[;:,.)`]*(?: +([^-\s]\S*))?", line):
                    self.assertIn(name, known, f"{page.name}: {line}")
                    if known[name].default is not None and name != "o":
                        self.assertTrue(value, f"{page.name}: {line}")
                    count += 1
        self.assertGreater(count, 20)

    def test_exit_codes(self):
        rows = read_table(read("Docs/Scripting.md"), "| Code | In a shell | Name |")
        self.assertEqual([row[:3] for row in rows],
                         [[str(code), str(code & 0xFF), f"`{name}`"] for code, name in CODES])

    def test_examples_handle_all_codes(self):
        for name in ("snip.py", "snip.ps1", "snip_Linux.cpp"):
            text = read(f"Examples/{name}")
            for code, cause in CODES:
                if code != 0:
                    self.assertIn(cause, text, name)
        for code, _ in CODES:
            self.assertRegex(read("Examples/snip.sh"), rf"[ |]{code & 0xFF}[) ]")

    def test_pages_for_contributors_name_what_is_there(self):
        count = 0
        for page in ("CONTRIBUTING.md", "SECURITY.md", "CHANGELOG.md"):
            text = read(page)
            paths = re.findall(r"\]\(([^)#:]+)\)", text)
            paths += re.findall(r"`((?:Source|Docs|Scripts|Tests|Packaging|Examples)[\w./-]*)`", text)
            paths += re.findall(r"`(\w+\.(?:md|cff|txt))`", text)
            for path in paths:
                self.assertTrue((ROOT / path).exists(), f"{page}: {path}")
                count += 1
        self.assertGreater(count, 20)

    def test_version_is_the_same_everywhere(self):
        version = help_files.read_version()
        self.assertIn(f"\nversion: {version}\n", read("CITATION.cff"))
        self.assertIn(f"\n## [{version}]", read("CHANGELOG.md"))
        self.assertIn(f'VersionText = "{version}"', read("Source/Application/Application.h"))

    def test_workflow_says_that_it_has_not_been_run(self):
        self.assertIn("has not been run yet", read(".github/workflows/test.yml").splitlines()[0])


def list_members(schema, root=None, path=""):
    """path -> (schema, whether it is always there) of all members below."""
    root = root or schema
    while "$ref" in schema:
        schema = root["definitions"][schema["$ref"].rpartition("/")[2]]
    members = {}
    for name, inner in schema.get("properties", {}).items():
        here = f"{path}.{name}" if path else name
        members[here] = (inner, name in schema.get("required", []))
        members.update(list_members(inner, root, here))
    if "items" in schema:
        members.update(list_members(schema["items"], root, path + "[]"))
    return members


class Formats(unittest.TestCase):
    def compare(self, schema, head, leave_out=()):
        text = read("Docs/Formats.md")
        rows = read_table(text[text.index(head):], "| Member | Type | Meaning |")
        members = list_members(json.loads(read(f"Docs/Schemas/{schema}.json")))
        named = {}
        for row in rows:
            for name in re.findall(r"`([\w.\[\]]+)`", row[0]):
                named[name] = row
        leaves = {path for path in members if not any(other != path and other.startswith((path + ".", path + "[]"))
                                                      for other in members)}
        for path in leaves:
            if not any(path == part or path.startswith((part + ".", part + "[]")) for part in leave_out):
                self.assertIn(path, named, schema)
        for name, row in named.items():
            self.assertIn(name, members, schema)
            if len(row) > 3:
                self.assertEqual(row[3] == "never", members[name][1], name)
        return named

    def test_selection(self):
        self.compare("Snip", "## One selection")

    def test_annotations(self):
        named = self.compare("Annotations", "## An annotation run", ("image.size",))
        self.assertIn("image.size", named)

    def test_answer(self):
        named = self.compare("Answer", "## The answer")
        self.assertIn(f"from {min(code for code, _ in CODES)} to {max(code for code, _ in CODES)}", named["code"][2])

    def test_codes(self):
        self.compare("ReturnCodes", "## The table of exit codes", ("parameters[].codes",))


if __name__ == "__main__":
    run_tests()
