#!/usr/bin/env python3
"""One selection for a program: starts SnipBench, waits for it, and reads its object, its files and its code.

    snip.py [-l SECONDS] PROGRAM [options of SnipBench]

Prints the path of the image and its size. Ends with 0; with 1 if nothing was selected or saved; with 124 if the limit
of time passed; with 127 if the program can't be started, 2 if the call is wrong; else as SnipBench did. The image stays
in a new temporary folder.
"""
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile

CAUSES = {
    "Wrong Parameter(s)": "an option is wrong, or the region isn't within the picture",
    "Failed to load file": "the picture can't be read or shown",
    "Failed to initialize systems": "there is no display, or none of that name",
    "Failed to create window": "the overlay can't be shown; the log says why",
    "Failed to initialize renderer": "the overlay can't be shown; the log says why",
}


class SnipError(Exception):
    """A run that gave no selection since it failed; `code` is what a shell would see."""

    def __init__(self, text, code):
        super().__init__(text)
        self.code = code


def read_answer(output):
    """The object at the end of standard output, or None: a run that a fault stopped has none."""
    lines = output.splitlines()
    if "{" not in lines:
        return None
    return json.loads("\n".join(lines[len(lines) - 1 - lines[::-1].index("{"):]))


def snip(program, *options, limit=60):
    """(image, what is known of it), or None if nothing was selected. The image's folder is the caller's to remove."""
    folder = pathlib.Path(tempfile.mkdtemp())
    selection = None
    try:
        selection = snip_into(folder, program, options, limit)
    finally:
        if selection is None:
            shutil.rmtree(folder)
    return selection


def snip_into(folder, program, options, limit):
    """The same, with the files in a folder that is empty so far."""
    # A line of the log may name a byte that is no text by itself.
    try:
        run = subprocess.Popen([program, "-s", "true", "-o", folder, *options], stdout=subprocess.PIPE,
                               encoding="utf-8", errors="replace")
    except OSError as error:
        raise SnipError(f"The program can't be started: {error}", 127) from None
    try:
        output, _ = run.communicate(timeout=limit)
    except subprocess.TimeoutExpired:
        run.terminate()  # a file that is being written is finished, keyboard and pointer are free again
        run.communicate()
        raise SnipError(f"No selection within {limit} seconds.", 124) from None
    if run.returncode in (-signal.SIGABRT, 134):
        raise SnipError("An error; ~/.orvik/Logs may say more.", 134)
    if run.returncode < 0:
        raise SnipError(f"Ended by signal {-run.returncode}.", 128 - run.returncode)
    answer = read_answer(output)
    if answer is None and run.returncode != 0:
        raise SnipError(f"Ended with {run.returncode}.", run.returncode)
    if answer is not None and answer["code"] != 0:
        raise SnipError(f"{answer['name']}: {CAUSES[answer['name']]}.", answer["code"] & 0xFF)
    # Both files have the same name. The JSON file comes last: where it is, the image is whole.
    for meta in folder.glob("*.json"):
        image = next(file for file in folder.glob("*") if file.stem == meta.stem and file != meta)
        return image, json.loads(meta.read_text(encoding="utf-8"))
    if any(folder.iterdir()):
        raise SnipError("The selection couldn't be saved.", 1)
    return None


def main(arguments):
    limit = 60
    if arguments[:1] == ["-l"]:
        limit = int(arguments[1]) if arguments[1:] and re.fullmatch("[0-9]{1,6}", arguments[1]) else 0
        arguments = arguments[2:]
    if not arguments or limit == 0:
        print("usage: snip.py [-l SECONDS] PROGRAM [options of SnipBench]", file=sys.stderr)
        return 2
    try:
        result = snip(*arguments, limit=limit)
    except SnipError as error:
        print(error, file=sys.stderr)
        return error.code
    if result is None:
        print("Nothing was selected.", file=sys.stderr)
        return 1
    image, meta = result
    size = meta["image"]["size"]
    print(f"{os.fspath(image)} {size['width']}x{size['height']}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
