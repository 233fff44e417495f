#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compiles the installed extensions with the interpreter that file managers use, without leaving anything behind."""
import pathlib
import subprocess
import sys

extensions = sorted(pathlib.Path(sys.argv[1]).glob("*/extensions/*.py"))
assert len(extensions) == 4, extensions
for path in extensions:
    script = "import sys; compile(open(sys.argv[1], encoding='utf-8').read(), sys.argv[1], 'exec', dont_inherit=True)"
    subprocess.run(["/usr/bin/python3", "-W", "error", "-c", script, path], check=True)
    print("compiles:", path.name)
