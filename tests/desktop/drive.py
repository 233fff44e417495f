#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Chooses a command from the menu of a file manager, and compares what arrives with what was selected, or edits in the
window that comes.

usage: drive.py WAY WHAT FOLDER     inside of a message bus of its own; see file_manager_test.py
"""
import os
import sys
import urllib.parse

from desktop_session import Atspi, Session, TookTooLong, centre, find, press, until
from preferences_window import edit_in_window

MENU = "Havrel"
TITLE = "Capture Preferences..."
WORDS = [b"captureprefs", b"edit"]
MENU_ITEM = {Atspi.Role.MENU_ITEM}

# What shows that the folder is there.
FIRST = {"names": "plain.txt", "many": "item 00000", "window": "Projects"}

PROGRAMS = {
    "caja": ["caja", "--no-desktop", "--browser"],
    "nemo-extension": ["nemo"],
    "nemo-actions": ["nemo"],
    "thunar-extension": ["thunar"],
    "thunar-actions": ["thunar"],
}


def open_menu_of_all(session, folder):
    window = until(lambda: session.key_tool("search", "--onlyvisible", "--name", os.path.basename(folder), quiet=True),
                   "its window").split()[-1]
    session.key_tool("windowfocus", "--sync", window)
    session.key_tool("key", "ctrl+a")
    session.key_tool("key", "shift+F10")


def place_of(name):
    """Menus may be there twice, in the menu bar, too: the one that is shown."""
    thing = find(name, fits=centre)
    return thing and centre(thing)


def click(session, name, button="1"):
    place = until(lambda: place_of(name), f"{name} to be drawn")
    session.key_tool("mousemove", "--sync", *place, "click", button)


def choose_by_mouse(session, item):
    click(session, item, button="3")
    click(session, MENU)
    until(lambda: place_of(TITLE), "the menu to open")
    session.take_picture("menu")
    click(session, TITLE)


def choose(session):
    """The command from the menu, which is on the accessibility bus."""
    press(until(lambda: find(TITLE, MENU_ITEM), "the command in the menu"))


def choose_by_keys(session):
    """The command is the last of the last menu but one. With many selected items the accessibility bus is as good as
    silent; keys wait in the server until the file manager takes them."""
    session.key_tool("key", "Up", "Up", "Right", "Up", "Return")


def is_whole(folder):
    """The file manager counts in its status bar what it has read, "20000 items, Free space: ...", when it is done."""
    bar = find(None, {Atspi.Role.STATUS_BAR})
    said = bar.get_name().replace(",", "") if bar else ""
    return said.startswith(f"{len(os.listdir(folder))} items")


def recorded():
    try:
        with open(os.environb[b"HAVREL_RECORD"], "rb") as file:
            return file.read().split(b"\0")
    except FileNotFoundError:
        return None


def path_of(item):
    return urllib.parse.unquote_to_bytes(item[len(b"file://"):]) if item.startswith(b"file:") else item


def compare(record, folder):
    count = int(record[0])
    arguments, given = record[1:count + 1], record[count + 1:]
    assert arguments[:2] == WORDS, arguments[:4]
    if arguments[2:] != [b"--items-from", b"-"]:
        assert arguments[2] == b"--", arguments[:4]
        given = arguments[3:]
    selected = sorted(os.path.join(os.fsencode(folder), name) for name in os.listdir(os.fsencode(folder)))
    arrived = sorted(map(path_of, given))
    missing, wrong = sorted(set(selected) - set(arrived)), sorted(set(arrived) - set(selected))
    assert arrived == selected, f"{len(arrived)} of {len(selected)}; missing {missing[:9]}, wrong {wrong[:9]}"
    print(f"{len(arrived)} of {len(selected)} items arrived, every name exact")


CHOOSE = {("caja", "many"): choose_by_keys}


def main():
    way, what, folder = sys.argv[1:]
    first = FIRST[what]
    with Session() as session:
        session.start([*PROGRAMS[way], folder])
        try:
            until(lambda: find(first), "the file manager to show the folder")
            if what == "window":
                choose_by_mouse(session, first)
                edit_in_window(session, os.path.join(folder, first))
            else:
                if what == "many":
                    until(lambda: is_whole(folder), "the folder to be shown whole")
                open_menu_of_all(session, folder)
                CHOOSE.get((way, what), choose)(session)
                compare(until(recorded, "the program to be started", 200), folder)
        except TookTooLong as failure:
            session.take_picture("failure")
            sys.exit(f"waited in vain for {failure}")


main()
