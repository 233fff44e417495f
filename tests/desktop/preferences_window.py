# SPDX-License-Identifier: MIT
"""The preferences window of the installed product: it appears, an option is chosen, it is closed, and the item says so."""
import os
import pathlib
import subprocess

from desktop_session import Atspi, Gio, GLib, find, press, until

SERVICE = "com.havrel.Service"
OPTION = "Exclude"
SAID = "Projects: excluded"


def ask_bus(method, reply):
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    return bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                         GLib.Variant("(s)", (SERVICE,)), GLib.VariantType(reply), Gio.DBusCallFlags.NONE, 30000,
                         None).unpack()[0]


def preferences(folder, *words):
    """What the program says of them, run in the folder."""
    return subprocess.run(["havrel", "captureprefs", *words], cwd=folder, capture_output=True, text=True, check=True,
                          timeout=60).stdout.strip()


def edit_in_window(session, item):
    folder, name = os.path.split(item)
    assert preferences(folder, "list", ".") == ""
    option = until(lambda: find(OPTION, {Atspi.Role.RADIO_BUTTON}, program="havrel"), "the window")
    program = os.readlink(f"/proc/{ask_bus('GetConnectionUnixProcessID', '(u)')}/exe")
    assert pathlib.Path(program).parts[-3:] == ("prefix", "bin", "havrel-service"), program
    window = until(lambda: session.key_tool("search", "--onlyvisible", "--name", name + "$", quiet=True),
                   "the window on the screen").split()[-1]
    session.key_tool("windowfocus", "--sync", window)
    press(option)
    until(lambda: option.get_state_set().contains(Atspi.StateType.CHECKED), "the option to be chosen")
    session.take_picture("window")
    session.key_tool("key", "alt+F4")
    until(lambda: preferences(folder, "show", name) == SAID, f"havrel captureprefs to say {SAID!r}")
    carriers = preferences(folder, "list", ".")
    assert carriers == "./" + SAID, carriers  # no other item
    print("the installed window was edited and closed;", SAID)
