"""What the makers of completions and manual pages share."""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def quote_zsh(text):
    """For a description within single quotes and brackets."""
    return text.replace("'", "'\\''").replace("[", "\\[").replace("]", "\\]").replace(":", "\\:")


def quote_fish(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def escape_manual(text):
    """Text of the manual page; a line may not begin with what the formatter takes for a request."""
    return re.sub(r"(?m)^(?=[.'])", r"\\&", text.replace("\\", "\\e").replace("-", "\\-"))


def read_version():
    text = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"^project\(SnipBench VERSION ([0-9.]+)", text, re.MULTILINE).group(1)


def read_template(page):
    return (ROOT / "Packaging/Linux" / f"{page}.in").read_text(encoding="utf-8")


def fill_template(template, date, marks):
    """The template with the version, the date, and a text in place of each mark; all of them have to be there."""
    for mark, text in {"@VERSION@": read_version(), "@DATE@": date, **marks}.items():
        if mark not in template:
            sys.exit(f"The manual page has no {mark.strip()}.")
        template = template.replace(mark, text)
    return template


def write_files(make_files):
    """Runs a maker as a program: PROGRAM FOLDER [DATE]. `make_files(program, date)` returns the texts by file name."""
    if len(sys.argv) not in (3, 4):
        sys.exit(f"usage: {Path(sys.argv[0]).name} PROGRAM FOLDER [DATE]")
    folder = Path(sys.argv[2])
    texts = make_files(sys.argv[1], sys.argv[3] if len(sys.argv) == 4 else "")
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in texts.items():
        (folder / name).write_text(text, encoding="utf-8")
