#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Takes away what a list says was installed, and looks at what is left.

usage: uninstall_test.py UNINSTALL_SCRIPT
"""
import os
import pathlib
import subprocess
import sys
import tempfile

OURS = ("bin/havrel", "share/havrel/help/page.html", "share/havrel/help/pictures/window.png", "share/doc/havrel/copyright")
OTHERS = ("bin/other", "share/applications/other.desktop")


def run(manifest, destination):
    return subprocess.run(["cmake", "-D", f"manifest={manifest}", "-P", sys.argv[1]], capture_output=True, text=True,
                          env={**os.environ, "DESTDIR": destination}, timeout=60)


def check(folder, prefix, destination):
    root = pathlib.Path(destination + prefix)
    for file in OURS + OTHERS:
        (root / file).parent.mkdir(parents=True, exist_ok=True)
        (root / file).write_text("")
    manifest = folder / "install_manifest.txt"
    manifest.write_text("\n".join(f"{prefix}/{file}" for file in OURS + ("share/havrel/gone",)))
    outcome = run(manifest, destination)
    assert outcome.returncode == 0, outcome.stderr
    left = sorted(str(each.relative_to(root)) for each in root.rglob("*") if each.is_file())
    assert left == sorted(OTHERS), left
    assert not (root / "share/havrel").exists() and not (root / "share/doc/havrel").exists()
    assert (root / "share/applications").exists()
    assert "Nothing was installed" in run(manifest, destination).stderr
    print("uninstalled from", prefix, "in", destination or "/")


with tempfile.TemporaryDirectory() as name:
    here = pathlib.Path(name)
    check(here, f"{name}/a place", "")
    check(here, "/usr", f"{name}/packed")
