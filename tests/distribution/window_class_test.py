#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Asks an X server what the service calls its window: what the desktop entry says it does, so that desktops know whose
it is.

usage: scripts/with-display window_class_test.py SERVICE_PROGRAM TOOL DESKTOP_ENTRY
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile


def shown_window():
    """The first one that the window manager tells of."""
    with subprocess.Popen(["xprop", "-root", "-spy", "_NET_CLIENT_LIST"], stdout=subprocess.PIPE, text=True) as spy:
        for line in spy.stdout:
            if found := re.search("0x[0-9a-f]+", line):
                spy.terminate()
                return found[0]
    sys.exit("no window came")


def check(tool, entry, item):
    subprocess.run([tool, "captureprefs", "edit", item], check=True, timeout=60)
    told = subprocess.run(["xprop", "-id", shown_window(), "WM_CLASS"], capture_output=True, text=True, check=True,
                          timeout=60).stdout
    instance_and_class = re.findall('"([^"]*)"', told)
    said = re.search("^StartupWMClass=(.*)$", pathlib.Path(entry).read_text(), re.MULTILINE)
    assert said and len(instance_and_class) == 2 and instance_and_class[1] == said[1], (said, told)
    print(told.strip())


def main():
    service, tool, entry = sys.argv[1:4]
    if len(sys.argv) > 4:  # on the bus
        check(tool, entry, sys.argv[4])
        return
    with tempfile.TemporaryDirectory() as scratch:
        services = pathlib.Path(scratch) / "dbus-1/services"
        services.mkdir(parents=True)
        (services / "com.havrel.Service.service").write_text(
            f"[D-BUS Service]\nName=com.havrel.Service\nExec={service}\n")
        environment = {**os.environ, "XDG_DATA_DIRS": scratch, "XDG_DATA_HOME": f"{scratch}/none",
                       "XDG_STATE_HOME": f"{scratch}/state", "XDG_RUNTIME_DIR": scratch}
        os.chmod(scratch, 0o700)
        status = subprocess.run(["dbus-run-session", "--", sys.executable, *sys.argv, scratch],
                                env=environment).returncode
    sys.exit(status)


main()
