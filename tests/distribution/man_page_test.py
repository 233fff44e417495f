#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the man page against the program's own help: no command may be missing in it, and none made up.

usage: man_page_test.py PROGRAM
"""
import itertools
import pathlib
import re
import subprocess
import sys

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs/man/havrel.1"


def subcommands_of(*words):
    text = subprocess.run([sys.argv[1], *words, "--help"], check=True, capture_output=True, text=True).stdout
    block = re.search(r"^Subcommands:\n(.*?)(\n\n|\Z)", text, re.MULTILINE | re.DOTALL)
    return re.findall(r"^  ([a-z]\S*)", block.group(1), re.MULTILINE) if block else []


def commands():
    for word in subcommands_of():
        below = subcommands_of(word)
        yield from [f"{word} {each}" for each in below] or [word]


def described(page):
    for line in page.splitlines():
        if line.startswith(".It Cm "):
            yield re.sub(" add$", "", re.match(r"\.It Cm ([a-z ]+?)(?= Ar| \||$)", line).group(1))


def in_synopsis(page):
    """A line for each word of a command, the choices for it separated by bars."""
    synopsis = page.split(".Sh SYNOPSIS\n")[1].split(".Sh ")[0]
    for usage in synopsis.split(".Nm\n")[1:]:
        words = [line[len(".Cm "):].split(" | ") for line in usage.splitlines() if line.startswith(".Cm ")]
        yield from (" ".join(each) for each in itertools.product(*words) if each)


def problems(page, known):
    for where, told in (("the page", set(described(page))), ("the synopsis", set(in_synopsis(page)))):
        yield from (f"missing in {where}: {each}" for each in sorted(known - told))
        yield from (f"in {where}, but no command: {each}" for each in sorted(told - known))


def main():
    page, known = PAGE.read_text(), set(commands())
    print("commands:", ", ".join(sorted(known)))
    made_up = list(problems(page + ".It Cm make up Ar item ...\n", known))
    assert "in the page, but no command: make up" in made_up, made_up
    sys.exit("\n".join(problems(page, known)) or 0)


main()
