#!/usr/bin/env python3
"""Writes what is generated from snipbench-data's own table of verbs: completions for bash, zsh and fish, and the manual
page.

    make-data-help.py PROGRAM FOLDER [DATE]

The table is what the program's `--help --json` prints. DATE is the page's, such as 2026-11-22.
"""
import json
import subprocess

from help_files import escape_manual, fill_template, quote_fish, quote_zsh, read_template, write_files

FORMATS = ("coco", "yolo", "voc")


def read_table(program):
    table = json.loads(subprocess.run([program, "--help", "--json"], stdout=subprocess.PIPE, check=True).stdout)
    for verb in table["verbs"]:
        verb["options"] += table["options"]
    return table


def has_formats(verb):
    return verb["operands"].startswith("|".join(FORMATS))


def make_bash(table):
    cases, values = [], sorted({option["name"] for verb in table["verbs"] for option in verb["options"]
                                if "value" in option and option["value"] != "FILE"})
    for verb in table["verbs"]:
        words = " ".join(option["name"] for option in verb["options"])
        if has_formats(verb):
            words += " " + " ".join(FORMATS)
        cases.append(f"        {verb['name']}) words='{words}' ;;\n")
    names = " ".join(verb["name"] for verb in table["verbs"])
    return f"""# bash completion of snipbench-data. Generated from the program's own table of verbs.

_snipbench_data()
{{
    local word=${{COMP_WORDS[COMP_CWORD]}} words=''
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W '{names} --help' -- "$word")
        return
    fi
    case ${{COMP_WORDS[COMP_CWORD - 1]}} in
        {' | '.join(values)}) return ;;
    esac
    case ${{COMP_WORDS[1]}} in
{''.join(cases)}    esac
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word"; compgen -f -- "$word")
}}

complete -F _snipbench_data snipbench-data
"""


def make_zsh(table):
    verbs, cases = [], []
    for verb in table["verbs"]:
        verbs.append(f"        '{verb['name']}:{quote_zsh(verb['summary'])}'")
        lines = []
        for option in verb["options"]:
            value = option.get("value")
            action = "" if value is None else f":{value.lower()}:" + ("_files" if value == "FILE" else " ")
            lines.append(f"                '{option['name']}[{quote_zsh(option['description'])}]{action}'")
        if has_formats(verb):
            lines.append(f"                '1:format:({' '.join(FORMATS)})'")
        lines.append("                '*:file:_files'")
        cases.append(f"        {verb['name']})\n            _arguments \\\n" + " \\\n".join(lines) +
                     "\n            ;;\n")
    body = "\n".join(verbs)
    return f"""#compdef snipbench-data
# zsh completion of snipbench-data. Generated from the program's own table of verbs.

_snipbench_data()
{{
    local -a verbs=(
{body}
    )
    if (( CURRENT == 2 )); then
        _describe verb verbs
        return
    fi
    shift words
    (( CURRENT-- ))
    case $words[1] in
{''.join(cases)}    esac
}}

_snipbench_data "$@"
"""


def make_fish(table):
    lines = ["# fish completion of snipbench-data. Generated from the program's own table of verbs."]
    for verb in table["verbs"]:
        lines.append(f"complete -c snipbench-data -n __fish_use_subcommand -f -a {verb['name']} "
                     f"-d {quote_fish(verb['summary'])}")
        condition = f"-n '__fish_seen_subcommand_from {verb['name']}'"
        for option in verb["options"]:
            value = option.get("value")
            kind = "" if value is None else (" -r" if value == "FILE" else " -x")
            lines.append(f"complete -c snipbench-data {condition} -l {option['name'][2:]}{kind} "
                         f"-d {quote_fish(option['description'])}")
        if has_formats(verb):
            lines.append(f"complete -c snipbench-data {condition} -a '{' '.join(FORMATS)}'")
    return "\n".join(lines) + "\n"


def make_manual(table, date):
    verbs = []
    for verb in table["verbs"]:
        own = [option for option in verb["options"] if option not in table["options"]]
        rows = [f".TP\n\\fB{escape_manual(option['name'])}\\fR" +
                (f" \\fI{escape_manual(option['value'])}\\fR" if "value" in option else "") +
                f"\n{escape_manual(option['description'])}.\n" for option in own]
        verbs.append(f".SS {escape_manual(verb['name'])}\n.B snipbench\\-data {escape_manual(verb['name'])}\n"
                     f".RI [ options ] \" {escape_manual(verb['operands'])}\"\n.PP\n{escape_manual(verb['summary'])}.\n"
                     f"{escape_manual(verb['details'])}" + "".join(rows))
    common = "".join(f".TP\n\\fB{escape_manual(option['name'])}\\fR\n{escape_manual(option['description'])}.\n"
                     for option in table["options"])
    return fill_template(read_template("snipbench-data.1"), date, {"@OPTIONS@\n": common, "@VERBS@\n": "".join(verbs)})


def make_files(program, date):
    table = read_table(program)
    return {"snipbench-data.bash": make_bash(table), "_snipbench-data": make_zsh(table),
            "snipbench-data.fish": make_fish(table), "snipbench-data.1": make_manual(table, date)}


if __name__ == "__main__":
    write_files(make_files)
