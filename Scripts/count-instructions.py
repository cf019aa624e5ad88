#!/usr/bin/env python3
"""Counts the instructions of each row of the built CountedFunctions and compares them with the stored counts. The
counts don't depend on what else the machine does. A row that takes over 5 % more than is stored fails; for one that
takes as much less, the script suggests storing the counts again. The stored counts hold for one major version of one
compiler: with another one the counts are only printed, and nothing fails.

    Scripts/count-instructions.py [--renew] [PROGRAM [BASELINE]]

    --renew   replaces the stored counts by the new ones
"""
import argparse
import concurrent.futures
import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PROGRAM = ROOT / "build/linux-release/Benchmarks/CountedFunctions"
BASELINE = ROOT / "Benchmarks/instructions.txt"
TOLERANCE = 5  # percent
HEAD = """\
# Instructions of each row of CountedFunctions, counted by callgrind. `./test bench` compares with these counts, which
# hold for one major version of one compiler; `Scripts/count-instructions.py --renew` stores them anew.
"""


def ask(program, *arguments):
    return subprocess.run([program, *arguments], capture_output=True, text=True, check=True).stdout.splitlines()


def count(program, row):
    """The instructions of one row; the files that it needs are found from the program upward."""
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", "--toggle-collect=RunCounted",
               program, row]
    result = subprocess.run(command, capture_output=True, text=True, check=False)
    match = re.search(r"Collected : (\d+)", result.stderr)
    if result.returncode != 0 or match is None or match[1] == "0":
        raise RuntimeError(f"{row} can't be counted:\n{result.stderr}")
    return int(match[1])


def read_baseline(path):
    """The compiler, and row -> instructions. Without a file there is neither."""
    compiler, counts = None, {}
    lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
    for line in lines:
        name, _, value = line.partition(": ")
        if line.startswith("#") or not line:
            continue
        if name == "compiler":
            compiler = value
        else:
            counts[name] = int(value)
    return compiler, counts


def write_baseline(path, compiler, counts):
    lines = [f"compiler: {compiler}"] + [f"{row}: {number}" for row, number in counts.items()]
    path.write_text(HEAD + "\n".join(lines) + "\n", encoding="utf-8")


def compare(counts, stored):
    """Prints each row; returns the names of those that fail, and whether the stored counts should be renewed."""
    failed, is_stale = [], not stored.keys() <= counts.keys()
    for row, number in counts.items():
        if row not in stored:
            print(f"  {row:<34} {number:>13,}  not stored")
            is_stale = True
            continue
        change = (number - stored[row]) * 100  # in hundredths of the stored count
        note = ""
        if change > TOLERANCE * stored[row]:
            failed.append(row)
            note = "  FAILED"
        is_stale = is_stale or change < -TOLERANCE * stored[row]
        print(f"  {row:<34} {number:>13,}  {change / stored[row]:+.1f} %{note}")
    return failed, is_stale


def main():
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("--renew", action="store_true")
    parser.add_argument("program", nargs="?", type=Path, default=PROGRAM)
    parser.add_argument("baseline", nargs="?", type=Path, default=BASELINE)
    arguments = parser.parse_args()

    compiler = ask(arguments.program, "--compiler")[0]
    rows = ask(arguments.program)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        counts = dict(zip(rows, pool.map(lambda row: count(arguments.program, row), rows)))
    if arguments.renew:
        write_baseline(arguments.baseline, compiler, counts)

    stored_compiler, stored = read_baseline(arguments.baseline)
    print(f"Instructions, by {compiler}:")
    failed, is_stale = compare(counts, stored)
    if compiler != stored_compiler:
        print(f"The stored counts are of {stored_compiler}: none is held against them.")
        print(f"0 passed, 0 failed, {len(rows)} skipped")
        return 0
    if is_stale:
        print("The stored counts don't fit any more: Scripts/count-instructions.py --renew stores these.")
    for row in failed:
        print(f"More than {TOLERANCE} % more instructions than stored: {row}")
    skipped = sum(row not in stored for row in rows)
    print(f"{len(rows) - len(failed) - skipped} passed, {len(failed)} failed" + (f", {skipped} skipped" if skipped else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
