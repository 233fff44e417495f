#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Chooses commands from the menu of a file manager, and compares what arrives with what was selected, or works in the
windows that come.

usage: drive.py WAY WHAT FOLDER     inside of a message bus of its own; see file_manager_test.py
"""
import os
import re
import sys
import urllib.parse

from archive_window import capture_in_window, make_archive, reveal_in_window
from desktop_session import Atspi, Focus, Session, TookTooLong, centre, find, press, until
from preferences_window import edit_in_window

MENU = "Havrel"
CAPTURE, REVEAL, TITLE = "Capture to Archive...", "Reveal in Archive...", "Capture Preferences..."
WORDS = [b"captureprefs", b"edit"]
MENU_ITEM = {Atspi.Role.MENU_ITEM}

# What shows that the folder is there.
FIRST = {"names": "plain.txt", "many": "item 00000", "window": "Projects", "archives": "Projects"}

PROGRAMS = {
    "caja": ["caja", "--no-desktop", "--browser"],
    "nemo-extension": ["nemo"],
    "nemo-actions": ["nemo"],
    "pcmanfm-qt": ["pcmanfm-qt"],
    "thunar-extension": ["thunar"],
    "thunar-actions": ["thunar"],
}


def give_keyboard(session, folder):
    window = until(lambda: session.key_tool("search", "--onlyvisible", "--name", os.path.basename(folder), quiet=True),
                   "its window").split()[-1]
    session.key_tool("windowfocus", "--sync", window)


def status():
    bar = find(None, {Atspi.Role.STATUS_BAR})
    return bar.get_name().replace(",", "") if bar else ""


def is_whole(folder):
    """The file manager counts in its status bar what it has read, when it is done: "20000 items Free space: ...", or
    "1 folder | 9 files: ...". What is selected before that is selected no more then."""
    counts = re.findall(r"(\d+) (?:item|folder|file)", status().partition("Free space")[0])
    return sum(map(int, counts)) == len(os.listdir(folder))


def select(session, folder, key):
    until(lambda: is_whole(folder), "the folder to be shown whole")
    give_keyboard(session, folder)
    session.key_tool("key", key)


def open_menu_of_all(session, folder, _first):
    select(session, folder, "ctrl+a")
    until(lambda: "select" in status().lower(), "the selection")
    session.key_tool("key", "shift+F10")


def open_menu_of_many(session, folder, _first):
    """With many selected items the accessibility bus is as good as silent."""
    select(session, folder, "ctrl+a")
    session.key_tool("key", "shift+F10")


def is_selected(name):
    return status().startswith(f'"{name}" selected')


def open_menu_of_first(session, folder, first):
    """Of the first item in the folder, by keys: the icons of Nemo do not say where they are. It may be selected from the
    time before."""
    if is_selected(first):
        give_keyboard(session, folder)
    else:
        select(session, folder, "Home")
        until(lambda: is_selected(first), "the selection")
    session.key_tool("key", "shift+F10")


def windows_of(session, program):
    return len(session.key_tool("search", "--onlyvisible", "--class", program, quiet=True).split())


def open_menu_by_mouse(session, item, program):
    """Until the menu is there, which has the keyboard from then on."""
    before = windows_of(session, program)
    click(session, item, button="3")
    until(lambda: windows_of(session, program) > before, "the menu")


def open_menu_of_all_in_pcmanfm_qt(session, folder, first):
    """It has no key for the menu."""
    until(lambda: find(f"{len(os.listdir(folder))} item(s)"), "the folder to be shown whole")
    give_keyboard(session, folder)
    session.key_tool("key", "ctrl+a")
    open_menu_by_mouse(session, first, "pcmanfm-qt")


def open_menu_of_item_in_pcmanfm_qt(session, _folder, first):
    open_menu_by_mouse(session, first, "pcmanfm-qt")


def place_of(name):
    """Menus may be there twice, in the menu bar, too: the one that is shown."""
    thing = find(name, fits=centre)
    return thing and centre(thing)


def click(session, name, button="1"):
    place = until(lambda: place_of(name), f"{name} to be drawn")
    session.key_tool("mousemove", "--sync", *place, "click", button)


def open_menu_of_item(session, _folder, first):
    click(session, first, button="3")


def choose_by_mouse(session, title):
    click(session, MENU)
    until(lambda: place_of(title), "the menu to open")
    session.take_picture("menu")
    click(session, title)


def choose_by_click(session, title):
    """Where the command is in no submenu. The menu is closed then, and gives the keyboard away."""
    until(lambda: place_of(title), "the menu to open")
    session.take_picture("menu")
    click(session, title)


def choose(session, title):
    """The command from the menu, which is on the accessibility bus."""
    item = until(lambda: find(title, MENU_ITEM), "the command in the menu")
    session.take_picture("menu")
    press(item)


def walk_to(session, focus, title):
    for _ in range(60):  # more than a menu has
        if focus.after_key(session, "Up") == title:
            return
    raise TookTooLong(f"{title!r} in the menu")


def choose_by_walking(session, title):
    """Up to the submenu, into it, and up to the command."""
    focus = Focus()
    walk_to(session, focus, MENU)
    focus.after_key(session, "Right")
    walk_to(session, focus, title)
    session.take_picture("menu")
    session.key_tool("key", "Return")


def choose_by_keys(session, _title):
    """The command is the last of the last menu but one; keys wait in the server until the file manager takes them."""
    session.key_tool("key", "Up", "Up", "Right", "Up", "Return")


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


# How the menu is opened, and how a command is chosen from it.
BY_KEYS = (open_menu_of_all, choose)
BY_MOUSE = (open_menu_of_item, choose_by_mouse)
WINDOWS = {
    "caja": BY_MOUSE,
    "nemo-actions": (open_menu_of_first, choose_by_click),
    "pcmanfm-qt": (open_menu_of_item_in_pcmanfm_qt, choose_by_walking),
    "thunar-actions": BY_MOUSE,
}
HANDS = {
    ("caja", "many"): (open_menu_of_many, choose_by_keys),
    ("nemo-actions", "many"): (open_menu_of_many, choose),
    ("pcmanfm-qt", "names"): (open_menu_of_all_in_pcmanfm_qt, choose_by_walking),
    **{(way, what): hands for way, hands in WINDOWS.items() for what in ("window", "archives")},
}


def drive(session, way, what, folder):
    open_menu, choose_command = HANDS.get((way, what), BY_KEYS)
    item = os.path.join(folder, FIRST[what])

    def choose_from_menu(title):
        open_menu(session, folder, FIRST[what])
        choose_command(session, title)

    if what == "archives":
        choose_from_menu(CAPTURE)
        capture_in_window(session, item)
        choose_from_menu(REVEAL)
        reveal_in_window(session, item)
        return
    choose_from_menu(TITLE)
    if what == "window":
        edit_in_window(session, item)
    else:
        compare(until(recorded, "the program to be started", 200), folder)


def main():
    way, what, folder = sys.argv[1:]
    with Session() as session:
        if what == "archives":
            make_archive(os.path.join(folder, FIRST[what]))
        session.start([*PROGRAMS[way], folder])
        try:
            until(lambda: find(FIRST[what]), "the file manager to show the folder")
            drive(session, way, what, folder)
        except TookTooLong as failure:
            session.take_picture("failure")
            sys.exit(f"waited in vain for {failure}")


main()
