#!/usr/bin/env python3
"""What the built programs do against misuse of a flaw, read off their files.

    hardening-test.py Linux|Windows PROGRAM...
"""
import re
import subprocess
import sys
import unittest

PROGRAMS = sys.argv[2:]
del sys.argv[2:] # the system's name is that of the cases


def read(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True,
                          env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"}).stdout


class Programs(unittest.TestCase):
    def for_each(self, check):
        for program in PROGRAMS:
            with self.subTest(program=program):
                check(program)


class Linux(Programs):
    def test_addresses_differ_in_each_run(self):
        def check(program):
            self.assertRegex(read("readelf", "-h", program), r"Type:\s+DYN")
            self.assertRegex(read("readelf", "-d", program), r"FLAGS_1.*\bPIE\b")
        self.for_each(check)

    def test_tables_of_functions_are_closed_before_main(self):
        def check(program):
            self.assertIn("GNU_RELRO", read("readelf", "-lW", program))
            self.assertRegex(read("readelf", "-d", program), r"FLAGS_1.*\bNOW\b")
        self.for_each(check)

    def test_no_data_is_run(self):
        def check(program):
            segments = read("readelf", "-lW", program)
            self.assertRegex(segments, r"GNU_STACK\s.*\sRW\s")
            self.assertNotRegex(segments, r"\sRWE\s")
        self.for_each(check)

    def test_stack_and_copies_are_checked(self):
        def check(program):
            symbols = read("readelf", "--dyn-syms", "-W", program)
            self.assertIn("__stack_chk_fail", symbols)
            self.assertRegex(symbols, r"__(memcpy|snprintf|fread|read|vsnprintf|fprintf|strcpy|memset)_chk")
        self.for_each(check)

    def test_functions_begin_where_a_jump_may_land(self):
        def check(program):
            # By address, because a constructor may have two names.
            symbols = set(re.findall(r"^(\w+) [TW] _ZN?K?5Orvik\w+$", read("nm", program), re.MULTILINE))
            code = read("objdump", "-d", "--no-show-raw-insn", "-j", ".text", program)
            firsts = dict(re.findall(r"^(\w+) <\S+>:\n\s+\w+:\s+(\S+)", code, re.MULTILINE))
            marked = [address for address in symbols if firsts.get(address) == "endbr64"]
            self.assertGreater(len(symbols), 100)
            self.assertEqual(len(marked), len(symbols))
        self.for_each(check)

    def test_libraries_come_from_the_system_alone(self):
        self.for_each(lambda program: self.assertNotRegex(read("readelf", "-d", program), "RPATH|RUNPATH"))


class Windows(Programs):
    def test_addresses_differ_and_no_data_is_run(self):
        def check(program):
            header = read("x86_64-w64-mingw32-objdump", "-p", program)
            for flag in ("DYNAMIC_BASE", "HIGH_ENTROPY_VA", "NX_COMPAT"):
                self.assertIn(flag, header)
            self.assertRegex(header, r"Entry 5 [0-9a-f]*[1-9a-f][0-9a-f]* [0-9a-f]+ Base Relocation",
                             "without relocations the addresses stay the same")
        self.for_each(check)

    def test_the_stack_is_checked(self):
        symbols = "x86_64-w64-mingw32-nm"
        self.for_each(lambda program: self.assertTrue("__stack_chk_fail" in read(symbols, program)))


if __name__ == "__main__":
    unittest.main(verbosity=2)
