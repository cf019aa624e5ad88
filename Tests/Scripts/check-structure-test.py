#!/usr/bin/env python3
"""Tests of Scripts/check-structure.py: a small tree in which it finds nothing, and what it finds in the same tree with
one thing changed."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "Scripts/check-structure.py"

TREE = {
    "Docs/Architecture.md": "| Layer | Folders |\n|---|---|\n| 1 | `Low`, `Other`, `Desktops/X11` |\n"
                            "| 2 | `Middle` |\n| 3 | `High` |\n| 4 | `Top` |\n",
    "Source/Low/Low.h": "#include <vector>\n",
    "Source/Low/Low.cpp": '#include "Low/Low.h"\n#include <fmt/format.h>\n',
    "Source/Low/Low_X11.h": '#include "Desktops/X11/XHeaders.h"\n',
    "Source/Low/Low_X11.cpp": '#include "Desktops/X11/XHeaders.h"\n#include <unistd.h>\n',
    "Source/Middle/Middle.h": '#include "Low/Low.h"\n#include "Other/Other.h"\n',
    "Source/High/High.cpp": '#include "Middle/Middle.h"\n',
    "Source/Top/Top.h": "",
    "Source/Other/Other.h": "",
    "Source/Desktops/X11/XHeaders.h": "#include <X11/Xlib.h>\n",
    "Tests/High/HighTest.cpp": '#include "Low/Low.h"\n#include <gtest/gtest.h>\n',
}


def function(lines, heading="int Count(int (*function)())"):
    """A function of so many lines, heading and braces included."""
    return heading + "\n{\n" + "    Call();\n" * (lines - 3) + "}\n"


class CheckStructure(unittest.TestCase):
    def check(self, files=None):
        """What is found in the tree with these files added or changed."""
        with tempfile.TemporaryDirectory() as root:
            for name, text in {**TREE, **(files or {})}.items():
                path = Path(root) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            result = subprocess.run([sys.executable, SCRIPT, root], capture_output=True, text=True, check=False)
        self.assertEqual(result.stderr, "")
        found = result.stdout.rstrip("\n").split("\n")
        self.assertEqual(result.returncode, 0 if found[0].endswith("nothing found.") else 1)
        return found

    def find(self, name, text):
        """The one thing that is found once this file is as given."""
        found = self.check({name: text})
        self.assertEqual(len([line for line in found if not line.startswith("    ")]), 1, found)
        return found[0]

    def test_nothing_is_found_in_a_tree_that_keeps_the_rules(self):
        self.assertEqual(self.check(), ["10 files, nothing found."])

    def test_an_include_of_a_higher_layer(self):
        self.assertEqual(self.find("Source/Low/New.cpp", '\n#include "Top/Top.h"\n'),
                         "Source/Low/New.cpp:2: the include points upward, to Top/Top.h")

    def test_a_folder_without_a_layer(self):
        self.assertIn("has no layer", self.find("Source/New/New.h", ""))

    def test_units_of_two_folders_that_need_each_other(self):
        found = self.check({"Source/Low/New.h": '#include "Other/Other.h"\n',
                            "Source/Other/Other_Linux.cpp": '#include "Low/New.h"\n'})
        self.assertEqual(found, ["these units need each other: Low/New, Other/Other"])

    def test_units_that_need_each_other_over_a_third(self):
        found = self.check({"Docs/Architecture.md": "| 1 | `Low`, `Middle`, `High`, `Other`, `Top`, `Desktops/X11` |\n",
                            "Source/Other/Other.h": '#include "High/High.h"\n'})
        self.assertEqual(found, ["these units need each other: High/High, Middle/Middle, Other/Other"])

    def test_units_of_one_folder_may_need_each_other(self):
        found = self.check({"Source/Low/Low.cpp": '#include "Low/New.h"\n', "Source/Low/New.cpp": '#include "Low/Low.h"\n',
                            "Source/Other/New.h": '#include "Low/Low.h"\n'})
        self.assertIn("nothing found", found[0])

    def test_a_system_header_in_a_shared_unit(self):
        self.assertEqual(self.find("Source/Low/New.cpp", "#include <windows.h>\n"),
                         "Source/Low/New.cpp:1: a shared unit includes windows.h")

    def test_a_header_of_ours_that_belongs_to_a_system(self):
        self.assertEqual(self.find("Source/Low/New.cpp", '#include "Low/Low_X11.h"\n'),
                         "Source/Low/New.cpp:1: a shared unit includes Low/Low_X11.h")

    def test_a_desktop_that_a_shared_unit_knows(self):
        self.assertEqual(self.find("Source/Low/New.cpp", '#include "Desktops/X11/XHeaders.h"\n'),
                         "Source/Low/New.cpp:1: a shared unit includes Desktops/X11/XHeaders.h")

    def test_what_desktops_share_is_shared(self):
        tree = {"Docs/Architecture.md": TREE["Docs/Architecture.md"].replace("`Low`", "`Low`, `Desktops`")}
        found = self.check({**tree, "Source/Desktops/Desktop.cpp": "#include <unistd.h>\n"})
        self.assertEqual(found, ["Source/Desktops/Desktop.cpp:1: a shared unit includes unistd.h"])

    def test_operations_of_a_desktop_that_the_page_does_not_list(self):
        page = TREE["Docs/Architecture.md"].replace("`Low`", "`Low`, `Desktops`")
        header = {"Source/Desktops/Desktop.h": "class A\n{\n    virtual int Show(int a) = 0;\n"
                                               "    [[nodiscard]] virtual B\n    Hide() const = 0;\n    virtual ~A();\n};\n"}
        row = page + "write these 2 operations\n| `Desktop` (2) | `Show`, `Hide` |\n"
        self.assertEqual(len(self.check({**header, "Docs/Architecture.md": row})), 1)
        for old, new, found in (("`Hide`", "`Hid`", "the operations of Desktop are 2: Show, Hide"), ("(2)", "(3)", "are 2"),
                                ("these 2", "these 3", "a desktop has 2 operations"),
                                ("`Desktop` (2)", "`Desk` (2)", "the operations of Desk are 0")):
            with self.subTest(new):
                self.assertIn(found, self.check({**header, "Docs/Architecture.md": row.replace(old, new)})[0])

    def test_a_condition_on_the_system(self):
        for line in ("#ifdef _WIN32", "  #  if defined(__linux__)", "#ifndef NDEBUG", "#elif 1"):
            self.assertIn("Low/New.h:2:", self.find("Source/Low/New.h", f"\n{line}\n"))

    def test_a_file_that_is_too_long(self):
        self.assertEqual(self.check({"Source/Low/New.h": "\n" * 500})[0], "11 files, nothing found.")
        self.assertEqual(self.find("Source/Low/New.h", "\n" * 501), "Source/Low/New.h: 501 lines, more than 500")

    def test_a_function_that_is_too_long(self):
        name = "Source/Low/New.cpp"
        before = "namespace A\n{\nint s_table[] = {1, 2};\n"
        self.assertEqual(self.check({name: before + function(60) + "}\n"})[0], "11 files, nothing found.")
        self.assertEqual(self.find(name, before + function(61) + "}\n"), f"{name}:4: a function of 61 lines, more than 60")

    def test_functions_of_every_form(self):
        for heading in ("void A::B() const noexcept", "A::A(int a) : m_a{a}, m_b(2)", "TEST(Name, Case)",
                        "bool A::operator==(const A& other)", "template <typename T>\nauto F(T a = {}) -> int",
                        'void F(const char* text = "{(")', "// a brace: {\nint main()"):
            with self.subTest(heading):
                self.assertRegex(self.find("Source/Low/New.cpp", function(61, heading)), "a function of 6[12] lines")

    def test_a_function_in_a_class(self):
        text = "class A : public B<int>\n{\npublic:\n" + function(61, "    int F()") + "};\n"
        self.assertIn("New.h:4: a function of 61 lines", self.find("Source/Low/New.h", text))

    def test_a_table_and_a_class_may_be_long(self):
        rows = "    {1, Make(2)},\n" * 70
        table = "constexpr std::array s_table = {\n" + rows + "};\n"
        self.assertIn("nothing found", self.check({"Source/Low/New.cpp": table})[0])
        members = "    int F(int a);\n" * 70
        self.assertIn("nothing found", self.check({"Source/Low/New.h": "class A\n{\n" + members + "};\n"})[0])


if __name__ == "__main__":
    unittest.main()
