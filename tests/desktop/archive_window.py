# SPDX-License-Identifier: MIT
"""The window of the installed product in which one chooses an archive: it appears, Return chooses, and the items are in the
archive, or the client application is asked to show them there."""
import json
import os
import pathlib
import subprocess

from desktop_session import until

TITLE = "^Choose Archive$"
ARCHIVE = pathlib.Path(os.environ["HOME"], "Home.zephra")
CLIENT_RECORD = pathlib.Path(os.environ["HOME"], "opened.json")  # of the stand-in for the client application


def havrel(*words):
    return subprocess.run(["havrel", *words], capture_output=True, text=True, check=True, timeout=120).stdout


def windows(session):
    return session.key_tool("search", "--onlyvisible", "--name", TITLE, quiet=True).split()


def choose_first(session, picture):
    """The first archive is selected."""
    window = until(lambda: windows(session), "the window")[-1]
    session.key_tool("windowfocus", "--sync", window)
    session.take_picture(picture)
    session.key_tool("key", "Return")
    until(lambda: not windows(session), "the window to close")


def captures():
    return json.loads(havrel("archive", "info", "--json", ARCHIVE))["captures"]


def make_archive(item):
    """One that holds the item already, as it is now."""
    pathlib.Path(item, "plan.txt").write_text("one\n")
    havrel("archive", "create", ARCHIVE, "--repository", ARCHIVE.with_suffix(".repository"))
    havrel("capture", "--to", ARCHIVE, item)
    pathlib.Path(item, "plan.txt").write_text("two\n")


def capture_in_window(session, item):
    assert len(captures()) == 1
    choose_first(session, "archives")
    until(lambda: len(captures()) == 2, "the capture")
    assert captures()[1]["items"] == [item], captures()
    back = pathlib.Path(os.environ["HOME"], "back")
    havrel("archive", "restore", ARCHIVE, item, "--into", back)
    assert (back / os.path.basename(item) / "plan.txt").read_text() == "two\n"
    print("captured by the installed window, and restored")


def reveal_in_window(session, item):
    choose_first(session, "revealing")
    until(CLIENT_RECORD.exists, "the client application")
    opened = json.loads(CLIENT_RECORD.read_text())
    assert opened == {"uris": [ARCHIVE.as_uri()], "number": 1, "items": [item]}, opened
    print("revealed by the installed window; the client got", opened)
