#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs to an unusual place, and asks a message bus what it makes of it.

usage: installation_test.py BUILD_FOLDER
"""
import os
import pathlib
import subprocess
import sys
import tempfile

BUILD = sys.argv[1]
NAMES = ("Service", "Switchboard", "Monitor", "Scheduler")
DESCRIPTIONS = pathlib.Path(__file__).resolve().parents[2] / "resources/bus"


def install(folder, prefix, destination=None):
    environment = {**os.environ, **({"DESTDIR": str(destination)} if destination else {})}
    return subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix, "--component", "havrel"], cwd=folder,
                          env=environment, capture_output=True, text=True, timeout=120)


def command_in(path, key):
    lines = [line for line in path.read_text().splitlines() if line.startswith(key + "=")]
    assert len(lines) == 1, (path, lines)
    return lines[0].split("=", 1)[1].strip('"')


def check(root, prefix):
    """What is installed at root names the programs below the prefix."""
    for name in NAMES:
        program = f"havrel-{name.lower()}"
        for file, key in ((f"share/dbus-1/services/com.havrel.{name}.service", "Exec"),
                          (f"share/systemd/user/{program}.service", "ExecStart")):
            assert command_in(root / file, key) == f"{prefix}/bin/{program}", (root / file, prefix)
        assert (root / "bin" / program).exists(), program
        print("names", program, "below", prefix)
    installed = {each.name: each.read_bytes() for each in (root / "share/dbus-1/interfaces").iterdir()}
    assert installed == {each.name: each.read_bytes() for each in DESCRIPTIONS.glob("*.xml")}, installed.keys()
    print(len(installed), "interfaces described")


def check_that_the_bus_finds_it(root):
    """And starts it: a stand-in takes the place of the program and says that it was here."""
    program = root / "bin/havrel-service"
    program.unlink(missing_ok=True)
    program.write_text('#!/bin/sh\n: >"$0.was-started"\n')
    program.chmod(0o755)
    start = ["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
             "org.freedesktop.DBus.StartServiceByName", "string:com.havrel.Service", "uint32:0"]
    environment = {**os.environ, "XDG_DATA_DIRS": f"{root}/share:/usr/share", "XDG_DATA_HOME": str(root / "none")}
    answer = subprocess.run(["dbus-run-session", "--", *start], env=environment, capture_output=True, text=True,
                            timeout=120)
    assert pathlib.Path(f"{program}.was-started").exists(), answer.stdout + answer.stderr
    print("started by the bus from a folder with a blank in its name")


def check_that_desktops_know_archives(root):
    """Where it is installed for use, and not to be packed, by what all of them read."""
    assert "application/x-zephra" in (root / "share/mime/globs2").read_text()
    assert (root / "share/mime/mime.cache").exists()
    print("archives are a file type")


def main():
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch).resolve()
        for prefix, destination, root in (
                (folder / "a prefix", None, folder / "a prefix"),
                ("relative", None, folder / "relative"),
                ("/usr", folder / "staged", folder / "staged/usr"),
                ("/opt/havrel", folder / "staged", folder / "staged/opt/havrel")):
            done = install(folder, prefix, destination)
            assert done.returncode == 0, done.stdout + done.stderr
            check(root, folder / prefix)  # an absolute prefix stays as it is
        refused = install(folder, folder / 'quo"te')
        assert refused.returncode != 0 and "could not start" in refused.stderr, refused.stderr
        assert not (folder / "staged/usr/share/mime/mime.cache").exists()
        check_that_desktops_know_archives(folder / "a prefix")
        check_that_desktops_know_archives(folder / "relative")
        check_that_the_bus_finds_it(folder / "a prefix")


main()
