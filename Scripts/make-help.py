#!/usr/bin/env python3
"""Writes what is generated from the program's own tables: completions for bash, zsh and fish, and the manual page.

    make-help.py PROGRAM FOLDER [DATE]

The options come from the program's `-h`, the exit codes from its `-src`; the manual page's other sections from
Packaging/Linux/snipbench.1.in. DATE is the page's, such as 2026-11-22. The program is run as a copy under another name,
since a start of it ends the one that runs.
"""
import json
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path
from typing import NamedTuple

from help_files import escape_manual, fill_template, quote_fish, quote_zsh, read_template, write_files

# What `-h` doesn't say: which kind of value an option takes. An option that is missing here is an error.
VALUES = {
    "OutDirectory": "directory",
    "OutFileType": ("png", "bmp"),
    "OneShot": ("true", "false"),
    "KeepMask": ("true", "false"),
    "Delay": "milliseconds",
    "Annotate": ("true", "false"),
    "File": "picture",
    "ConfigFile": "file",
    "ConfigJson": "json",
}


class Option(NamedTuple):
    name: str
    short: str
    description: str
    default: str | None  # None: takes no value; empty: takes a value and has no default

    @property
    def value(self):
        """A list of words, or the kind of the value; None without one."""
        return None if self.default is None else VALUES[self.name]


def run(program, *arguments):
    with tempfile.TemporaryDirectory() as folder:
        copy = Path(folder) / "Binaries" / "Linux-x64" / "HelpOfSnipBench"
        copy.parent.mkdir(parents=True)
        shutil.copy2(program, copy)
        return subprocess.run([copy, *arguments], stdout=subprocess.PIPE, encoding="utf-8", check=True).stdout


def read_options(program):
    row = re.compile(r"\t-(\w+) +-(\w+) +(.*?)\.(?: \[Default: (.*)\])?\s*")
    lines = [line for line in run(program, "-h").splitlines() if line.startswith("\t")]
    options = []
    for line in lines:
        match = row.fullmatch(line)
        if not match:
            sys.exit(f"make-help.py: not the line of an option: {line}")
        name, short, description, default = match.groups()
        options.append(Option(name, short, description, "" if default == "Empty" else default))
        if default is not None and name not in VALUES:
            sys.exit(f"make-help.py: which values does -{name} take? VALUES has to say it.")
    if not options:
        sys.exit("make-help.py: the program's help lists no options.")
    return options


def read_codes(program):
    """(code, name) in the program's order."""
    table = json.loads(run(program, "-src"))
    return [(code["code"], code["name"]) for group in table["parameters"] for code in group["codes"]]


def make_bash(options):
    def pattern(option):
        return f"-{option.name} | --{option.name} | -{option.short} | --{option.short}"

    cases = []
    for option in options:
        if option.value is None:
            continue
        action = {
            "directory": "_snipbench_paths -d",
            "file": "_snipbench_paths -f",
            "picture": "_snipbench_paths -d; _snipbench_paths -f -X '!*.png'; _snipbench_paths -f -X '!*.bmp'",
            "milliseconds": ":",
            "json": ":",
        }.get(option.value) if isinstance(option.value, str) else None
        if action is None:
            action = f"_snipbench_words '{' '.join(option.value)}'"
        cases.append(f"        {pattern(option)})\n            {action}\n            return\n            ;;\n")
    words = " ".join(word for option in options for word in (f"-{option.name}", f"-{option.short}"))
    long_words = " ".join(f"--{option.name}" for option in options)
    return f"""# bash completion of snipbench. Generated from the program's own table of options.

_snipbench_paths() # compgen's options
{{
    local path
    compopt -o filenames
    while IFS= read -r path; do
        COMPREPLY+=("$path")
    done < <(compgen "$@" -- "$word")
}}

_snipbench_words() # WORDS
{{
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$word")
}}

_snipbench()
{{
    local word=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}}
    COMPREPLY=()
    case $previous in
{''.join(cases)}    esac
    if [[ $word == --* ]]; then
        _snipbench_words '{long_words}'
    else
        _snipbench_words '{words}'
    fi
}}

complete -F _snipbench snipbench
"""


def make_zsh(options):
    lines = []
    for option in options:
        action = ""
        if option.value is not None:
            action = {
                "directory": ":directory:_files -/",
                "file": ":file:_files",
                "picture": ':picture:_files -g "*.(png|bmp)"',
                "milliseconds": ":milliseconds: ",
                "json": ":JSON: ",
            }.get(option.value) if isinstance(option.value, str) else f":value:({' '.join(option.value)})"
        text = quote_zsh(option.description)
        lines.append(f"    '(-{option.short})-{option.name}[{text}]{action}'")
        lines.append(f"    '(-{option.name})-{option.short}[{text}]{action}'")
    body = " \\\n".join(lines)
    return f"""#compdef snipbench
# zsh completion of snipbench. Generated from the program's own table of options.

_arguments \\
{body}
"""


def make_fish(options):
    lines = ["# fish completion of snipbench. Generated from the program's own table of options.",
             "complete -c snipbench -f"]
    for option in options:
        parts = ["complete -c snipbench"]
        # fish calls names of several letters after one hyphen old-style.
        parts += [f"-{'s' if len(option.short) == 1 else 'o'} {option.short}", f"-o {option.name}"]
        if option.value is not None:
            arguments = {
                "directory": "'(__fish_complete_directories)'",
                "picture": "'(__fish_complete_suffix .png; __fish_complete_suffix .bmp)'",
                "file": "'(__fish_complete_suffix .json)'",
                "milliseconds": None,
                "json": None,
            }[option.value] if isinstance(option.value, str) else f"'{' '.join(option.value)}'"
            parts.append("-x" if arguments is None else f"-x -a {arguments}")
        parts.append(f"-d {quote_fish(option.description)}")
        lines.append(" ".join(parts))
    return "\n".join(lines) + "\n"


def make_manual(options, codes, date):
    template = read_template("snipbench.1")
    details = dict(re.findall(r"^@DETAIL (\w+)@\n(.*?)(?=^@)", template, re.DOTALL | re.MULTILINE))
    template = re.sub(r"^@DETAIL \w+@\n.*?^@END@\n", "", template, flags=re.DOTALL | re.MULTILINE)
    rows = []
    for option in options:
        value = ""
        if option.value is not None:
            value = " \\fI" + ("|".join(option.value) if isinstance(option.value, tuple) else option.value) + "\\fR"
        rows.append(f".TP\n\\fB\\-{option.name}\\fR, \\fB\\-{option.short}\\fR{value}\n"
                    f"{escape_manual(option.description)}.\n")
        if option.default:
            rows.append(f"Default: {escape_manual(option.default)}.\n")
        rows.append(details.pop(option.name, ""))
    if details:
        sys.exit(f"make-help.py: the manual page has details of options that aren't there: {', '.join(details)}")
    endings = [f".TP\n\\fB{escape_manual(str(code))}\\fR (in a shell {code & 0xFF})\n{escape_manual(name)}\n"
               for code, name in codes]
    return fill_template(template, date, {"@OPTIONS@\n": "".join(rows), "@CODES@\n": "".join(endings)})


def make_files(program, date):
    options, codes = read_options(program), read_codes(program)
    return {"snipbench.bash": make_bash(options), "_snipbench": make_zsh(options), "snipbench.fish": make_fish(options),
            "snipbench.1": make_manual(options, codes, date)}


if __name__ == "__main__":
    write_files(make_files)
