#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Has the desktops' own program read the file type of archives, and looks at what it makes of it.

usage: file_type_test.py DESCRIPTION ICON
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

TYPE = "application/x-zephra"


def lines_for(folder, name):
    return [line for line in (folder / name).read_text().splitlines() if TYPE in line]


def main():
    description, icon = map(pathlib.Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch) / "mime"
        (folder / "packages").mkdir(parents=True)
        shutil.copy(description, folder / "packages")
        done = subprocess.run(["update-mime-database", "-V", folder], capture_output=True, text=True, timeout=60)
        assert done.returncode == 0 and "***" not in done.stderr, done.stderr
        assert lines_for(folder, "globs2") == [f"50:{TYPE}:*.zephra"], lines_for(folder, "globs2")
        assert lines_for(folder, "subclasses") == [f"{TYPE} application/xml"]
        assert lines_for(folder, "generic-icons") == [f"{TYPE}:package-x-generic"]
        told = (folder / f"{TYPE}.xml").read_text()
    assert "<comment>Havrel archive</comment>" in told and '<comment xml:lang="de">Havrel-Archiv</comment>' in told, told
    assert icon.stem == TYPE.replace("/", "-"), icon
    print("a file type with its name in both languages, and its icon")


main()
