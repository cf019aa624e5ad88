#!/usr/bin/env python3
"""Checks what Docs/Architecture.md says about the structure of the sources, and names each line that breaks it:

  no include points to a layer above its own, and no units of two folders need each other, directly or through others;
  no unit that all systems share includes a system's header or one of ours for it, or asks which system it is;
  the operations of a desktop are those that the page lists;
  no file has more than 500 lines, no function more than 60.

    Scripts/check-structure.py          this repository
    Scripts/check-structure.py FOLDER   another tree of the same form

The layers are read from the table in Docs/Architecture.md.
"""
import re
import sys
from pathlib import Path

FILE_LINES = 500
FUNCTION_LINES = 60
SOURCES = ("Source", "Tests", "Examples", "Benchmarks", "Packaging")

# Headers that are the same on every system. Whatever else stands in angle brackets belongs to one of them.
SHARED_HEADERS = re.compile(r"[a-z_]+|fmt/.*|rapidjson/.*|gtest/.*|gmock/.*|png\.h|zlib\.h|libdeflate\.h|ft2build\.h|kissfft\.hh|GL/glcorearb\.h")
# What belongs to one desktop or one operating system: a folder, or a single file by its name.
OWN_FOLDER = re.compile(r"(Desktops|Systems)/[^/]+/")
OWN_NAME = re.compile(r"_(Linux|X11|Windows)(Test)?\.(h|cpp)$")
# The calling convention of OpenGL's functions can only be found like this.
CONDITIONS_ALLOWED = {"Source/Desktops/OpenGL.h"}


def read_layers(root):
    """The rows of the table of layers: folder below Source -> its layer, counted from the lowest."""
    text = (root / "Docs/Architecture.md").read_text(encoding="utf-8")
    layers = {}
    for number, folders in re.findall(r"^\| (\d+) \| (.*?) \|", text, re.MULTILINE):
        for folder in re.findall(r"`([^`]+)`", folders):
            layers[folder] = int(number)
    return layers


def find_files(root):
    for folder in SOURCES:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path.relative_to(root).as_posix(), path.read_text(encoding="utf-8")


def find_includes(text):
    """(line number, name, whether it is one of ours) of each include."""
    for match in re.finditer(r'^#include ([<"])([^">]+)[">]', text, re.MULTILINE):
        yield text.count("\n", 0, match.start()) + 1, match[2], match[1] == '"'


def get_folder(name):
    """The folder below Source that a source or an include's name lies in."""
    return name.removeprefix("Source/").rpartition("/")[0]


def check_layers(files, layers):
    for name, text in files.items():
        if not name.startswith("Source/"):
            continue
        folder = get_folder(name)
        if folder not in layers:
            yield f"{name}: its folder has no layer in Docs/Architecture.md"
            continue
        for line, include, is_ours in find_includes(text):
            if is_ours and layers.get(get_folder(include), 0) > layers[folder]:
                yield f"{name}:{line}: the include points upward, to {include}"


def get_unit(name):
    """A header and its sources, those of all systems included, are one unit."""
    return re.sub(r"(_(Linux|X11|Windows))?\.(h|cpp)$", "", name.removeprefix("Source/"))


def check_circles(files):
    """Units of one folder may need each other; those of several may not."""
    edges = {}
    for name, text in files.items():
        if name.startswith("Source/"):
            needed = edges.setdefault(get_unit(name), set())
            needed.update(get_unit(include) for _, include, is_ours in find_includes(text) if is_ours)

    def reach(start):
        seen, rest = set(), [start]
        while rest:
            for unit in edges.get(rest.pop(), set()) - seen:
                seen.add(unit)
                rest.append(unit)
        return seen

    reached = {unit: reach(unit) for unit in edges}
    circles = {tuple(sorted(other for other in reached[unit] if unit in reached.get(other, ()))) for unit in edges}
    for circle in sorted(circles):
        if len({get_folder(unit) for unit in circle}) > 1:
            yield "these units need each other: " + ", ".join(circle)


def is_shared(name):
    """Whether all systems share a source below Source."""
    return not OWN_FOLDER.match(name.removeprefix("Source/")) and not OWN_NAME.search(name)


