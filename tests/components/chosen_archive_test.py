#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Captures and reveals by the window in which one chooses an archive: from the command line through the service to the
scheduler, its engine and back, and to a stand-in for the client application.

usage: scripts/with-display chosen_archive_test.py HAVREL FOLDER_OF_COMPONENTS HAVREL_SERVICE
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

from bus_peer import ROOM, Peer
from bus_session import components, output_of, run_again_within, serve
from described_items import change, described, fill

HAVREL, COMPONENTS, SERVICE = sys.argv[1:4]
HERE = pathlib.Path(__file__).resolve().parent
TITLE = "^Choose Archive$"
DEADLINE = 60  # seconds


def until(condition, what):
    deadline = time.monotonic() + DEADLINE
    while not (answer := condition()):
        assert time.monotonic() < deadline, f"waited in vain for {what}"
        time.sleep(0.02)  # others need the processor, too
    return answer


def havrel(*words):
    return output_of(HAVREL, *words)


def key_tool(*words):
    return subprocess.run(["xdotool", *words], capture_output=True, text=True, timeout=DEADLINE).stdout.split()


def window_on_screen():
    """With the keyboard."""
    window = until(lambda: key_tool("search", "--onlyvisible", "--name", TITLE), "the window")[-1]
    key_tool("windowactivate", "--sync", window, "windowfocus", "--sync", window)
    return window


def press_in_window(*keys):
    """When it is there; then waits until it has gone."""
    window_on_screen()
    key_tool("key", *keys)
    until(lambda: not key_tool("search", "--onlyvisible", "--name", TITLE), "the window to close")


def place_and_width(window):
    facts = dict(line.split("=") for line in key_tool("getwindowgeometry", "--shell", window))
    return facts["X"], facts["Y"], facts["WIDTH"]


class Scheduler:
    """What it says of its captures."""

    def __init__(self):
        self.peer = Peer(f"{ROOM}/asking")
        (self.owner, self.prefix), = self.peer.where("com.havrel.scheduler")

    def runs(self):
        """Archive and items of each capture that is done."""
        runs, = self.peer.call(self.owner, f"{self.prefix}/x", "com.havrel.ZephronScheduling",
                               "queryRunSummariesWithReply_")
        return [(each["archive"], each["items"]) for each in runs.values() if each["outcome"] == "done"]


def check_a_capture(folder, scheduler):
    items = folder / "items"
    for keys, archive, changes in ((["Return"], "holding.zephra", change),
                                   (["Down", "Return"], "other.zephra", lambda _: (items / "late").touch())):
        changes(items)
        before = scheduler.runs()
        havrel("capture", items)
        press_in_window(*keys)
        until(lambda: len(scheduler.runs()) > len(before), "the capture")
        new = scheduler.runs()
        for each in before:
            new.remove(each)
        assert new == [(bytes(folder / archive), [bytes(items)])], new
        back = folder / f"back from {archive}"
        havrel("archive", "restore", folder / archive, items, "--into", back)
        assert described(back / "items") == described(items)
        print("captured into", archive, "by", *keys)


def check_that_escape_does_nothing(folder, scheduler):
    before = scheduler.runs()
    havrel("capture", folder / "items")
    press_in_window("Escape")
    havrel("capture", "--to", folder / "other.zephra", folder / "new")  # what is asked for later is done later
    assert len(scheduler.runs()) == len(before) + 1
    print("Escape captures nothing")


def check_a_reveal(folder):
    record = folder / "record.json"
    names = [b"text.txt", b"below/caf\xe9 \n"]
    given = [os.path.join(bytes(folder), b"items", each) for each in names]
    havrel("reveal", *given)
    press_in_window("Return")
    until(record.exists, "the client")
    opened = json.loads(record.read_text())
    assert opened == {"uris": [(folder / "holding.zephra").as_uri()], "number": 1,
                      "items": [os.fsdecode(each) for each in given]}, opened
    print("revealed in the client")


def check_that_the_window_comes_back_where_it_was(folder):
    havrel("capture", folder / "items")
    window = window_on_screen()
    key_tool("windowmove", "--sync", window, "90", "70", "windowsize", "--sync", window, "777", "333")
    seen = place_and_width(window)
    press_in_window("Escape")
    for _ in range(2):  # it does not wander off
        havrel("capture", folder / "items")
        assert place_and_width(window_on_screen()) == seen
        press_in_window("Escape")
    print("comes back where it was")


def within_a_session(folder):
    fill(folder / "items")
    (folder / "new").touch()
    for each in ("holding", "other"):
        havrel("archive", "create", folder / f"{each}.zephra", "--repository", folder / each)
    havrel("capture", "--to", folder / "other.zephra", folder / "new")
    havrel("capture", "--to", folder / "holding.zephra", folder / "items")
    scheduler = Scheduler()
    check_a_capture(folder, scheduler)
    check_that_escape_does_nothing(folder, scheduler)
    check_a_reveal(folder)
    check_that_the_window_comes_back_where_it_was(folder)


def main():
    if len(sys.argv) > 4:
        return within_a_session(pathlib.Path(sys.argv[4]))
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch).resolve()
        client = f"{sys.executable} {HERE / 'stand_in_client.py'} {folder / 'record.json'}"
        serve(folder, {**components(COMPONENTS), "com.havrel.Service": SERVICE, "com.havrel.client": client})
        sys.exit(run_again_within(folder))


main()
