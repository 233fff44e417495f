#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the man page against the program's own help: no command may be missing in it.

usage: man_page_test.py PROGRAM
"""
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


def described():
    for line in PAGE.read_text().splitlines():
        if line.startswith(".It Cm "):
            yield re.match(r"\.It Cm ([a-z ]+?)(?= Ar| \||$)", line).group(1)


known, told = set(commands()), {re.sub(" add$", "", each) for each in described()}
print("commands:", ", ".join(sorted(known)))
sys.exit("\n".join(f"missing in the page: {each}" for each in sorted(known - told)) or 0)
