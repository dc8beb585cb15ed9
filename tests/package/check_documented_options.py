#!/usr/bin/env python3
"""Every command and option that the tool's help tells stands in the manual page and in each shell's completion, which
tell no others and can be read by their programs.

Usage: check_documented_options.py KTANNOT SOURCE_DIRECTORY
"""

import pathlib
import re
import shutil
import subprocess
import sys

OPTION = re.compile(r"(?<![\w-])(--?[a-z0-9][a-z-]*)")
# Program that reads the file without carrying it out; groff tells of trouble on standard error alone.
READERS = {
    "docs/ktannot.1": ["groff", "-man", "-ww", "-z", "-K", "utf8"],
    "tools/ktannot/completions/ktannot.bash": ["bash", "-n"],
    "tools/ktannot/completions/_ktannot": ["zsh", "-n"],
    "tools/ktannot/completions/ktannot.fish": ["fish", "--no-execute"],
}


def help_of(tool, *command):
    return subprocess.run([tool, *command, "--help"], check=True, capture_output=True, text=True).stdout


def commands_in(text):
    """The words below "Subcommands:" of a help text."""
    block = re.search(r"^Subcommands:\n((?:  .*\n)+)", text, re.MULTILINE)
    return re.findall(r"^  ([a-z]+)", block.group(1), re.MULTILINE) if block else []


def options_in_help(text):
    """The options that begin the lines below "Options:" and the other groups."""
    # "-o,--output TEXT ...": the names end at the first blank.
    names = re.findall(r"^  (-\S+)", text, re.MULTILINE)
    return {option for name in names for option in name.split(",")}


def options_in_file(name, text):
    """Every option that a file names; fish writes them without dashes."""
    if name.endswith(".fish"):
        text = "\n".join(line for line in text.splitlines() if line.startswith("complete "))
        return {"--" + word for word in re.findall(r" -l ([a-z-]+)", text)} | {
            "-" + letter for letter in re.findall(r" -s ([a-z0-9]) ", text)}
    if name.endswith(".1"):
        text = re.sub(r"\\f[BRI]", " ", text).replace("\\-", "-")
    return set(OPTION.findall(text))


def main():
    tool, source = sys.argv[1], pathlib.Path(sys.argv[2])
    main_help = help_of(tool)
    commands = commands_in(main_help)
    options = options_in_help(main_help).union(*(options_in_help(help_of(tool, command)) for command in commands))
    findings = []
    if len(commands) < 4 or len(options) < 15:
        findings.append(f"the help tells only {commands} and {sorted(options)}")
    for name, reader in READERS.items():
        text = (source / name).read_text(encoding="utf-8")
        told = options_in_file(name, text)
        findings += [f"{name} lacks {option}" for option in sorted(options - told)]
        findings += [f"{name} lacks {command}" for command in commands if not re.search(rf"\b{command}\b", text)]
        # Short ones may also belong to the shell's own commands.
        findings += [f"{name} tells {option}" for option in sorted(told - options) if option.startswith("--")]
        if shutil.which(reader[0]):
            run = subprocess.run([*reader, source / name], check=False, capture_output=True, text=True)
            if run.returncode or run.stderr:
                findings.append(f"{reader[0]} cannot read {name}: {run.stderr}")
    print("\n".join(findings))
    print(f"{len(commands)} commands, {len(options)} options, {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