def check_platform(files):
    """Only a system's own units may include its headers, or ours for it."""
    for name, text in files.items():
        if not name.startswith("Source/") or not is_shared(name):
            continue
        for line, include, is_ours in find_includes(text):
            if not (is_shared(include) if is_ours else SHARED_HEADERS.fullmatch(include)):
                yield f"{name}:{line}: a shared unit includes {include}"


def check_conditions(files):
    for name, text in files.items():
        if name in CONDITIONS_ALLOWED:
            continue
        for match in re.finditer(r"^[ \t]*#[ \t]*(?:if|ifdef|ifndef|elif)\b.*", text, re.MULTILINE):
            line = text.count("\n", 0, match.start()) + 1
            yield f"{name}:{line}: a system's units are chosen by the build, not by {match[0].strip()}"


def find_operations(text):
    return re.findall(r"\bvirtual\b[^;{}]*?(\w+)\([^;{}]*= 0;", text)


def check_operations(root, files):
    """Compares each row `Interface` (number) of the page with the interface's header, and their sum with the page's."""
    page = (root / "Docs/Architecture.md").read_text(encoding="utf-8")
    rows = re.findall(r"^\| `(\w+)` \((\d+)\) \| (.*) \|$", page, re.MULTILINE)
    listed = {name: (int(number), re.findall(r"`(\w+)`", operations)) for name, number, operations in rows}
    declared = {Path(name).stem: operations for name, text in files.items()
                if re.fullmatch(r"Source/Desktops/\w+\.h", name) and (operations := find_operations(text))}
    for name in sorted(listed.keys() | declared.keys()):
        operations = declared.get(name, [])
        if listed.get(name, (0, [])) != (len(operations), operations):
            yield f"Docs/Architecture.md: the operations of {name} are {len(operations)}: {', '.join(operations)}"
    total = sum(len(operations) for operations in declared.values())
    if declared and f"write these {total} operations" not in page:
        yield f"Docs/Architecture.md: a desktop has {total} operations"


def check_file_lengths(files):
    for name, text in files.items():
        lines = text.count("\n")
        if lines > FILE_LINES:
            yield f"{name}: {lines} lines, more than {FILE_LINES}"


HEADING_START = re.compile(r"(?:\s|(?:public|protected|private):)*")


def strip_texts(text):
    """The same lines without comments, literals, preprocessor lines and values in braces, so that every brace that is
    left belongs to a block."""
    def keep_lines(match):
        return "\n" * match[0].count("\n")

    pattern = r"""//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<!\w)'(?:\\.|[^'\\\n])+'|^#(?:\\\n|[^\n])*"""
    text = re.sub(pattern, keep_lines, text, flags=re.DOTALL | re.MULTILINE)
    count = 1
    while count > 0:
        text, count = re.subn(r"(?:(?<=\S)|(?<== ))\{[^{}]*\}", keep_lines, text) # a block has white space before it
    return text


def is_function(heading):
    """Whether the text before a brace is the heading of a function."""
    count = 1
    while count > 0:
        heading, count = re.subn(r"\([^()]*\)", "@", heading)
    return "@" in heading and "=" not in re.sub(r"operator\s*\W+", "", heading)


def find_functions(text):
    """(line number, number of lines) of each function, from its heading to the brace that ends it."""
    text = strip_texts(text)
    depth = 0
    begin = 0       # of the text before the next brace
    function = None # where the current function begins, and how deep
    for match in re.finditer(r"[{};]", text):
        if match[0] == "{":
            if function is None and is_function(text[begin:match.start()]):
                function = HEADING_START.match(text, begin).end(), depth
            depth += 1
        elif match[0] == "}":
            depth -= 1
            if function is not None and depth == function[1]:
                first = text.count("\n", 0, function[0]) + 1
                yield first, text.count("\n", 0, match.start()) + 2 - first
                function = None
        begin = match.end()


def check_function_lengths(files):
    for name, text in files.items():
        for line, lines in find_functions(text):
            if lines > FUNCTION_LINES:
                yield f"{name}:{line}: a function of {lines} lines, more than {FUNCTION_LINES}"


def main():
    root = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent)
    files = dict(find_files(root))
    findings = [*check_layers(files, read_layers(root)), *check_circles(files), *check_platform(files),
                *check_conditions(files), *check_operations(root, files),
                *check_file_lengths(files), *check_function_lengths(files)]
    print("\n".join(findings) or f"{len(files)} files, nothing found.")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
